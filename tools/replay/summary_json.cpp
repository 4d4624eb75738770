#include "tools/replay/summary_json.h"

#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "tools/replay/text.h"

namespace replay {
namespace {

using Json = nlohmann::ordered_json;

Json SkippedJson(const ReadCounts& read) {
  Json skipped = Json::object();
  for (const auto& [reason, rows] : read.skipped) {
    skipped[reason] = rows;
  }
  return skipped;
}

/// Null where the parent is not known.
Json ParentJson(const ProcessRecord& process) {
  if (process.parent.Pid == 0) {
    return nullptr;
  }
  return {{"pid", process.parent.Pid}, {"start_time", process.parent.Time}, {"image", Utf8(process.parent_image)}};
}

/// Null where the score did not wrap.
Json WrappedJson(const ProcessRecord& process) { return process.wrapped ? Json(*process.wrapped) : Json(); }

Json FamilyJson(const ProcessRecord& process) {
  Json family = Json::array();
  if (process.family) {
    for (const auto& [pid, image] : *process.family) {
      family.push_back({{"pid", pid}, {"image", Utf8(image)}});
    }
  }
  return family;
}

/// The counts are null where the engine could not be asked any more.
void AddFinalState(Json& object, const ProcessRecord& process) {
  const auto add = [&](const char* key, std::size_t FinalAnswer::*count) {
    object[key] = process.final_answer ? Json((*process.final_answer).*count) : Json();
  };
  add("files_to_restore", &FinalAnswer::files_to_restore);
  add("files_overwritten", &FinalAnswer::overwritten_files);
  add("quarantine_paths", &FinalAnswer::quarantine_paths);
  object["family"] = FamilyJson(process);
}

Json ProcessJson(const ProcessRecord& process) {
  Json object = {{"pid", process.key.Pid},
                 {"start_time", process.key.Time},
                 {"image", Utf8(process.image)},
                 {"parent", ParentJson(process)},
                 {"score", process.score},
                 {"highest_score", process.highest_score},
                 {"wrapped_event", WrappedJson(process)},
                 {"library_loads", process.library_loads}};
  return object;
}

/// Adds those that reached the alarm.
void AddAlarmed(Json& array, const std::vector<const ProcessRecord*>& processes, const char* role) {
  for (const ProcessRecord* process : processes) {
    Json object = ProcessJson(*process);
    object["role"] = role;
    object["alarm_event"] = process->alarm->number;
    object["alarm_time"] = process->alarm->time;
    object["files_damaged_by_alarm"] = process->alarm->damaged_files;
    AddFinalState(object, *process);
    array.push_back(std::move(object));
  }
}

Json SuspiciousJson(const std::vector<const ProcessRecord*>& processes) {
  Json array = Json::array();
  for (const ProcessRecord* process : processes) {
    Json object = ProcessJson(*process);
    object["files_damaged"] = process->damaged_files.size();
    AddFinalState(object, *process);
    array.push_back(std::move(object));
  }
  return array;
}

}  // namespace

std::string SummaryJson(const Summary& summary) {
  Json alarmed = Json::array();
  AddAlarmed(alarmed, summary.culprits, "culprit");
  AddAlarmed(alarmed, summary.charged, "charged");
  const Json object = {{"capture", summary.capture},
                       {"rows_read", summary.read.rows},
                       {"events_fed", summary.fed.events},
                       {"other_calls", summary.fed.others},
                       {"resets", summary.fed.resets},
                       {"rows_skipped", SkippedJson(summary.read)},
                       {"targets_cut", summary.read.targets_cut},
                       {"alarm", summary.alarm},
                       {"alarmed", std::move(alarmed)},
                       {"suspicious", SuspiciousJson(summary.suspicious)}};
  return ShownJson(object.dump(-1, ' ', false, Json::error_handler_t::replace)) + "\n";
}

}  // namespace replay
