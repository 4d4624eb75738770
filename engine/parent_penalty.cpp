#include "engine/parent_penalty.h"

#include "engine/tracing.h"

namespace zt {

bool ParentPenalty::operator()(ZT_PID_ITEM& ancestor) const {
  ZT_TRACE_DEBUG_AT(769, "Parent pid %d", Trace32(ancestor.Pid));
  const auto [entry, is_new] = ancestor.FileIndex.FindOrAdd(ancestor.files, file_->first);
  ZT_FILE_ITEM& file = entry->second;
  if (file.penalized) {
    return false;
  }
  ancestor.Score = MultiplyScore(ancestor.Score, factor_);
  ancestor.ScoreTime = log_->Time;
  file.penalized = true;
  if (is_new) {
    ZT_TRACE_DEBUG_AT(781, "Parent Penalty %d, new file added to proc %d", factor_, Trace32(ancestor.Pid));
  } else {
    ZT_TRACE_DEBUG_AT(775, "Parent Penalty %d", factor_);
  }
  return true;
}

}  // namespace zt
