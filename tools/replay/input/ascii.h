// Letter case of ASCII text. Captures spell the same path in several cases; beyond A to Z case is left alone, as in the engine.

#ifndef ZT_TOOLS_REPLAY_INPUT_ASCII_H
#define ZT_TOOLS_REPLAY_INPUT_ASCII_H

#include <algorithm>
#include <string>
#include <string_view>

namespace replay {

constexpr char LowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

inline std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) { return LowerCase(c); });
  return lower;
}

inline bool EqualNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return LowerCase(x) == LowerCase(y); });
}

inline bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && EqualNoCase(text.substr(0, prefix.size()), prefix);
}

inline bool EndsWithNoCase(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && EqualNoCase(text.substr(text.size() - suffix.size()), suffix);
}

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_ASCII_H
