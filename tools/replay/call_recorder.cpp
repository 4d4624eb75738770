#include "tools/replay/call_recorder.h"

#include <new>
#include <string_view>
#include <utility>

namespace replay {

void CallRecorder::Begin() {
  lost_ = false;
  reports_.steps.clear();
  reports_.matches.clear();
  reports_.scores.clear();
}

const CallReports& CallRecorder::reports() const {
  if (lost_) {
    throw std::bad_alloc();
  }
  return reports_;
}

void CallRecorder::OnStep(const zt::StepReport& step) {
  if (!with_steps_) {
    return;
  }
  try {
    reports_.steps.push_back({step.process, std::wstring(step.file_path), std::wstring(step.event_path), step.state_before,
                              step.state_after, step.penalty, step.similar});
  } catch (const std::bad_alloc&) {
    lost_ = true;
  }
}

void CallRecorder::OnScore(const zt::ScoreReport& score) {
  try {
    ScoreChange change{score.process, score.cause, score.score_before, score.score_after, score.factor, {}};
    if (!change.IsPenalty() && change.before == change.after) {
      return;
    }
    change.charged_file = score.charged_file;
    reports_.scores.push_back(std::move(change));
  } catch (const std::bad_alloc&) {
    lost_ = true;
  }
}

void CallRecorder::OnSimilarFile(const ZtProcKey& process, std::wstring_view target, std::wstring_view key) {
  if (!with_steps_) {
    return;
  }
  try {
    reports_.matches.push_back({process, std::wstring(target), std::wstring(key)});
  } catch (const std::bad_alloc&) {
    lost_ = true;
  }
}

}  // namespace replay
