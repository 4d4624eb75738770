// What lengths there are.

#ifndef ZT_ENGINE_LENGTH_COUNTS_H
#define ZT_ENGINE_LENGTH_COUNTS_H

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

namespace zt {

/// How many texts of each length there are. Takes memory for the longest, which paths keep short.
class LengthCounts {
 public:
  static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

  /// Throws std::bad_alloc with nothing changed.
  void Add(std::size_t length) {
    if (length >= counts_.size()) {
      counts_.resize(length + 1);
    }
    ++counts_[length];
  }

  /// REQUIRES: a text of this length was added and not removed.
  void Remove(std::size_t length) noexcept { --counts_[length]; }

  /// The smallest length of a text that is at least `length`, or kNone.
  [[nodiscard]] std::size_t Next(std::size_t length) const noexcept {
    const auto first = counts_.begin() + static_cast<std::ptrdiff_t>(std::min(length, counts_.size()));
    const auto found = std::find_if(first, counts_.end(), [](std::size_t count) { return count != 0; });
    return found == counts_.end() ? kNone : static_cast<std::size_t>(found - counts_.begin());
  }

 private:
  std::vector<std::size_t> counts_;  ///< By length.
};

}  // namespace zt

#endif  // ZT_ENGINE_LENGTH_COUNTS_H
