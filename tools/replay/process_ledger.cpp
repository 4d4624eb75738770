#include "tools/replay/process_ledger.h"

#include <algorithm>

namespace replay {

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
    record->score = change.after;
    if (change.IsPenalty() && !record->alarm) {
      record->damaged_files.insert(change.charged_file);
    }
    touched.push_back(record);
  }
  // A score counts as it stands after the event: a product that wraps is cut back within the same event.
  for (ProcessRecord* record : touched) {
    Settle(*record, number, time);
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

void ProcessLedger::Settle(ProcessRecord& record, std::uint64_t number, std::int64_t time) const {
  record.highest_score = std::max(record.highest_score, record.score);
  record.suspicious = record.suspicious || IsSuspiciousScore(record.score);
  if (!record.alarm && record.score >= alarm_) {
    record.alarm = AlarmPoint{number, time, record.damaged_files.size()};
    record.damaged_files.clear();
  }
}

}  // namespace replay
