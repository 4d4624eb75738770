#include "tools/replay/text.h"

#include <utf8cpp/utf8.h>

#include <algorithm>
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

std::string JsonString(std::string_view text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
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
