// The files behind the handles of each process, with their positions.

#ifndef ZT_TOOLS_REPLAY_INPUT_HANDLE_TABLE_H
#define ZT_TOOLS_REPLAY_INPUT_HANDLE_TABLE_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace replay {

/// Ordered, not hashed: a capture chooses process ids and handles.
class HandleTable {
 public:
  struct File {
    std::string name;
    std::uint64_t position = 0;  ///< Where the next read or write starts, in bytes.
  };
  using Handles = std::map<std::uint64_t, std::shared_ptr<File>>;
  using Processes = std::map<std::uint64_t, Handles>;

  /// `handle` stands for a newly opened file from now on.
  File& Open(std::uint64_t pid, std::uint64_t handle, std::string_view name);

  /// `target` becomes a second handle to the file of `source`: they share the position. Nothing happens when `source` stands
  /// for no file.
  void Duplicate(std::uint64_t pid, std::uint64_t source, std::uint64_t target);

  void Close(std::uint64_t pid, std::uint64_t handle);
  void CloseAll(std::uint64_t pid);

  /// The file behind a handle, or null.
  [[nodiscard]] File* Find(std::uint64_t pid, std::uint64_t handle);

 private:
  Processes processes_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_HANDLE_TABLE_H
