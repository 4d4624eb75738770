#include "engine/step_outcome.h"

#include <utility>

namespace zt {

// The latest goes first: a file that stepped twice ends as it was before the first step.
void StepOutcome::TakeBack() noexcept {
  if (step_count_ == 0) {
    return;
  }
  while (step_count_ > 0) {
    const StepBefore& before = steps_[--step_count_];
    before.file->State = before.state;
    before.file->Written = before.written;
    before.file->Similar = before.similar;
  }
  while (search_count_ > 0) {
    SearchBefore& before = searches_[--search_count_];
    before.process->NameDiff.swap(before.name_diff);
  }
}

}  // namespace zt
