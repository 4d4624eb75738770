// What lengths there are.

#ifndef ZT_ENGINE_FILES_LENGTH_COUNTS_H
#define ZT_ENGINE_FILES_LENGTH_COUNTS_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/files/place_set.h"

namespace zt {

/// How many texts of each length there are, up to TextHash::kMaxLength.
class LengthCounts {
 public:
  /// Makes room, so that Add of this length does not fail. Throws std::bad_alloc with nothing changed.
  void Reserve(std::size_t length) {
    if (length >= counts_.size()) {
      counts_.resize(length + 1);
    }
  }
  /// REQUIRES: Reserve(length) was called.
  void Add(std::size_t length) noexcept {
    if (counts_[length]++ == 0) {
      lengths_.Add(length);
    }
  }
  /// REQUIRES: a text of this length was added and not removed.
  void Remove(std::size_t length) noexcept {
    if (--counts_[length] == 0) {
      lengths_.Remove(length);
    }
  }

  /// The lengths that there are.
  [[nodiscard]] const PlaceSet& lengths() const noexcept { return lengths_; }

 private:
  std::vector<std::uint32_t> counts_;  ///< By length.
  PlaceSet lengths_;
};

}  // namespace zt

#endif  // ZT_ENGINE_FILES_LENGTH_COUNTS_H
