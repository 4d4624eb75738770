// Files that are deleted when they are closed.

#ifndef ZT_TOOLS_REPLAY_INPUT_DELETE_ON_CLOSE_H
#define ZT_TOOLS_REPLAY_INPUT_DELETE_ON_CLOSE_H

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/replay/input/ascii.h"
#include "tools/replay/input/bounded_map.h"

namespace replay {

/// Per process and path which files the engine tracks, and which go at their next close. Paths are compared without case; of
/// the oldest some are forgotten in time. A process is meant by its generation, so that ids may be used again.
class DeleteOnClose {
 public:
  void Track(std::uint64_t process, std::string_view path) { tracked_.Set(Key(process, path), {}); }
  [[nodiscard]] bool IsTracked(std::uint64_t process, std::string_view path) const {
    return tracked_.Find(Key(process, path)) != nullptr;
  }

  void Mark(std::uint64_t process, std::string_view path) { marked_.Set(Key(process, path), {}); }

  /// The process closes the file: true when it is deleted by that.
  bool Close(std::uint64_t process, std::string_view path) { return marked_.Erase(Key(process, path)); }

 private:
  struct Nothing {};

  static std::string Key(std::uint64_t process, std::string_view path) {
    return std::to_string(process) + '|' + LowerCase(path);
  }

  BoundedMap<Nothing> tracked_;
  BoundedMap<Nothing> marked_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_DELETE_ON_CLOSE_H
