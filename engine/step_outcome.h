// What the steps of one event led to.

#ifndef ZT_ENGINE_STEP_OUTCOME_H
#define ZT_ENGINE_STEP_OUTCOME_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "engine/process_item.h"

namespace zt {

/// The penalty of one event and how to take the steps that led to it back: a penalty that cannot be charged, because memory is
/// exhausted, must not be lost. Taken back, the same event leads to it again.
///
/// Points into the records of the event's processes; lives no longer than the hold of the lock.
class StepOutcome {
 public:
  /// A callback is about to step `file`, whose state before the event was `state`. Never fails.
  void BeforeCallback(FileItem& file, std::uint8_t state) noexcept {
    steps_[step_count_++] = {&file, state, file.Written, file.Similar};
  }
  /// The callback ran and returned `penalty`. A step without a penalty is never taken back.
  void AfterCallback(std::uint64_t penalty) noexcept {
    stepped_ = steps_[step_count_ - 1].file;
    if (penalty <= 1) {
      --step_count_;
    }
  }
  /// A search is about to learn a name difference for `process`. Throws std::bad_alloc with nothing changed.
  void BeforeSearch(ProcessItem& process) {
    std::u16string name_diff = process.NameDiff;
    searches_[search_count_++] = {&process, std::move(name_diff)};
  }

  /// The file that stepped last, by a callback; null while none did.
  [[nodiscard]] const FileItem* stepped() const noexcept { return stepped_; }
  /// Takes the steps back that had a penalty or were not finished, and what the searches learned that led to them.
  void TakeBack() noexcept;

 private:
  // An event is processed for two processes; a rename steps two files and searches once in each.
  static constexpr std::size_t kMostSteps = 4;
  static constexpr std::size_t kMostSearches = 2;

  struct StepBefore {
    FileItem* file = nullptr;
    std::uint8_t state = 0;
    bool written = false;
    bool similar = false;
  };
  struct SearchBefore {
    ProcessItem* process = nullptr;
    std::u16string name_diff;
  };

  std::array<StepBefore, kMostSteps> steps_;
  std::array<SearchBefore, kMostSearches> searches_;
  std::size_t step_count_ = 0;
  std::size_t search_count_ = 0;
  const FileItem* stepped_ = nullptr;
};

}  // namespace zt

#endif  // ZT_ENGINE_STEP_OUTCOME_H
