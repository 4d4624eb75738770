#include "engine/parent_penalty.h"

#include "engine/tracing.h"

namespace zt {

ParentPenalty::~ParentPenalty() {
  for (const Ancestor& ancestor : ancestors_) {
    if (ancestor.is_new) {
      ancestor.entry->Item.files.Erase(*ancestor.file, file_.hash());
    }
  }
}

void ParentPenalty::Add(ProcessTree::Entry& ancestor) {
  ancestors_.push_back({&ancestor, nullptr, false});
  try {
    const auto [file, is_new] = ancestor.Item.files.FindOrAdd(file_);
    ancestors_.back().file = file;
    ancestors_.back().is_new = is_new;
  } catch (...) {
    ancestors_.pop_back();
    throw;
  }
}

bool ParentPenalty::ChargeOne(const Ancestor& ancestor) const {
  ProcessItem& item = ancestor.entry->Item;
  ZT_TRACE_DEBUG_AT(769, "Parent pid %d", Trace32(item.Pid));
  FileItem& file = ancestor.file->item;
  if (file.penalized) {
    return false;
  }
  item.Score = MultiplyScore(item.Score, factor_);
  item.ScoreTime = time_;
  file.penalized = true;
  if (ancestor.is_new) {
    ZT_TRACE_DEBUG_AT(781, "Parent Penalty %d, new file added to proc %d", factor_, Trace32(item.Pid));
  } else {
    ZT_TRACE_DEBUG_AT(775, "Parent Penalty %d", factor_);
  }
  return true;
}

}  // namespace zt
