// The charge that every ancestor of a process takes for one of its files.

#ifndef ZT_ENGINE_PARENT_PENALTY_H
#define ZT_ENGINE_PARENT_PENALTY_H

#include <cstdint>
#include <vector>

#include "engine/process_tree.h"

namespace zt {

/// Multiplies `score` by `factor`; the product wraps at 32 bits.
constexpr std::int32_t MultiplyScore(std::int32_t score, std::uint32_t factor) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(score) * factor);
}

/// Charges one file to the ancestors of a process: to all of them, or, where memory is exhausted, to none. All that can fail is
/// done by Add. Borrows the file's path and the ancestors: it must not outlive the insertion that made it.
class ParentPenalty {
 public:
  /// @param factor  the penalty
  /// @param time    LOG_ITEM::Time of the event that is charged for
  /// @param file    the charged file's key
  ParentPenalty(std::uint32_t factor, std::int64_t time, PathName& file) : factor_(factor), time_(time), file_(file) {}
  ParentPenalty(const ParentPenalty&) = delete;
  ParentPenalty& operator=(const ParentPenalty&) = delete;
  /// Takes the records back that were made for a charge that did not follow.
  ~ParentPenalty();

  /// Takes the next ancestor in and makes sure that it has a record of the file. Throws std::bad_alloc with nothing changed.
  void Add(ProcessTree::Entry& ancestor);

  /// Multiplies each ancestor's score, stamps the time and marks the file in the ancestor's records; a file charges an ancestor
  /// once. Calls charged(ancestor, score_before) after each charge. Allocates nothing.
  template <typename Charged>
  void Charge(const Charged& charged) {
    for (const Ancestor& ancestor : ancestors_) {
      const std::int32_t score_before = ancestor.entry->Item.Score;
      if (ChargeOne(ancestor)) {
        charged(*ancestor.entry, score_before);
      }
    }
    ancestors_.clear();
  }

 private:
  struct Ancestor {
    ProcessTree::Entry* entry;
    TrackedFile* file;  ///< In the ancestor's records.
    bool is_new;        ///< The record was made by Add.
  };

  bool ChargeOne(const Ancestor& ancestor) const;

  std::uint32_t factor_;
  std::int64_t time_;
  PathName& file_;
  std::vector<Ancestor> ancestors_;
};

}  // namespace zt

#endif  // ZT_ENGINE_PARENT_PENALTY_H
