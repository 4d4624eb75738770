// Sums of products that need more than 64 bits.

#ifndef ZT_PLATFORM_WIDE_SUM_H
#define ZT_PLATFORM_WIDE_SUM_H

#include <cstdint>

#if !defined(__SIZEOF_INT128__)
#include <intrin.h>
#endif

namespace zt {

/// A number of 128 bits that products are added to. Overflow is the caller's to exclude.
class WideSum {
 public:
  explicit WideSum(std::uint64_t value) : value_{value} {}

#if defined(__SIZEOF_INT128__)
  void AddProduct(std::uint64_t a, std::uint64_t b) { value_ += static_cast<Wide>(a) * b; }
  /// The sum shifted right by 61 bits, cut to 64 bits.
  [[nodiscard]] std::uint64_t Above61() const { return static_cast<std::uint64_t>(value_ >> 61); }
  /// The lower 64 bits of the sum.
  [[nodiscard]] std::uint64_t Low() const { return static_cast<std::uint64_t>(value_); }

 private:
  __extension__ using Wide = unsigned __int128;
  Wide value_;
#else
  void AddProduct(std::uint64_t a, std::uint64_t b) {
#if defined(_M_ARM64)
    const std::uint64_t high = __umulh(a, b);
    const std::uint64_t low = a * b;
#else
    std::uint64_t high = 0;
    const std::uint64_t low = _umul128(a, b, &high);
#endif
    value_.low += low;
    value_.high += high + (value_.low < low ? 1 : 0);
  }
  [[nodiscard]] std::uint64_t Above61() const { return value_.low >> 61 | value_.high << 3; }
  [[nodiscard]] std::uint64_t Low() const { return value_.low; }

 private:
  struct Wide {
    std::uint64_t low;
    std::uint64_t high = 0;
  };
  Wide value_;
#endif
};

}  // namespace zt

#endif  // ZT_PLATFORM_WIDE_SUM_H
