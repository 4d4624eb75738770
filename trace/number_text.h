// Numbers as digits.

#ifndef ZT_TRACE_NUMBER_TEXT_H
#define ZT_TRACE_NUMBER_TEXT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zt {

inline constexpr std::string_view kUpperHexDigits = "0123456789ABCDEF";
inline constexpr std::string_view kLowerHexDigits = "0123456789abcdef";

/// The digits of an unsigned number, most significant first, without padding; 0 is "0".
class Digits {
 public:
  /// `symbols` has a character for each value of a digit; its length is the base, 10 or 16.
  explicit Digits(std::uint64_t value, std::string_view symbols = kUpperHexDigits.substr(0, 10)) {
    do {
      characters_[--first_] = symbols[value % symbols.size()];
      value /= symbols.size();
    } while (value != 0);
  }

  [[nodiscard]] std::string_view view() const { return {characters_.data() + first_, characters_.size() - first_}; }

 private:
  std::array<char, 20> characters_;  // 2^64 - 1 has 20 decimal digits.
  std::size_t first_ = characters_.size();
};

}  // namespace zt

#endif  // ZT_TRACE_NUMBER_TEXT_H
