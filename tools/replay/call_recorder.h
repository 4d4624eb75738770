// What happened inside the engine during one call.

#ifndef ZT_TOOLS_REPLAY_CALL_RECORDER_H
#define ZT_TOOLS_REPLAY_CALL_RECORDER_H

#include <cstdint>
#include <string>
#include <vector>

#include "engine/inspection.h"

namespace replay {

/// zt::StepReport with text of its own.
struct Step {
  ZtProcKey process;
  std::wstring file_path;
  std::wstring event_path;
  std::uint32_t state_before = 0;
  std::uint32_t state_after = 0;
  std::uint64_t penalty = 0;
  bool similar = false;
};

/// zt::ScoreReport with text of its own.
struct ScoreChange {
  ZtProcKey process;
  zt::ScoreReport::Cause cause = zt::ScoreReport::Cause::kPenalty;
  std::int32_t before = 0;
  std::int32_t after = 0;
  std::uint32_t factor = 0;
  std::wstring charged_file;

  /// Whether a file was charged, to the process itself or to an ancestor of it.
  [[nodiscard]] bool IsPenalty() const {
    return cause == zt::ScoreReport::Cause::kPenalty || cause == zt::ScoreReport::Cause::kParentPenalty;
  }
};

/// A match of the similar-file search.
struct SimilarMatch {
  ZtProcKey process;
  std::wstring target;
  std::wstring key;
};

/// The reports of one call, in order.
struct CallReports {
  std::vector<Step> steps;            ///< Empty unless steps are recorded.
  std::vector<SimilarMatch> matches;  ///< The same.
  std::vector<ScoreChange> scores;    ///< Without those that set a score to what it was, but for penalties.
};

/// Keeps the engine's reports from one Begin to the next.
class CallRecorder final : public zt::EngineObserver {
 public:
  /// Steps and matches come with nearly every event and only explanations need them.
  explicit CallRecorder(bool with_steps) : with_steps_(with_steps) {}

  /// Forgets the last call.
  void Begin();
  /// The reports since Begin. Throws std::bad_alloc when there was no memory to keep one.
  [[nodiscard]] const CallReports& reports() const;

  void OnStep(const zt::StepReport& step) override;
  void OnScore(const zt::ScoreReport& score) override;
  void OnSimilarFile(const ZtProcKey& process, std::wstring_view target, std::wstring_view key) override;

 private:
  bool with_steps_;
  bool lost_ = false;  ///< A report did not find memory; an observer may not throw.
  CallReports reports_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_CALL_RECORDER_H
