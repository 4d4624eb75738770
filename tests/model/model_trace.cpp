#include "tests/model/model_trace.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zt::model {
namespace {

bool IsHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

void AppendUtf8(std::string& out, std::uint32_t point) {
  const auto byte = [&out](std::uint32_t value) { out.push_back(static_cast<char>(static_cast<unsigned char>(value))); };
  if (point < 0x80) {
    byte(point);
  } else if (point < 0x800) {
    byte(0xC0 | (point >> 6));
    byte(0x80 | (point & 0x3F));
  } else if (point < 0x10000) {
    byte(0xE0 | (point >> 12));
    byte(0x80 | ((point >> 6) & 0x3F));
    byte(0x80 | (point & 0x3F));
  } else {
    byte(0xF0 | (point >> 18));
    byte(0x80 | ((point >> 12) & 0x3F));
    byte(0x80 | ((point >> 6) & 0x3F));
    byte(0x80 | (point & 0x3F));
  }
}

/// Replaces the conversions of `format` in turn: "%", digits and "l", and then one letter, or "ws".
std::string Fill(std::string_view format, const std::vector<std::string>& arguments) {
  std::string text;
  std::size_t next = 0;
  std::size_t i = 0;
  while (i < format.size()) {
    const std::size_t percent = std::min(format.find('%', i), format.size());
    text += format.substr(i, percent - i);
    if (percent == format.size()) {
      break;
    }
    i = percent + 1;
    while (format[i] == 'l' || (format[i] >= '0' && format[i] <= '9')) {
      ++i;
    }
    i += format[i] == 'w' ? 2 : 1;
    text += arguments.at(next);
    ++next;
  }
  return text;
}

}  // namespace

std::string Signed32(std::uint64_t value) { return std::to_string(static_cast<std::int32_t>(value)); }
std::string Unsigned32(std::uint64_t value) { return std::to_string(static_cast<std::uint32_t>(value)); }
std::string Signed64(std::int64_t value) { return std::to_string(value); }

std::string Hex8(std::uint32_t value) {
  std::string digits;
  do {
    digits.insert(digits.begin(), "0123456789abcdef"[value % 16]);
    value /= 16;
  } while (value != 0);
  while (digits.size() < 6) {
    digits.insert(digits.begin(), '0');
  }
  return "0x" + digits;
}

std::string Utf8(const std::wstring& text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size() && text[i] != L'\0'; ++i) {
    const std::uint32_t unit = static_cast<char16_t>(text[i]);
    const std::uint32_t following = static_cast<char16_t>(i + 1 < text.size() ? text[i + 1] : L'\0');
    if (IsHighSurrogate(unit) && IsLowSurrogate(following)) {
      AppendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (following - 0xDC00));
      ++i;
    } else if (IsHighSurrogate(unit) || IsLowSurrogate(unit)) {
      AppendUtf8(out, 0xFFFD);
    } else {
      AppendUtf8(out, unit);
    }
  }
  return out;
}

void ModelTrace::Debug(std::int32_t line, std::string_view format, const std::vector<std::string>& arguments) {
  Write(0x2, line, "debug", format, arguments);
}

void ModelTrace::Warning(std::int32_t line, std::string_view format, const std::vector<std::string>& arguments) {
  Write(0x4, line, "warning", format, arguments);
}

void ModelTrace::Info(std::int32_t line, std::string_view format, const std::vector<std::string>& arguments) {
  Write(0x1, line, "", format, arguments);
}

void ModelTrace::Write(std::uint64_t flag, std::int32_t line, std::string_view level, std::string_view format,
                       const std::vector<std::string>& arguments) {
  if ((flags_ & flag) == 0) {
    return;
  }
  Reached(format);
  lines_.push_back({line, std::string(level), Fill(format, arguments)});
}

std::vector<ModelLine> ModelTrace::Take() { return std::exchange(lines_, {}); }

}  // namespace zt::model
