#include "platform/utf8.h"

#include <cstdint>
#include <type_traits>

namespace zt {
namespace {

constexpr std::uint32_t kReplacementCharacter = 0xFFFD;
constexpr std::uint32_t kLastCodePoint = 0x10FFFF;

constexpr bool IsHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// Not negative, also where wchar_t is signed.
constexpr std::uint32_t ToUnit(wchar_t character) { return static_cast<std::make_unsigned_t<wchar_t>>(character); }

struct CodePoint {
  std::uint32_t value;
  std::size_t unit_count;
};

CodePoint FirstCodePoint(std::wstring_view text) {
  const auto first = ToUnit(text[0]);
  if (IsHighSurrogate(first) && text.size() > 1) {
    const auto second = ToUnit(text[1]);
    if (IsLowSurrogate(second)) {
      return {0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00), 2};
    }
  }
  const bool is_character = !IsHighSurrogate(first) && !IsLowSurrogate(first) && first <= kLastCodePoint;
  return {is_character ? first : kReplacementCharacter, 1};
}

constexpr char Continuation(std::uint32_t code_point, unsigned shift) {
  return static_cast<char>(0x80 | ((code_point >> shift) & 0x3F));
}

}  // namespace

Utf8Character FirstCharacterAsUtf8(std::wstring_view text) {
  const auto [value, unit_count] = FirstCodePoint(text);
  if (value < 0x80) {
    return {{static_cast<char>(value)}, 1, unit_count};
  }
  if (value < 0x800) {
    return {{static_cast<char>(0xC0 | value >> 6), Continuation(value, 0)}, 2, unit_count};
  }
  if (value < 0x10000) {
    return {{static_cast<char>(0xE0 | value >> 12), Continuation(value, 6), Continuation(value, 0)}, 3, unit_count};
  }
  return {{static_cast<char>(0xF0 | value >> 18), Continuation(value, 12), Continuation(value, 6), Continuation(value, 0)},
          4,
          unit_count};
}

std::string WideToUtf8(std::wstring_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  while (!text.empty()) {
    const Utf8Character character = FirstCharacterAsUtf8(text);
    utf8 += character.view();
    text.remove_prefix(character.unit_count);
  }
  return utf8;
}

}  // namespace zt
