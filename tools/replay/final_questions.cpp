#include "tools/replay/final_questions.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "tools/replay/handles.h"

namespace replay {

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
  std::map<std::wstring, ZT_FILE_ITEM_PUBLIC> files;
  std::vector<std::wstring> paths;
  ZtGetFinalStateFileByPid(engine_, HandleFromPid(record.key.Pid), files, paths);
  FinalAnswer answer;
  answer.files_to_restore = files.size();
  answer.overwritten_files = static_cast<std::size_t>(
      std::count_if(files.begin(), files.end(), [](const auto& file) { return file.second.Restore != 0; }));
  answer.quarantine_paths = paths.size();
  if (keep_restore_paths_ && record.alarm) {
    for (const auto& [key, file] : files) {
      answer.restore_paths.push_back(file.Path);
    }
  }
  record.final_answer = std::move(answer);
}

void FinalQuestions::AskFamily(ProcessRecord& record) {
  if (record.family && !IsSuspiciousScore(record.score)) {
    return;
  }
  std::map<void*, std::wstring> members;
  ZtGetProcTree(engine_, HandleFromPid(record.key.Pid), members);
  record.family.emplace();
  for (const auto& [pid, image] : members) {
    record.family->emplace(PidFromHandle(pid), image);
  }
}

}  // namespace replay
