#include "tools/replay/text.h"

#include <fmt/format.h>
#include <utf8cpp/utf8.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <nlohmann/json.hpp>

namespace replay {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr bool IsLead(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsTrail(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }
constexpr bool IsControl(char32_t point) { return point < 0x20 || (point >= 0x7F && point < 0xA0); }

/// Takes the code point at `position` and moves behind it.
char32_t TakeCodePoint(std::wstring_view units, std::size_t& position) {
  const auto unit = static_cast<char32_t>(units[position++]);
  if (!IsLead(unit)) {
    return IsTrail(unit) ? kReplacement : unit;
  }
  if (position == units.size() || !IsTrail(static_cast<char32_t>(units[position]))) {
    return kReplacement;
  }
  return 0x10000 + ((unit - 0xD800) << 10U) + (static_cast<char32_t>(units[position++]) - 0xDC00);
}

/// Characters from the first to the last of them.
struct CharacterRange {
  char32_t first;
  char32_t last;
};

/// Control characters, and those that Unicode lists as formatting or as ignorable by default: they have no look of their own.
/// Left out are the variation selectors of the first plane, which only choose between looks.
constexpr std::array<CharacterRange, 20> kNotShown = {{
    {0x00, 0x1F},        // C0
    {0x7F, 0x9F},        // DEL, C1
    {0xAD, 0xAD},        // soft hyphen
    {0x34F, 0x34F},      // grapheme joiner
    {0x61C, 0x61C},      // Arabic letter mark
    {0x115F, 0x1160},    // Hangul fillers
    {0x17B4, 0x17B5},    // Khmer inherent vowels
    {0x180B, 0x180F},    // Mongolian selectors
    {0x200B, 0x200F},    // zero-width space, joiners, direction marks
    {0x2028, 0x202E},    // line and paragraph separators, embeddings and overrides of direction
    {0x2060, 0x206F},    // word joiner, invisible operators, isolates
    {0x3164, 0x3164},    // Hangul filler
    {0xFEFF, 0xFEFF},    // byte order mark
    {0xFFA0, 0xFFA0},    // Hangul filler of half width
    {0xFFF0, 0xFFFB},    // interlinear annotations
    {0xFFFE, 0xFFFF},    // no characters
    {0x13430, 0x1343F},  // hieroglyph format controls
    {0x1BCA0, 0x1BCA3},  // shorthand format controls
    {0x1D173, 0x1D17A},  // musical format controls
    {0xE0000, 0xE0FFF},  // tags, further variation selectors
}};

bool IsShown(char32_t point) {
  return std::none_of(kNotShown.begin(), kNotShown.end(),
                      [point](const CharacterRange& range) { return point >= range.first && point <= range.last; });
}

/// Most text is of this kind, and needs no look at its characters.
bool IsPrintableAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

/// `valid`, which is UTF-8, with what `write(point, text)` adds to the text for each character that is not shown.
template <typename Write>
std::string Rewritten(const std::string& valid, Write write) {
  std::string text;
  text.reserve(valid.size());
  for (auto at = valid.begin(); at != valid.end();) {
    const auto start = at;
    const auto point = static_cast<char32_t>(utf8::unchecked::next(at));
    if (IsShown(point)) {
      text.append(start, at);
    } else {
      write(point, text);
    }
  }
  return text;
}

/// Adds the escape of a character: of one beyond the first plane two, for its surrogates.
void AddJsonEscape(char32_t point, std::string& text) {
  const auto out = std::back_inserter(text);
  const auto number = static_cast<std::uint32_t>(point);
  if (number < 0x10000) {
    fmt::format_to(out, "\\u{:04x}", number);
  } else {
    fmt::format_to(out, "\\u{:04x}\\u{:04x}", 0xD800 + ((number - 0x10000) >> 10U), 0xDC00 + ((number - 0x10000) & 0x3FFU));
  }
}

}  // namespace

std::string Utf8(std::wstring_view units) {
  std::string text;
  text.reserve(units.size());
  for (std::size_t position = 0; position < units.size();) {
    utf8::append(TakeCodePoint(units, position), std::back_inserter(text));
  }
  return text;
}

std::string PlainUtf8(std::wstring_view units) {
  std::wstring plain(units);
  std::replace_if(
      plain.begin(), plain.end(), [](wchar_t unit) { return IsControl(static_cast<char32_t>(unit)); },
      static_cast<wchar_t>(kReplacement));
  return Utf8(plain);
}

std::string ShownText(std::string_view text) {
  if (IsPrintableAscii(text)) {
    return std::string(text);
  }
  std::string valid;
  utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid));
  return Rewritten(valid, [](char32_t, std::string& shown) { utf8::append(kReplacement, std::back_inserter(shown)); });
}

std::string ShownText(std::wstring_view units) { return ShownText(Utf8(units)); }

std::string ShownJson(std::string json) { return IsPrintableAscii(json) ? std::move(json) : Rewritten(json, AddJsonEscape); }

std::string JsonString(std::string_view text) {
  return ShownJson(nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

std::string JsonString(std::wstring_view units) { return JsonString(Utf8(units)); }

std::wstring TargetOf(const LOG_ITEM& record) {
  std::wstring target;
  target.reserve(std::size(record.Target));
  std::transform(std::begin(record.Target), std::find(std::begin(record.Target), std::end(record.Target), ZtWideChar{}),
                 std::back_inserter(target), [](ZtWideChar unit) { return static_cast<wchar_t>(unit); });
  return target;
}

std::string PathOf(const LOG_ITEM& record) {
  return {std::begin(record.Path), std::find(std::begin(record.Path), std::end(record.Path), '\0')};
}

}  // namespace replay
