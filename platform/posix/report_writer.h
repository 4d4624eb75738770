// Text to a file by what a signal handler may use: no heap, no locks, no locale.

#ifndef ZT_PLATFORM_POSIX_REPORT_WRITER_H
#define ZT_PLATFORM_POSIX_REPORT_WRITER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zt {

/// Collects text in a small buffer and writes it to a file. After an error everything further is dropped.
class ReportWriter {
 public:
  /// `file`: a descriptor, which stays the caller's and open for as long as this lives.
  explicit ReportWriter(int file) : file_(file) {}
  ReportWriter(const ReportWriter&) = delete;  // Two would write the same buffer twice.
  ReportWriter& operator=(const ReportWriter&) = delete;
  ~ReportWriter() { Flush(); }

  void Text(std::string_view text);
  /// As Text, but with '?' for control characters, so that a name cannot disturb the lines.
  void Name(std::string_view name);
  /// The text, and spaces until it fills `width` columns.
  void Column(std::string_view text, std::size_t width);
  /// Decimal digits, with zeros in front until there are `width`; any sign comes first.
  void Number(std::int64_t value, std::size_t width = 1);
  /// Lower-case hexadecimal digits without a prefix, with zeros in front until there are `width`.
  void Hex(std::uint64_t value, std::size_t width = 1);

  /// Writes what is in the buffer.
  void Flush();

 private:
  void Digits(std::uint64_t value, unsigned base, std::size_t width);
  void Write(std::string_view text);

  std::array<char, 1024> buffer_;
  std::size_t used_ = 0;
  int file_;
  bool failed_ = false;
};

}  // namespace zt

#endif  // ZT_PLATFORM_POSIX_REPORT_WRITER_H
