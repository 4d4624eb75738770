// What lengths there are.

#ifndef ZT_ENGINE_FILES_LENGTH_COUNTS_H
#define ZT_ENGINE_FILES_LENGTH_COUNTS_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zt {

/// How many texts of each length there are. Takes memory for the longest, which paths keep short.
class LengthCounts {
 public:
  /// Makes room, so that Add of this length does not fail. Throws std::bad_alloc with nothing changed.
  void Reserve(std::size_t length) {
    if (length >= counts_.size()) {
      counts_.resize(length + 1);
    }
  }
  /// REQUIRES: Reserve(length) was called.
  void Add(std::size_t length) noexcept { ++counts_[length]; }
  /// REQUIRES: a text of this length was added and not removed.
  void Remove(std::size_t length) noexcept { --counts_[length]; }

  [[nodiscard]] bool Has(std::size_t length) const noexcept { return length < counts_.size() && counts_[length] != 0; }
  /// The lengths from `first` to `last` that there are, in rising order. Throws std::bad_alloc.
  [[nodiscard]] std::vector<std::size_t> Between(std::size_t first, std::size_t last) const {
    std::vector<std::size_t> lengths;
    for (std::size_t length = first; length <= last && length < counts_.size(); ++length) {
      if (counts_[length] != 0) {
        lengths.push_back(length);
      }
    }
    return lengths;
  }

 private:
  std::vector<std::uint32_t> counts_;  ///< By length.
};

}  // namespace zt

#endif  // ZT_ENGINE_FILES_LENGTH_COUNTS_H
