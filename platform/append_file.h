// A file that grows at its end and that nobody else may write to meanwhile.

#ifndef ZT_PLATFORM_APPEND_FILE_H
#define ZT_PLATFORM_APPEND_FILE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zt {

/// Writes are gathered in a buffer of 64 KiB. While it is open, other openings for writing fail: on Windows all of them, by the
/// sharing mode; elsewhere those that ask for the advisory lock, as this class does. Programs that this one starts do not
/// inherit it. One thread at a time.
class AppendFile {
 public:
  constexpr AppendFile() = default;
  AppendFile(const AppendFile&) = delete;  // An open file has one owner.
  AppendFile& operator=(const AppendFile&) = delete;

  [[nodiscard]] bool IsOpen() const { return handle_ != 0; }
  /// Opens or makes the file and returns its size in bytes; nothing when it cannot be opened, is not a plain file, or somebody
  /// else has it open for writing. REQUIRES: it is not open.
  std::optional<std::uint64_t> Open(const char* path);
  /// Takes text to be written at the end. Returns how many bytes were taken: fewer than given when the file cannot grow; the
  /// buffered ones may then be lost, too. REQUIRES: it is open.
  std::size_t Append(std::string_view text);
  /// Writes what is buffered and closes; nothing when it is not open. What cannot be written is lost.
  void Close();

 private:
  static constexpr std::size_t kBufferSize = 0x10000;

  // The system's handle, or 1 more than a descriptor; 0 for none, so that an object that lives as long as the process is all
  // zeros and takes no room in the library file.
  std::intptr_t handle_ = 0;
  std::size_t buffered_ = 0;
  char buffer_[kBufferSize] = {};
};

}  // namespace zt

#endif  // ZT_PLATFORM_APPEND_FILE_H
