#include "platform/posix/report_writer.h"

#include <unistd.h>

#include <cerrno>

namespace zt {

void ReportWriter::Text(std::string_view text) {
  while (!text.empty()) {
    if (used_ == buffer_.size()) {
      Flush();
    }
    const std::size_t count = text.copy(buffer_.data() + used_, buffer_.size() - used_);
    used_ += count;
    text.remove_prefix(count);
  }
}

void ReportWriter::Name(std::string_view name) {
  for (const char& character : name) {
    const bool is_control = static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
    Text(is_control ? "?" : std::string_view(&character, 1));
  }
}

void ReportWriter::Column(std::string_view text, std::size_t width) {
  Text(text);
  for (std::size_t column = text.size(); column < width; ++column) {
    Text(" ");
  }
}

void ReportWriter::Number(std::int64_t value, std::size_t width) {
  const auto bits = static_cast<std::uint64_t>(value);
  if (value < 0) {
    Text("-");
  }
  Digits(value < 0 ? ~bits + 1 : bits, 10, width);
}

void ReportWriter::Hex(std::uint64_t value, std::size_t width) { Digits(value, 16, width); }

void ReportWriter::Digits(std::uint64_t value, unsigned base, std::size_t width) {
  std::array<char, 20> digits;  // 2^64 - 1 has 20 decimal digits.
  std::size_t first = digits.size();
  do {
    digits[--first] = "0123456789abcdef"[value % base];
    value /= base;
  } while (value != 0);
  for (std::size_t count = digits.size() - first; count < width; ++count) {
    Text("0");
  }
  Text({digits.data() + first, digits.size() - first});
}

void ReportWriter::Flush() {
  Write({buffer_.data(), used_});
  used_ = 0;
}

void ReportWriter::Write(std::string_view text) {
  while (!text.empty() && !failed_) {
    const ssize_t written = write(file_, text.data(), text.size());
    if (written > 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else {
      failed_ = written == 0 || errno != EINTR;
    }
  }
}

}  // namespace zt
