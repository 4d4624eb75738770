// Asks the engine for the files to restore and for the family of suspicious processes, as late as it can still answer.

#ifndef ZT_TOOLS_REPLAY_FINAL_QUESTIONS_H
#define ZT_TOOLS_REPLAY_FINAL_QUESTIONS_H

#include <cstdint>
#include <memory>

#include "tools/replay/process_ledger.h"

namespace replay {

/// The engine answers for the newest process of an id, and only while the engine keeps it. So a process is asked about at the
/// end of the capture, or before its id goes to a new process, or, once it has exited, before each reset, which may remove it.
///
/// The questions are the tool's own: they leave no line in the trace, which is that of the capture's calls, and nothing in the
/// engine.
///
/// The family is asked before each reset too: a reset takes the scores away that make its members suspicious. An answer that
/// was given while the process itself was suspicious is not replaced by one given when it no longer was.
class FinalQuestions {
 public:
  /// Answers go into the records of `ledger`. Both arguments must outlive this object. The paths of the files to restore are
  /// kept, for processes that reached the alarm, only with `keep_restore_paths`.
  FinalQuestions(std::shared_ptr<void>& engine, ProcessLedger& ledger, bool keep_restore_paths)
      : engine_(engine), ledger_(ledger), keep_restore_paths_(keep_restore_paths) {}

  /// REQUIRES: the next call enters the process `created`.
  void BeforeCreation(const ZtProcKey& created);
  /// REQUIRES: the next call is ZtResetScore.
  void BeforeReset();
  void AtEnd();

 private:
  bool StillAnswers(const ProcessRecord& record, zt::ProcessView& process);
  void AskFinalState(ProcessRecord& record);
  void AskFamily(ProcessRecord& record);

  std::shared_ptr<void>& engine_;
  ProcessLedger& ledger_;
  bool keep_restore_paths_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_FINAL_QUESTIONS_H
