// The lines of a text capture, one after the other, with their numbers.

#ifndef ZT_TOOLS_REPLAY_INPUT_LINE_READER_H
#define ZT_TOOLS_REPLAY_INPUT_LINE_READER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "tools/replay/input/byte_source.h"

namespace replay {

/// Whether a line holds nothing but blanks and its end.
inline bool IsBlankLine(std::string_view line) { return line.find_first_not_of(" \t\r\n") == std::string_view::npos; }

class LineReader {
 public:
  /// Without its line end. A longer one is an error, so that a broken capture does not fill memory.
  static constexpr std::size_t kLongestLine = std::size_t{16} << 20;

  explicit LineReader(std::unique_ptr<ByteSource> source);

  /// The next line with its line feed (the last line may have none), valid until the next call; false at the end. Throws
  /// InputError.
  bool Next(std::string_view& line);

  /// The number of the line that Next gave last, from 1.
  [[nodiscard]] std::uint64_t number() const { return number_; }
  [[nodiscard]] const std::string& name() const { return source_->name(); }

  /// Throws an InputError at the line that Next gave last.
  [[noreturn]] void Fail(const std::string& what) const;

 private:
  // Appends a block to buffer_; false at the end.
  bool ReadBlock();

  std::unique_ptr<ByteSource> source_;
  std::string buffer_;
  std::size_t start_ = 0;  // Where the next line starts in buffer_.
  std::uint64_t number_ = 0;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_LINE_READER_H
