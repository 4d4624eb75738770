#include "engine/parent_penalty.h"

#include "engine/tracing.h"

namespace zt {

ParentPenalty::~ParentPenalty() {
  for (const Ancestor& ancestor : ancestors_) {
    if (ancestor.is_new) {
      ZT_PID_ITEM& item = ancestor.entry->Item;
      item.FileIndex.Erase(item.files, item.files.find(ancestor.file->first));
    }
  }
}

void ParentPenalty::Add(ProcessTree::Entry& ancestor) {
  ancestors_.push_back({&ancestor, nullptr, false});
  try {
    const auto [file, is_new] = ancestor.Item.FileIndex.FindOrAdd(ancestor.Item.files, file_.first);
    ancestors_.back().file = file;
    ancestors_.back().is_new = is_new;
  } catch (...) {
    ancestors_.pop_back();
    throw;
  }
}

bool ParentPenalty::ChargeOne(const Ancestor& ancestor) const {
  ZT_PID_ITEM& item = ancestor.entry->Item;
  ZT_TRACE_DEBUG_AT(769, "Parent pid %d", Trace32(item.Pid));
  ZT_FILE_ITEM& file = ancestor.file->second;
  if (file.penalized) {
    return false;
  }
  item.Score = MultiplyScore(item.Score, factor_);
  item.ScoreTime = log_.Time;
  file.penalized = true;
  if (ancestor.is_new) {
    ZT_TRACE_DEBUG_AT(781, "Parent Penalty %d, new file added to proc %d", factor_, Trace32(item.Pid));
  } else {
    ZT_TRACE_DEBUG_AT(775, "Parent Penalty %d", factor_);
  }
  return true;
}

}  // namespace zt
