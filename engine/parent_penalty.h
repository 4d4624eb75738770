// The charge that every ancestor of a process takes for one of its files.

#ifndef ZT_ENGINE_PARENT_PENALTY_H
#define ZT_ENGINE_PARENT_PENALTY_H

#include <cstdint>

#include "zteng/zteng.h"

namespace zt {

/// Multiplies `score` by `factor`; the product wraps at 32 bits.
constexpr std::int32_t MultiplyScore(std::int32_t score, std::uint32_t factor) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(score) * factor);
}

/// Charges one file to one ancestor after the other. Borrows the event and the file's entry: it must not outlive the insertion
/// that made it.
class ParentPenalty {
 public:
  ParentPenalty(std::uint32_t factor, const LOG_ITEM& log, const ZtFileMap::value_type& file)
      : factor_(factor), log_(&log), file_(&file) {}

  /// Multiplies the ancestor's score, stamps the time and marks the file in the ancestor's records, making a record where it
  /// has none; a file charges an ancestor once. Returns whether it was charged. Throws std::bad_alloc with nothing changed.
  bool operator()(ZT_PID_ITEM& ancestor) const;

 private:
  std::uint32_t factor_;
  const LOG_ITEM* log_;
  const ZtFileMap::value_type* file_;
};

}  // namespace zt

#endif  // ZT_ENGINE_PARENT_PENALTY_H
