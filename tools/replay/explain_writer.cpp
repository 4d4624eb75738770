#include "tools/replay/explain_writer.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "tools/replay/text.h"

namespace replay {
namespace {

using Json = nlohmann::ordered_json;
using Cause = zt::ScoreReport::Cause;

/// The names of the file states, by their numbers.
constexpr std::array<const char*, 11> kStateNames = {
    "ZT_UNKNOWN",    "ZT_OPEN_EXISTING",       "ZT_READ_START",     "ZT_SECTION_SYNC",       "ZT_OVERWRITE", "ZT_WRITE_SIMILAR",
    "ZT_DELETE_ORG", "ZT_RENAME_SECTION_SYNC", "ZT_WRITTEN_DELETE", "ZT_WRITE_SIMILAR_SYNC", "ZT_MAX"};

Json StateJson(std::uint32_t state) {
  return {{"number", state}, {"name", state < kStateNames.size() ? kStateNames.at(state) : "unknown"}};
}

/// A process and what one event did to its score. A product beyond the bound is cut back in the same event, so the score after
/// it is that of the last change.
Json ChangeJson(const ScoreChange& charge, const CallReports& reports, const ProcessLookUp& look_up) {
  zt::ProcessView process;
  const std::string image = look_up(charge.process, process) ? Utf8(process.image_path) : std::string();
  const auto last = std::find_if(reports.scores.rbegin(), reports.scores.rend(),
                                 [&](const ScoreChange& change) { return change.process == charge.process; });
  return {{"pid", charge.process.Pid},
          {"start_time", charge.process.Time},
          {"image", image},
          {"score_before", charge.before},
          {"score_after", last->after}};
}

/// The step that gave the penalty: of those with its factor, one of the charged process before one of its parent, and the last
/// of them, since a later callback of a process replaces what an earlier one returned.
const Step* PenaltyStep(const CallReports& reports, const ScoreChange& charge) {
  const auto find = [&](auto&& fits) {
    const auto found = std::find_if(reports.steps.rbegin(), reports.steps.rend(), fits);
    return found == reports.steps.rend() ? nullptr : &*found;
  };
  const auto gives = [&](const Step& step) { return step.penalty == charge.factor; };
  if (const Step* own = find([&](const Step& step) { return gives(step) && step.process == charge.process; }); own != nullptr) {
    return own;
  }
  return find(gives);
}

void AddStep(Json& line, const Step& step, const ScoreChange& charge) {
  line["in_parent"] = step.process != charge.process;
  line["stepped_file"] = Utf8(step.file_path);
  line["state_before"] = StateJson(step.state_before);
  line["state_after"] = StateJson(step.state_after);
}

void AddSimilarFile(Json& line, const CallReports& reports, const ZtProcKey& process) {
  const auto match = std::find_if(reports.matches.rbegin(), reports.matches.rend(),
                                  [&](const SimilarMatch& candidate) { return candidate.process == process; });
  if (match != reports.matches.rend()) {
    line["similar_file"] = Utf8(match->key);
    line["copy"] = Utf8(match->target);
  }
}

}  // namespace

void ExplainWriter::Write(const CallReports& reports, std::uint64_t number, std::int64_t time, const ProcessLookUp& look_up) {
  const auto charge = std::find_if(reports.scores.begin(), reports.scores.end(),
                                   [](const ScoreChange& change) { return change.cause == Cause::kPenalty; });
  if (charge == reports.scores.end()) {
    return;
  }
  Json line = {{"event", number}, {"time", time}, {"process", ChangeJson(*charge, reports, look_up)}};
  line["file"] = Utf8(charge->charged_file);
  line["factor"] = charge->factor;
  ZtProcKey stepped = charge->process;
  if (const Step* step = PenaltyStep(reports, *charge); step != nullptr) {
    AddStep(line, *step, *charge);
    stepped = step->process;
  }
  line["ancestors"] = Json::array();
  for (const ScoreChange& change : reports.scores) {
    if (change.cause == Cause::kParentPenalty) {
      line["ancestors"].push_back(ChangeJson(change, reports, look_up));
    }
  }
  AddSimilarFile(line, reports, stepped);
  sink_(ShownJson(line.dump()) + "\n");
}

}  // namespace replay
