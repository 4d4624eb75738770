// A keyed hash of text, of which the hash of every part of a text can be had by one multiplication.

#ifndef ZT_ENGINE_FILES_TEXT_HASH_H
#define ZT_ENGINE_FILES_TEXT_HASH_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/wide_sum.h"

namespace zt {

/// The polynomial (u1 + 1) B^n + (u2 + 1) B^(n-1) + ... + (un + 1) B of a text's units, modulo the prime 2^61 - 1. The base B
/// is a secret: whoever does not know it cannot choose texts whose hashes meet. The hash of an empty text is 0.
class TextHash {
 public:
  /// Every hash is less than this.
  static constexpr std::uint64_t kPrime = (std::uint64_t{1} << 61) - 1;
  /// The longest text, in units; no path of a record is as long.
  static constexpr std::size_t kMaxLength = 528;

  /// The base is made from `seed`: equal seeds, equal hashes.
  explicit TextHash(std::uint64_t seed);

  /// The hash that the process uses, whose seed is random. The same object in every call.
  static const TextHash& OfProcess();

  [[nodiscard]] std::uint64_t operator()(std::u16string_view text) const { return Append(0, text); }
  /// The hash of a text of hash `hash`, followed by `text`.
  [[nodiscard]] std::uint64_t Append(std::uint64_t hash, std::u16string_view text) const;
  /// The hash of a text of hash `hash`, followed by one of `length` units whose hash is `next`.
  [[nodiscard]] std::uint64_t Join(std::uint64_t hash, std::uint64_t next, std::size_t length) const {
    return Sum(Product(hash, powers_[length]), next);
  }

  /// Stores the hashes of all beginnings of `text`, the empty one and the whole text included, shortest first.
  /// REQUIRES: `hashes` has text.size() + 1 elements, and `text` at most kMaxLength units.
  void HashBeginnings(std::u16string_view text, std::span<std::uint64_t> hashes) const;
  /// The hash of the part [begin, end) of the text whose beginnings have the hashes `beginnings`, after a text of hash
  /// `before`.
  [[nodiscard]] std::uint64_t OfPart(const std::uint64_t* beginnings, std::size_t begin, std::size_t end,
                                     std::uint64_t before = 0) const {
    return Sum(beginnings[end], Product(Difference(before, beginnings[begin]), powers_[end - begin]));
  }

 private:
  static std::uint64_t Reduce(std::uint64_t value) { return value >= kPrime ? value - kPrime : value; }
  static std::uint64_t Reduce(const WideSum& sum) {
    const std::uint64_t folded = (sum.Low() & kPrime) + sum.Above61();  // 2^61 is 1 modulo the prime.
    return Reduce((folded & kPrime) + (folded >> 61));
  }
  static std::uint64_t Sum(std::uint64_t a, std::uint64_t b) { return Reduce(a + b); }
  static std::uint64_t Difference(std::uint64_t a, std::uint64_t b) { return Reduce(a + kPrime - b); }
  static std::uint64_t Product(std::uint64_t a, std::uint64_t b) {
    WideSum sum(0);
    sum.AddProduct(a, b);
    return Reduce(sum);
  }
  [[nodiscard]] std::uint64_t AppendUnit(std::uint64_t hash, char16_t unit) const {
    return Product(hash + unit + 1, powers_[1]);  // Less than 2^62, which Product takes.
  }

  std::array<std::uint64_t, kMaxLength + 1> powers_;  ///< Of the base.
};

}  // namespace zt

#endif  // ZT_ENGINE_FILES_TEXT_HASH_H
