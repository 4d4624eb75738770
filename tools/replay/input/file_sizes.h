// The sizes of files as far as a capture tells them. An open tells the engine the size of the file that it opens.

#ifndef ZT_TOOLS_REPLAY_INPUT_FILE_SIZES_H
#define ZT_TOOLS_REPLAY_INPUT_FILE_SIZES_H

#include <cstdint>
#include <string_view>

#include "tools/replay/input/bounded_map.h"

namespace replay {

/// Paths are compared without case. Of the files told first the sizes are forgotten in time, so memory stays bounded.
class FileSizes {
 public:
  /// The file's size is `size`.
  void Is(std::string_view path, std::uint64_t size);

  /// A read reached `end`: the file is at least as large, unless its size is known, since a read may ask for more than there
  /// is.
  void ReadTo(std::string_view path, std::uint64_t end);

  /// A write reached `end`: the file is at least as large.
  void WrittenTo(std::string_view path, std::uint64_t end);

  /// The space set aside for the file is `size`: it is no larger.
  void IsAtMost(std::string_view path, std::uint64_t size);

  void Renamed(std::string_view from, std::string_view to);
  void Deleted(std::string_view path);

  /// The size for opening a file that exists. 1 where it is not known or 0, for an open of size 0 would mean a new file.
  [[nodiscard]] std::uint64_t ForOpen(std::string_view path) const;

 private:
  struct Size {
    std::uint64_t bytes = 0;
    bool told = false;  // Else only reached by reads and writes.
  };
  BoundedMap<Size> sizes_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_FILE_SIZES_H
