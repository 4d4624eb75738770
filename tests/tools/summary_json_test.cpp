#include "tools/replay/summary_json.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

namespace replay {
namespace {

using Cause = zt::ScoreReport::Cause;

constexpr ZtProcKey kParent = {10, 100};
constexpr ZtProcKey kChild = {11, 110};

bool LookUp(const ZtProcKey& key, zt::ProcessView& process) {
  process = {key, key == kChild ? kParent : ZtProcKey{}, 1, false, key == kChild ? L"C:\\child.exe" : L"C:\\parent.exe"};
  return key == kChild || key == kParent;
}

TEST(SummaryJson, HasItsKeysInOrder) {
  Summary summary;
  summary.capture = "run\xFF\xC2\x9B.csv";
  summary.alarm = 8;
  summary.read.rows = 12;
  summary.read.skipped = {{"a failed call", 2}};
  summary.read.targets_cut = 1;
  summary.fed = {9, 1, 3};
  summary.seconds = 0.5;

  ProcessLedger ledger(8);
  CallReports reports;
  reports.scores.push_back({kChild, Cause::kPenalty, 4, 8, 2, L"a"});
  reports.scores.push_back({kParent, Cause::kParentPenalty, 1, 2, 2, L"a"});
  ledger.Apply(reports, 5, 1500, LookUp);
  ledger.Find(kChild)->final_answer = FinalAnswer{7, 2, 1, {}};
  ledger.Find(kChild)->family = {{{10, L"C:\\parent.exe"}, {11, L"C:\\child.exe"}}};
  AddProcesses(summary, ledger);

  EXPECT_EQ(SummaryJson(summary),
            "{\"capture\":\"run\xEF\xBF\xBD\\u009b.csv\",\"rows_read\":12,\"events_fed\":9,\"other_calls\":1,\"resets\":3,"
            "\"rows_skipped\":{\"a failed call\":2},\"targets_cut\":1,\"alarm\":8,"
            "\"alarmed\":[{\"pid\":11,\"start_time\":110,\"image\":\"C:\\\\child.exe\","
            "\"parent\":{\"pid\":10,\"start_time\":100,\"image\":\"C:\\\\parent.exe\"},\"score\":8,\"highest_score\":8,"
            "\"wrapped_event\":null,\"library_loads\":0,\"role\":\"culprit\",\"alarm_event\":5,\"alarm_time\":1500,\"files_"
            "damaged_by_alarm\":1,"
            "\"files_to_restore\":7,\"files_overwritten\":2,\"quarantine_paths\":1,"
            "\"family\":[{\"pid\":10,\"image\":\"C:\\\\parent.exe\"},{\"pid\":11,\"image\":\"C:\\\\child.exe\"}]}],"
            "\"suspicious\":[{\"pid\":10,\"start_time\":100,\"image\":\"C:\\\\parent.exe\",\"parent\":null,\"score\":2,"
            "\"highest_score\":2,\"wrapped_event\":null,\"library_loads\":0,\"files_damaged\":1,"
            "\"files_to_restore\":null,\"files_overwritten\":null,\"quarantine_paths\":null,\"family\":[]}]}\n");
}

TEST(SummaryJson, NamesTheCulpritBeforeThoseChargedThroughIt) {
  ProcessLedger ledger(8);
  CallReports reports;
  reports.scores.push_back({kParent, Cause::kUpdate, 1, 8, 0, {}});
  ledger.Apply(reports, 1, 1000, LookUp);
  reports.scores = {{kChild, Cause::kPenalty, 4, 8, 2, L"a"}, {kParent, Cause::kParentPenalty, 0x7FFFFFFF, -2, 2, L"a"}};
  ledger.Apply(reports, 2, 1000, LookUp);
  Summary summary;
  AddProcesses(summary, ledger);
  const auto alarmed = nlohmann::json::parse(SummaryJson(summary))["alarmed"];
  ASSERT_EQ(alarmed.size(), 2U);
  EXPECT_EQ(alarmed[0]["pid"], 11);
  EXPECT_EQ(alarmed[0]["role"], "culprit");
  EXPECT_EQ(alarmed[1]["pid"], 10);
  EXPECT_EQ(alarmed[1]["role"], "charged");
  EXPECT_EQ(alarmed[1]["wrapped_event"], 2);
}

TEST(SummaryJson, OfAQuietCaptureHasEmptyLists) {
  EXPECT_EQ(
      SummaryJson(Summary{}),
      "{\"capture\":\"\",\"rows_read\":0,\"events_fed\":0,\"other_calls\":0,\"resets\":0,\"rows_skipped\":{},\"targets_cut\":0,"
      "\"alarm\":0,\"alarmed\":[],\"suspicious\":[]}\n");
}

}  // namespace
}  // namespace replay
