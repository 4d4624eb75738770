// Text inside the engine: UTF-16 code units in two bytes each on every system, where a std::wstring may take four.

#ifndef ZT_ENGINE_TEXT_H
#define ZT_ENGINE_TEXT_H

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

namespace zt {

/// The units as a wide string, one element each: what hosts are given and what traces take.
inline std::wstring Widen(std::u16string_view units) { return {units.begin(), units.end()}; }

/// The elements of a wide string as units.
inline std::u16string ToUnits(std::wstring_view wide) { return {wide.begin(), wide.end()}; }

/// Whether both are the same units; quicker than ==, which compares unit by unit.
inline bool SameUnits(std::u16string_view a, std::u16string_view b) {
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0);
}

/// Whether `a` comes before `b` in the order of units; quicker than <, which compares unit by unit.
bool LessUnits(std::u16string_view a, std::u16string_view b);

inline bool SameText(std::u16string_view units, std::wstring_view wide) {
  return std::equal(units.begin(), units.end(), wide.begin(), wide.end(),
                    [](char16_t unit, wchar_t other) { return static_cast<wchar_t>(unit) == other; });
}

}  // namespace zt

#endif  // ZT_ENGINE_TEXT_H
