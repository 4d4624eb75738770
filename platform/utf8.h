// Wide text to UTF-8, the same on every system.

#ifndef ZT_PLATFORM_UTF8_H
#define ZT_PLATFORM_UTF8_H

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace zt {

/// One character in UTF-8.
struct Utf8Character {
  std::array<char, 4> bytes = {};
  std::size_t byte_count = 0;  ///< How many of `bytes` count: 1 to 4.
  std::size_t unit_count = 0;  ///< How many UTF-16 units it was made of: 1 or 2.

  [[nodiscard]] std::string_view view() const { return {bytes.data(), byte_count}; }
};

/// The character that the text begins with. The text is UTF-16, one unit an element, also where wchar_t is wider; a surrogate
/// without its partner becomes U+FFFD. REQUIRES: `text` is not empty.
Utf8Character FirstCharacterAsUtf8(std::wstring_view text);

/// The whole text in UTF-8. Throws only std::bad_alloc.
std::string WideToUtf8(std::wstring_view text);

}  // namespace zt

#endif  // ZT_PLATFORM_UTF8_H
