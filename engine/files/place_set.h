// Sets of small numbers.

#ifndef ZT_ENGINE_FILES_PLACE_SET_H
#define ZT_ENGINE_FILES_PLACE_SET_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "engine/files/text_hash.h"

namespace zt {

/// Places in a text, or lengths of texts: a bit for each number up to TextHash::kMaxLength.
class PlaceSet {
 public:
  static constexpr std::size_t kNone = ~std::size_t{0};
  static constexpr std::size_t kWordBits = 64;

  void Add(std::size_t place) noexcept { words_[place / kWordBits] |= Bit(place); }
  void Remove(std::size_t place) noexcept { words_[place / kWordBits] &= ~Bit(place); }
  [[nodiscard]] bool Has(std::size_t place) const noexcept {
    return place / kWordBits < words_.size() && (words_[place / kWordBits] & Bit(place)) != 0;
  }
  /// The smallest number from `first` on, or kNone.
  [[nodiscard]] std::size_t Next(std::size_t first) const noexcept {
    std::size_t word = first / kWordBits;
    if (word >= words_.size()) {
      return kNone;
    }
    std::uint64_t bits = words_[word] & (~std::uint64_t{0} << first % kWordBits);
    while (bits == 0) {
      if (++word == words_.size()) {
        return kNone;
      }
      bits = words_[word];
    }
    return kWordBits * word + static_cast<std::size_t>(std::countr_zero(bits));
  }

  /// Which of the 64 numbers from 64 `word` on are in the set that has `distance` added to each number of this one.
  [[nodiscard]] std::uint64_t Word(std::size_t word, std::size_t distance = 0) const noexcept {
    const std::size_t words = distance / kWordBits;
    const std::size_t bits = distance % kWordBits;
    if (words > word) {
      return 0;
    }
    const std::uint64_t upper = words_[word - words] << bits;
    return bits == 0 || words == word ? upper : upper | words_[word - words - 1] >> (kWordBits - bits);
  }
  /// Which of the 64 numbers from 64 `word` on are less than `end`.
  static std::uint64_t WordBelow(std::size_t end, std::size_t word) noexcept {
    if (end <= kWordBits * word) {
      return 0;
    }
    const std::size_t count = end - kWordBits * word;
    return count >= kWordBits ? ~std::uint64_t{0} : Bit(count) - 1;
  }

 private:
  static std::uint64_t Bit(std::size_t place) noexcept { return std::uint64_t{1} << place % kWordBits; }

  std::array<std::uint64_t, TextHash::kMaxLength / kWordBits + 1> words_ = {};
};

}  // namespace zt

#endif  // ZT_ENGINE_FILES_PLACE_SET_H
