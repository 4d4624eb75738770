#include "tools/replay/final_questions.h"

#include <string>
#include <utility>

namespace replay {
namespace {

/// Counts as it is told: the export's own answer is more than half a KB a file.
class FinalAnswerMaker : public zt::FinalStateVisitor {
 public:
  explicit FinalAnswerMaker(bool keep_paths) : keep_paths_(keep_paths) {}

  void OnQuarantine(const zt::PathList& list) override { answer.quarantine_paths = list.size(); }
  void OnFile(const zt::TrackedFile& file, bool restored) override {
    ++answer.files_to_restore;
    answer.overwritten_files += restored ? 1 : 0;
    if (keep_paths_) {
      answer.restore_paths.push_back(file.item.Path.Wide());
    }
  }

  FinalAnswer answer;

 private:
  bool keep_paths_;
};

}  // namespace

void FinalQuestions::BeforeCreation(const ZtProcKey& created) {
  zt::ProcessView process;
  if (!zt::FindProcess(engine_, created.Pid, process)) {
    return;
  }
  const ZtProcKey key = process.key;
  ProcessRecord* record = ledger_.Find(key);
  if (record == nullptr) {
    return;
  }
  if (record->suspicious) {
    AskFamily(*record);
    AskFinalState(*record);
  }
  if (key == created) {
    ledger_.Forget(key);
  }
}

void FinalQuestions::BeforeReset() {
  for (ProcessRecord& record : ledger_.records()) {
    zt::ProcessView process;
    if (!record.suspicious || !StillAnswers(record, process)) {
      continue;
    }
    const bool exited = process.exited;
    AskFamily(record);
    if (exited) {
      AskFinalState(record);
    }
  }
}

void FinalQuestions::AtEnd() {
  for (ProcessRecord& record : ledger_.records()) {
    zt::ProcessView process;
    if (record.suspicious && StillAnswers(record, process)) {
      AskFamily(record);
      AskFinalState(record);
    }
  }
}

bool FinalQuestions::StillAnswers(const ProcessRecord& record, zt::ProcessView& process) {
  return ledger_.Find(record.key) == &record && zt::FindProcess(engine_, record.key.Pid, process) && process.key == record.key;
}

void FinalQuestions::AskFinalState(ProcessRecord& record) {
  FinalAnswerMaker maker(keep_restore_paths_ && record.alarm);
  zt::VisitFinalState(engine_, record.key.Pid, maker);
  record.final_answer = std::move(maker.answer);
}

void FinalQuestions::AskFamily(ProcessRecord& record) {
  if (record.family && !IsSuspiciousScore(record.score)) {
    return;
  }
  record.family = zt::SuspiciousFamily(engine_, record.key.Pid);
}

}  // namespace replay
