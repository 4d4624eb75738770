#include "tools/replay/process_ledger.h"

#include <algorithm>

namespace replay {
namespace {

bool IsProduct(const ScoreChange& change) { return std::int64_t{change.before} * change.factor == change.after; }

}  // namespace

void ProcessLedger::Apply(const CallReports& reports, std::uint64_t number, std::int64_t time, const ProcessLookUp& look_up) {
  std::vector<ProcessRecord*> touched;
  for (const ScoreChange& change : reports.scores) {
    ProcessRecord* record = Find(change.process);
    if (record == nullptr) {
      if (!change.IsPenalty() && !IsSuspiciousScore(change.after)) {
        continue;
      }
      record = &Enter(change.process, look_up);
    }
    TakeIn(*record, change, number);
    touched.push_back(record);
  }
  // A score counts as it stands after the event: a product that wraps is cut back within the same event.
  for (ProcessRecord* record : touched) {
    if (Settle(*record, number, time)) {
      MarkAncestors(*record, look_up);
    }
  }
}

ProcessRecord* ProcessLedger::Find(const ZtProcKey& key) {
  const auto found = current_.find(key);
  return found == current_.end() ? nullptr : found->second;
}

ProcessRecord& ProcessLedger::Enter(const ZtProcKey& key, const ProcessLookUp& look_up) {
  ProcessRecord record;
  record.key = key;
  zt::ProcessView process;
  if (look_up(key, process)) {
    record.image = process.image_path;
    record.parent = process.parent;
    zt::ProcessView parent;
    if (look_up(record.parent, parent)) {
      record.parent_image = parent.image_path;
    }
  }
  records_.push_back(std::move(record));
  current_[key] = &records_.back();
  return records_.back();
}

ProcessRecord& ProcessLedger::FindOrEnter(const ZtProcKey& key, const ProcessLookUp& look_up) {
  ProcessRecord* record = Find(key);
  return record != nullptr ? *record : Enter(key, look_up);
}

void ProcessLedger::TakeIn(ProcessRecord& record, const ScoreChange& change, std::uint64_t number) {
  record.score = change.after;
  if (change.cause == zt::ScoreReport::Cause::kModuleLoad) {
    ++record.library_loads;
  } else if (change.cause == zt::ScoreReport::Cause::kClamp && record.wrapped == number) {
    record.wrapped.reset();  // The bound stands for what is beyond it.
  }
  if (!change.IsPenalty()) {
    return;
  }
  if (!record.alarm) {
    record.damaged_files.insert(change.charged_file);
  }
  if (!record.wrapped && !IsProduct(change)) {
    record.wrapped = number;
  }
}

bool ProcessLedger::Settle(ProcessRecord& record, std::uint64_t number, std::int64_t time) const {
  record.highest_score = std::max(record.highest_score, record.score);
  record.suspicious = record.suspicious || IsSuspiciousScore(record.score);
  if (record.alarm || record.score < alarm_) {
    return false;
  }
  record.alarm = AlarmPoint{number, time, record.damaged_files.size()};
  record.damaged_files.clear();
  return true;
}

// In a cycle of parents each is a descendant of each other, and none is deeper: nobody is marked for what one of them did. No
// ancestor is climbed to twice, however many processes reach the alarm: above one that is marked all are, and the ancestors of
// one in a cycle are those of the others.
void ProcessLedger::MarkAncestors(ProcessRecord& alarmed, const ProcessLookUp& look_up) {
  if (alarmed.in_cycle) {
    return;
  }
  std::vector<ProcessRecord*> ancestors;
  std::set<ZtProcKey> met = {alarmed.key};
  zt::ProcessView process;
  zt::ProcessView parent;
  for (ZtProcKey key = alarmed.key; look_up(key, process) && look_up(process.parent, parent); key = parent.key) {
    if (parent.key == alarmed.key) {
      alarmed.in_cycle = true;
      std::for_each(ancestors.begin(), ancestors.end(), [](ProcessRecord* record) { record->in_cycle = true; });
      return;
    }
    ProcessRecord& ancestor = FindOrEnter(parent.key, look_up);
    if (ancestor.above_alarm || !met.insert(parent.key).second) {
      break;
    }
    ancestors.push_back(&ancestor);
  }
  std::for_each(ancestors.begin(), ancestors.end(), [](ProcessRecord* record) { record->above_alarm = true; });
}

}  // namespace replay
