#include "tools/replay/session.h"

#include <map>
#include <string>
#include <vector>

#include "tools/replay/handles.h"

namespace replay {

Session::Session(const Options& options, SessionOutputs outputs, bool keep_restore_paths)
    : outputs_(outputs),
      score_age_limit_ms_(options.reset ? options.reset->score_age_limit_ms : 0),
      recorder_(outputs.explain != nullptr),
      ledger_(options.alarm),
      questions_(engine_, ledger_, keep_restore_paths) {
  if (options.reset) {
    reset_timer_.emplace(options.reset->interval_ticks);
  }
  ZtInitEngineCore(engine_, options.engine_id);
  zt::SetEngineObserver(engine_, &recorder_);
}

Session::~Session() { ZtCleanupEngineCore(engine_); }

void Session::Feed(const Call& call) {
  if (call.kind == CallKind::kInsertLog) {
    FeedDueResets(call.record.Time);
    last_time_ = call.record.Time;
    ++counts_.events;
  } else {
    ++counts_.others;
  }
  if (outputs_.events != nullptr) {
    outputs_.events->Write(call);
  }
  Run(call, outputs_.results);
}

void Session::Finish() { questions_.AtEnd(); }

void Session::FeedDueResets(std::int64_t time) {
  if (!reset_timer_) {
    return;
  }
  for (const std::int64_t tick : reset_timer_->Advance(time)) {
    Call reset;
    reset.kind = CallKind::kResetScore;
    reset.now = tick;
    reset.score_age_limit = score_age_limit_ms_;
    if (outputs_.events != nullptr) {
      outputs_.events->WriteOwn(reset);
    }
    ++counts_.resets;
    // Results are numbered by the capture's lines, and this call has none.
    Run(reset, nullptr);
  }
}

void Session::Run(const Call& call, ResultsWriter* results) {
  PrepareFor(call);
  recorder_.Begin();
  Make(call, results);
  const auto look_up = [this](const ZtProcKey& key, zt::ProcessView& process) {
    return zt::FindProcess(engine_, key, process);
  };
  ledger_.Apply(recorder_.reports(), call.number, last_time_, look_up);
  if (outputs_.explain != nullptr) {
    outputs_.explain->Write(recorder_.reports(), call.number, last_time_, look_up);
  }
}

/// Asks what the engine will not be able to answer after `call`.
void Session::PrepareFor(const Call& call) {
  if (call.kind == CallKind::kResetScore) {
    questions_.BeforeReset();
  } else if (call.kind == CallKind::kInsertLog && call.record.Behavior == BehaviorProcessCreate && call.record.Target[0] != 0) {
    // Without an image the engine enters no process.
    questions_.BeforeCreation({call.record.TargetPid, call.record.Time});
  }
}

void Session::Make(const Call& call, ResultsWriter* results) {
  switch (call.kind) {
    case CallKind::kInsertLog:
      return InsertLog(call, results);
    case CallKind::kCalculateSingleLineScore:
      return ScoreLine(call, results);
    case CallKind::kUpdateScore:
      ZtUpdateScore(engine_, HandleFromPid(call.pid), call.value);
      if (results != nullptr) {
        results->UpdateScore(call.number);
      }
      return;
    case CallKind::kResetScore:
      ZtResetScore(engine_, call.now, call.score_age_limit);
      if (results != nullptr) {
        results->ResetScore(call.number);
      }
      return;
    case CallKind::kGetProcTree:
      return QueryTree(call, results);
    case CallKind::kGetFinalStateFileByPid:
      return QueryFinalState(call, results);
  }
}

void Session::InsertLog(const Call& call, ResultsWriter* results) {
  LOG_ITEM record = call.record;
  const ZtLong result = ZtInsertLog(engine_, &record);
  if (results != nullptr) {
    results->InsertLog(call.number, result);
  }
}

void Session::ScoreLine(const Call& call, ResultsWriter* results) {
  LOG_ITEM record = call.record;
  const ZtLong score = ZtCalculateSingleLineScore(engine_, &record, call.value);
  if (results != nullptr) {
    results->SingleLineScore(call.number, score);
  }
}

void Session::QueryTree(const Call& call, ResultsWriter* results) {
  const std::vector<void*> pids = ZtGetProcTree(engine_, HandleFromPid(call.pid));
  std::map<void*, std::wstring> procs;
  ZtGetProcTree(engine_, HandleFromPid(call.pid), procs);
  if (results != nullptr) {
    results->ProcTree(call.number, pids, procs);
  }
}

void Session::QueryFinalState(const Call& call, ResultsWriter* results) {
  std::map<std::wstring, ZT_FILE_ITEM_PUBLIC> files;
  std::vector<std::wstring> paths;
  const unsigned result = ZtGetFinalStateFileByPid(engine_, HandleFromPid(call.pid), files, paths);
  if (results != nullptr) {
    results->FinalState(call.number, result, files, paths);
  }
}

}  // namespace replay
