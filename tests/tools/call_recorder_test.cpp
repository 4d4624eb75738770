#include "tools/replay/call_recorder.h"

#include <gtest/gtest.h>

namespace replay {
namespace {

using Cause = zt::ScoreReport::Cause;

TEST(CallRecorder, KeepsReportsWithTextOfTheirOwn) {
  CallRecorder recorder(true);
  {
    const std::wstring file = L"C:\\Docs\\A.doc";
    const std::wstring event = L"c:\\docs\\a.doc";
    recorder.OnSimilarFile({7, 70}, L"c:\\docs\\a.doc.x", event);
    recorder.OnStep({{7, 70}, file, event, 2, 4, 2, true});
    recorder.OnScore({{7, 70}, Cause::kPenalty, 1, 2, 2, event});
  }
  const CallReports& reports = recorder.reports();
  ASSERT_EQ(reports.steps.size(), 1U);
  EXPECT_EQ(reports.steps[0].process, (ZtProcKey{7, 70}));
  EXPECT_EQ(reports.steps[0].file_path, L"C:\\Docs\\A.doc");
  EXPECT_EQ(reports.steps[0].event_path, L"c:\\docs\\a.doc");
  EXPECT_EQ(reports.steps[0].state_before, 2U);
  EXPECT_EQ(reports.steps[0].state_after, 4U);
  EXPECT_EQ(reports.steps[0].penalty, 2U);
  EXPECT_TRUE(reports.steps[0].similar);
  ASSERT_EQ(reports.matches.size(), 1U);
  EXPECT_EQ(reports.matches[0].target, L"c:\\docs\\a.doc.x");
  EXPECT_EQ(reports.matches[0].key, L"c:\\docs\\a.doc");
  ASSERT_EQ(reports.scores.size(), 1U);
  EXPECT_TRUE(reports.scores[0].IsPenalty());
  EXPECT_EQ(reports.scores[0].charged_file, L"c:\\docs\\a.doc");
  EXPECT_EQ(reports.scores[0].factor, 2U);
}

TEST(CallRecorder, BeginForgets) {
  CallRecorder recorder(true);
  recorder.OnSimilarFile({7, 70}, L"b", L"a");
  recorder.OnStep({{7, 70}, L"a", L"a", 0, 1, 0, false});
  recorder.OnScore({{7, 70}, Cause::kUpdate, 1, 5, 0, {}});
  recorder.Begin();
  EXPECT_TRUE(recorder.reports().steps.empty());
  EXPECT_TRUE(recorder.reports().matches.empty());
  EXPECT_TRUE(recorder.reports().scores.empty());
}

TEST(CallRecorder, KeepsStepsOnlyWhenTheyAreWanted) {
  CallRecorder recorder(false);
  recorder.OnSimilarFile({7, 70}, L"b", L"a");
  recorder.OnStep({{7, 70}, L"a", L"a", 0, 1, 0, false});
  EXPECT_TRUE(recorder.reports().steps.empty());
  EXPECT_TRUE(recorder.reports().matches.empty());
}

TEST(CallRecorder, KeepsUnchangedScoresOnlyOfPenalties) {
  CallRecorder recorder(false);
  recorder.OnScore({{7, 70}, Cause::kReset, 1, 1, 0, {}});
  recorder.OnScore({{7, 70}, Cause::kModuleLoad, 3, 3, 0, {}});
  EXPECT_TRUE(recorder.reports().scores.empty());
  // An ignored process is charged without effect, but its file is damaged all the same.
  recorder.OnScore({{7, 70}, Cause::kPenalty, 0, 0, 2, L"a"});
  recorder.OnScore({{6, 60}, Cause::kParentPenalty, 0, 0, 2, L"a"});
  EXPECT_EQ(recorder.reports().scores.size(), 2U);
}

}  // namespace
}  // namespace replay
