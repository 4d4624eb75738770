// One replay: an engine, and a capture fed into it.

#ifndef ZT_TOOLS_REPLAY_SESSION_H
#define ZT_TOOLS_REPLAY_SESSION_H

#include <cstdint>
#include <memory>
#include <optional>

#include "tools/replay/call_recorder.h"
#include "tools/replay/events_writer.h"
#include "tools/replay/explain_writer.h"
#include "tools/replay/final_questions.h"
#include "tools/replay/input/call.h"
#include "tools/replay/options.h"
#include "tools/replay/process_ledger.h"
#include "tools/replay/reset_timer.h"
#include "tools/replay/results_writer.h"

namespace replay {

/// Where a session reports to. Null for what nobody wants; what is given must outlive the session.
struct SessionOutputs {
  ResultsWriter* results = nullptr;
  EventsWriter* events = nullptr;
  ExplainWriter* explain = nullptr;
};

/// How many calls a session has made.
struct FeedCounts {
  std::uint64_t events = 0;  ///< ZtInsertLog.
  std::uint64_t others = 0;  ///< Other calls of the capture.
  std::uint64_t resets = 0;  ///< ZtResetScore, of the session's own accord.
};

/// Drives the exports of an engine as a host does, call by call. Keeps one record for each process that was charged or
/// suspicious; all else is the engine's. Outputs throw what their sinks throw.
class Session {
 public:
  /// `keep_restore_paths`: whether the records of processes that reached the alarm keep the paths to restore.
  Session(const Options& options, SessionOutputs outputs, bool keep_restore_paths);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  /// Makes `call`, and before it the resets that are due.
  void Feed(const Call& call);

  /// Asks the engine for what the summary tells of processes that are still there. Nothing may be fed afterwards.
  void Finish();

  [[nodiscard]] const FeedCounts& counts() const { return counts_; }
  [[nodiscard]] const ProcessLedger& ledger() const { return ledger_; }

 private:
  void FeedDueResets(std::int64_t time);
  void Run(const Call& call, ResultsWriter* results);
  void Make(const Call& call, ResultsWriter* results);
  void PrepareFor(const Call& call);
  void InsertLog(const Call& call, ResultsWriter* results);
  void ScoreLine(const Call& call, ResultsWriter* results);
  void QueryTree(const Call& call, ResultsWriter* results);
  void QueryFinalState(const Call& call, ResultsWriter* results);

  SessionOutputs outputs_;
  std::int64_t score_age_limit_ms_;
  std::optional<ResetTimer> reset_timer_;
  CallRecorder recorder_;  // Before the engine, which borrows it.
  std::shared_ptr<void> engine_;
  ProcessLedger ledger_;
  FinalQuestions questions_;
  FeedCounts counts_;
  std::int64_t last_time_ = 0;  ///< Of the last event: the time of calls that have none.
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_SESSION_H
