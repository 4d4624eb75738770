// Where the pending lines go when they are written.

#ifndef ZT_TRACE_APPEND_STREAM_H
#define ZT_TRACE_APPEND_STREAM_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zt {

/// A log file that is opened when there is something to write, and grows at its end; or two, of which one is written to. Called
/// under the trace lock only.
class AppendStream {
 public:
  constexpr AppendStream() = default;
  AppendStream(const AppendStream&) = delete;  // An open file has one owner.
  AppendStream& operator=(const AppendStream&) = delete;
  constexpr virtual ~AppendStream() = default;

  [[nodiscard]] virtual bool IsOpen() const = 0;
  /// Opens the file, making it where it is missing. Returns its size in bytes; nothing when it cannot be opened. REQUIRES: it
  /// is not open.
  virtual std::optional<std::uint64_t> Open() = 0;
  /// Writes at the end and returns the number of bytes that were written. REQUIRES: it is open.
  virtual std::size_t Append(std::string_view text) = 0;
  /// Writes what is buffered and closes the file; nothing when it is not open.
  virtual void Close() = 0;
  /// Goes on to the other of two files, which is deleted first. REQUIRES: it is not open, and there are two.
  virtual void StartNext() = 0;
};

}  // namespace zt

#endif  // ZT_TRACE_APPEND_STREAM_H
