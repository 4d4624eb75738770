#include "tools/replay/summary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace replay {
namespace {

using Cause = zt::ScoreReport::Cause;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr ZtProcKey kParent = {10, 100};
constexpr ZtProcKey kChild = {11, 110};

bool LookUp(const ZtProcKey& key, zt::ProcessView& process) {
  if (key == kParent) {
    process = {kParent, {}, 1, false, L"C:\\parent.exe"};
    return true;
  }
  process = {key, key == kChild ? kParent : ZtProcKey{}, 1, false, key == kChild ? L"C:\\chi\x1Bld.exe" : L""};
  return key == kChild;
}

class SummaryTest : public ::testing::Test {
 protected:
  SummaryTest() {
    summary_.capture = "run.jsonl";
    summary_.alarm = 8;
    summary_.read.rows = 12;
    summary_.fed.events = 9;
    summary_.fed.others = 1;
    summary_.seconds = 0.5;
  }

  void Charge(ZtProcKey key, std::int32_t before, std::int32_t after, std::uint64_t number) {
    CallReports reports;
    reports.scores.push_back({key, Cause::kPenalty, before, after, 2, L"a" + std::to_wstring(number)});
    ledger_.Apply(reports, number, 15000000, LookUp);
  }
  std::string Text(bool colors = false) {
    AddProcesses(summary_, ledger_);
    return SummaryText(summary_, colors);
  }

  ProcessLedger ledger_{8};
  Summary summary_;
};

TEST_F(SummaryTest, OfAQuietCapture) {
  EXPECT_EQ(Text(),
            "No process reached the alarm (score 8).\n"
            "\n"
            "run.jsonl: 12 rows read, 9 events fed; 0.50 s, 20 events per second\n"
            "besides: 1 other call\n");
}

TEST_F(SummaryTest, TellsOfRowsThatWereNoInput) {
  summary_.read.skipped = {{"a registry operation", 3}, {"a failed call", 1}};
  summary_.read.targets_cut = 2;
  summary_.fed.resets = 4;
  EXPECT_THAT(Text(), EndsWith("per second\n"
                               "besides: 1 other call\n"
                               "resets: 4\n"
                               "cut: 2 paths longer than a record holds\n"
                               "skipped: 1 row: a failed call\n"
                               "skipped: 3 rows: a registry operation\n"));
}

TEST_F(SummaryTest, TellsOfProcessesThatReachedTheAlarmAndOfOthers) {
  Charge(kParent, 1, 2, 3);
  Charge(kChild, 4, 8, 5);
  ProcessRecord& child = *ledger_.Find(kChild);
  child.final_answer = FinalAnswer{7, 2, 1, {}};
  child.family = {{{10, L"C:\\parent.exe"}, {11, L"C:\\chi\x1Bld.exe"}}};
  ledger_.Find(kParent)->family.emplace();
  EXPECT_EQ(Text(),
            "1 process reached the alarm (score 8).\n"
            "\n"
            "The culprit, to be stopped with its descendants:\n"
            "\n"
            "  C:\\chi\xEF\xBF\xBDld.exe\n"
            "    process id  11\n"
            "    parent      10 C:\\parent.exe\n"
            "    score       8\n"
            "    alarm       event 5 at 15000000 ticks (1.500 s), 1 file damaged by then\n"
            "    to restore  7 files, 2 of them overwritten in place\n"
            "    quarantine  1 path\n"
            "    family      10 C:\\parent.exe\n"
            "                11 C:\\chi\xEF\xBF\xBDld.exe\n"
            "\n"
            "1 other process with a score of 2 or more:\n"
            "\n"
            "  C:\\parent.exe\n"
            "    process id  10\n"
            "    parent      not known\n"
            "    score       2\n"
            "    damaged     1 file\n"
            "    to restore  not known\n"
            "    family      none suspicious\n"
            "\n"
            "run.jsonl: 12 rows read, 9 events fed; 0.50 s, 20 events per second\n"
            "besides: 1 other call\n");
}

TEST_F(SummaryTest, NamesTheCulpritBeforeThoseChargedThroughIt) {
  Charge(kParent, 4, 8, 3);  // First, and yet it is only the parent.
  Charge(kChild, 4, 8, 5);
  const std::string text = Text();
  EXPECT_THAT(text, StartsWith("2 processes reached the alarm (score 8).\n"
                               "\n"
                               "The culprit, to be stopped with its descendants:\n"
                               "\n"
                               "  C:\\chi\xEF\xBF\xBDld.exe\n"));
  EXPECT_THAT(text, HasSubstr("\n"
                              "Charged through it, as every ancestor is:\n"
                              "\n"
                              "  C:\\parent.exe\n"));
}

TEST_F(SummaryTest, OrdersCulpritsByTheirAlarms) {
  Charge({20, 1}, 2, 4, 2);
  Charge({21, 1}, 4, 8, 3);
  Charge({20, 1}, 4, 8, 4);
  AddProcesses(summary_, ledger_);
  ASSERT_EQ(summary_.culprits.size(), 2U);
  EXPECT_EQ(summary_.culprits[0]->key.Pid, 21U);
  EXPECT_EQ(summary_.culprits[1]->key.Pid, 20U);
  EXPECT_TRUE(summary_.charged.empty());
  EXPECT_TRUE(summary_.suspicious.empty());
  EXPECT_THAT(SummaryText(summary_, false), HasSubstr("\nThe 2 culprits, to be stopped with their descendants:\n"));
}

TEST_F(SummaryTest, AnAlarmHasACulpritWhateverTheParentsBecome) {
  Charge(kParent, 4, 8, 3);
  Charge(kChild, 4, 8, 5);
  ledger_.Find(kChild)->above_alarm = true;  // As if the capture had put the parent below its child afterwards.
  AddProcesses(summary_, ledger_);
  EXPECT_EQ(summary_.culprits.size(), 2U);
  EXPECT_TRUE(summary_.charged.empty());
}

TEST_F(SummaryTest, SaysWhereAScoreWrapped) {
  CallReports reports;
  reports.scores.push_back({kParent, Cause::kParentPenalty, -0x7FFFFFFF - 1, 0, 2, L"a"});
  reports.scores.push_back({kParent, Cause::kUpdate, 0, 2, 0, {}});
  ledger_.Apply(reports, 12, 0, LookUp);
  EXPECT_THAT(Text(),
              HasSubstr("    score       2\n"
                        "                wrapped at event 12: it grew past 32 bits, so a low score means nothing here\n"));
}

TEST_F(SummaryTest, SaysWhichPointsAreForLibraries) {
  CallReports reports;
  reports.scores.push_back({kParent, Cause::kModuleLoad, 1, 2, 0, {}});
  ledger_.Apply(reports, 1, 0, LookUp);
  EXPECT_THAT(Text(), HasSubstr("    score       2\n"
                                "    libraries   1 load of a watched library: a point\n"
                                "    damaged     0 files\n"));
  ledger_.Apply(reports, 2, 0, LookUp);
  EXPECT_THAT(Text(), HasSubstr("    libraries   2 loads of watched libraries: a point each\n"));
}

TEST_F(SummaryTest, TellsTheHighestScoreWhereTheLastIsLower) {
  Charge(kChild, 4, 8, 5);
  CallReports reports;
  reports.scores.push_back({kChild, Cause::kReset, 8, 1, 0, {}});
  ledger_.Apply(reports, 6, 0, LookUp);
  EXPECT_THAT(Text(), HasSubstr("    score       1, at most 8\n"));
}

TEST_F(SummaryTest, LeavesOutWhoWasNeverSuspicious) {
  Charge(kChild, 0, 0, 5);
  EXPECT_THAT(Text(), Not(HasSubstr("other process")));
}

TEST_F(SummaryTest, ColorsOnlyWhereTheyAreAskedFor) {
  Charge(kChild, 4, 8, 5);
  EXPECT_THAT(SummaryText(summary_, false), Not(HasSubstr("\x1B")));
  EXPECT_THAT(SummaryText(summary_, true), HasSubstr("\x1B[32mNo process reached"));
  EXPECT_THAT(Text(true), HasSubstr("\x1B[1m\x1B[31m1 process reached"));
}

TEST_F(SummaryTest, ASummaryOfNoTimeHasNoSpeed) {
  summary_.seconds = 0;
  EXPECT_EQ(summary_.EventsPerSecond(), 0);
}

TEST_F(SummaryTest, NothingInItSteersTheTerminal) {
  summary_.capture = "run\x1B[31m\xE2\x80\xAE.jsonl";
  EXPECT_THAT(Text(), HasSubstr("\nrun\xEF\xBF\xBD[31m\xEF\xBF\xBD.jsonl: 12 rows read"));
}

}  // namespace
}  // namespace replay
