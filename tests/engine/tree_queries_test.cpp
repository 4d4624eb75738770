// The suspicious members of a process's family, in both forms.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tests/support/engine_test.h"
#include "tests/support/state_dump.h"

namespace zt::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

class TreeQueriesTest : public EngineTest {
 protected:
  /// Processes 1, 2, ... count, each the creator of the next, all with the score 2.
  void StartSuspiciousChain(std::uint64_t count) {
    StartProcess(1, 100, L"C:\\P1.exe");
    for (std::uint64_t pid = 2; pid <= count; ++pid) {
      StartChild(pid - 1, pid, 200, L"C:\\P" + std::to_wstring(pid) + L".exe");
    }
    for (auto& [key, entry] : core().Tree) {
      entry.Item.Score = 2;
    }
  }
  void SetScore(std::uint64_t pid, std::int32_t score) { ItemOf(pid)->Score = score; }

  std::vector<std::uint64_t> Suspicious(std::uint64_t pid) {
    const std::vector<void*> handles = ZtGetProcTree(engine_, Handle(pid));
    std::vector<std::uint64_t> pids(handles.size());
    std::transform(handles.begin(), handles.end(), pids.begin(), PidFromHandle);
    return pids;
  }
  std::map<void*, std::wstring> Images(std::uint64_t pid) {
    std::map<void*, std::wstring> procs;
    ZtGetProcTree(engine_, Handle(pid), procs);
    return procs;
  }
};

TEST_F(TreeQueriesTest, AnUnknownIdGivesNothingAndIsRememberedWithStartTimeZero) {
  EXPECT_THAT(Suspicious(77), IsEmpty());
  EXPECT_THAT(core().StartTimes, ElementsAre(Pair(77U, 0)));
  EXPECT_EQ(core().Tree.size(), 0U);
}

TEST_F(TreeQueriesTest, AnUnknownIdLeavesTheMapAloneAndIsRememberedWithStartTimeZero) {
  std::map<void*, std::wstring> procs = {{Handle(77), L"kept"}};
  ZtGetProcTree(engine_, Handle(77), procs);
  EXPECT_THAT(procs, ElementsAre(Pair(Handle(77), L"kept")));
  EXPECT_THAT(core().StartTimes, ElementsAre(Pair(77U, 0)));
}

TEST_F(TreeQueriesTest, ARememberedIdNoLongerTakesTheTimeOfItsEvents) {
  Suspicious(77);
  TraceCapture trace(0x2);
  trace.Take();
  Insert(At(Open(77, L"C:\\a.doc"), 500));
  EXPECT_THAT(trace.TakeMessages(), ::testing::Not(::testing::Contains("Unable to find timestamp for PID 77")));
}

TEST_F(TreeQueriesTest, AKnownIdKeepsItsStartTime) {
  StartProcess(10, 100);
  Suspicious(10);
  EXPECT_THAT(core().StartTimes, ElementsAre(Pair(10U, 100)));
}

TEST_F(TreeQueriesTest, OnlyScoresOfTwoAndMoreCount) {
  StartSuspiciousChain(4);
  SetScore(1, 0);
  SetScore(2, 1);
  SetScore(3, 2);
  SetScore(4, 3);
  EXPECT_THAT(Suspicious(4), ElementsAre(3, 4));
  EXPECT_THAT(Images(1), ElementsAre(Pair(Handle(3), L"C:\\P3.exe"), Pair(Handle(4), L"C:\\P4.exe")));
}

TEST_F(TreeQueriesTest, AScoreIsComparedWithoutItsSign) {
  StartSuspiciousChain(2);
  SetScore(1, -1);
  SetScore(2, INT32_MIN);
  EXPECT_THAT(Suspicious(2), ElementsAre(1, 2));
}

TEST_F(TreeQueriesTest, AFamilyWithoutSuspicionYieldsNothingAndLeavesTheMapAlone) {
  StartSuspiciousChain(3);
  for (const std::uint64_t pid : {1U, 2U, 3U}) {
    SetScore(pid, 1);
  }
  EXPECT_THAT(Suspicious(3), IsEmpty());
  std::map<void*, std::wstring> procs = {{Handle(3), L"kept"}};
  ZtGetProcTree(engine_, Handle(3), procs);
  EXPECT_THAT(procs, ElementsAre(Pair(Handle(3), L"kept")));
}

TEST_F(TreeQueriesTest, TheMapKeepsOtherEntriesAndOverwritesItsOwn) {
  StartSuspiciousChain(1);
  std::map<void*, std::wstring> procs = {{Handle(1), L"old"}, {Handle(9), L"kept"}};
  ZtGetProcTree(engine_, Handle(1), procs);
  EXPECT_THAT(procs, ElementsAre(Pair(Handle(1), L"C:\\P1.exe"), Pair(Handle(9), L"kept")));
}

TEST_F(TreeQueriesTest, AProcessOfAnUnknownCreatorIsTheRootOfItsDescendants) {
  StartSuspiciousChain(2);
  StartProcess(50, 100);
  SetScore(50, 5);
  StartChild(50, 51);
  SetScore(51, 5);
  EXPECT_THAT(Suspicious(50), ElementsAre(50, 51));
  EXPECT_THAT(Suspicious(51), ElementsAre(50, 51));
  EXPECT_THAT(Suspicious(2), ElementsAre(1, 2));
}

TEST_F(TreeQueriesTest, OfSixGenerationsTheYoungestDoesNotReachTheOldest) {
  StartSuspiciousChain(6);
  EXPECT_THAT(Suspicious(6), ElementsAre(2, 3, 4, 5, 6));
  EXPECT_THAT(Suspicious(5), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(TreeQueriesTest, OtherBranchesUnderTheRootBelongToTheFamily) {
  StartSuspiciousChain(6);
  StartChild(1, 60);  // Under the fifth ancestor: not of the family.
  SetScore(60, 2);
  StartChild(2, 70);  // Under the fourth.
  SetScore(70, 2);
  EXPECT_THAT(Suspicious(6), ElementsAre(2, 3, 4, 5, 6, 70));
}

TEST_F(TreeQueriesTest, ALimitOfZeroMakesTheProcessItsOwnRoot) {
  StartSuspiciousChain(3);
  core().ScoreWalkLimit = 0;
  EXPECT_THAT(Suspicious(2), ElementsAre(2, 3));
}

TEST_F(TreeQueriesTest, TheLimitIsTheNumberOfLevelsClimbed) {
  StartSuspiciousChain(6);
  core().ScoreWalkLimit = 1;
  EXPECT_THAT(Suspicious(6), ElementsAre(5, 6));
  core().ScoreWalkLimit = 5;
  EXPECT_THAT(Suspicious(6), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(TreeQueriesTest, AnIdMeansTheNewestProcessUnderIt) {
  StartProcess(10, 100);
  SetScore(10, 5);
  StartProcess(10, 200);
  EXPECT_THAT(Suspicious(10), IsEmpty());
}

TEST_F(TreeQueriesTest, AnIdReusedWithinTheFamilyIsListedForEachProcess) {
  StartProcess(1, 50);
  StartChild(1, 10, 100, L"C:\\first.exe");
  SetScore(10, 2);
  StartChild(1, 10, 200, L"C:\\second.exe");
  SetScore(10, 2);
  EXPECT_THAT(Suspicious(1), ElementsAre(10, 10));
  EXPECT_THAT(Images(1), ElementsAre(Pair(Handle(10), L"C:\\second.exe")));
}

TEST_F(TreeQueriesTest, AProcessListedTwiceByItsParentIsReportedOnce) {
  StartProcess(1, 50);
  StartChild(1, 10, 100);
  StartChild(1, 10, 100);
  SetScore(10, 2);
  EXPECT_THAT(Suspicious(10), ElementsAre(10));
}

TEST_F(TreeQueriesTest, CyclesOfParentsAreReportedOnce) {
  StartSuspiciousChain(3);
  Insert(ProcessCreate(3, 1, 100));
  SetScore(1, 2);
  EXPECT_THAT(Suspicious(1), UnorderedElementsAre(1, 2, 3));
  EXPECT_THAT(Suspicious(2), UnorderedElementsAre(1, 2, 3));
  core().ScoreWalkLimit = 1000;
  EXPECT_THAT(Suspicious(3), UnorderedElementsAre(1, 2, 3));
}

TEST_F(TreeQueriesTest, IdsOf64BitsAreReportedWhole) {
  constexpr std::uint64_t kWide = 0xFFFFFFFF00000001;
  StartProcess(kWide, 100);
  SetScore(kWide, 2);
  EXPECT_THAT(Suspicious(kWide), ElementsAre(kWide));
}

TEST_F(TreeQueriesTest, AQueryOnAKnownProcessChangesNothing) {
  StartSuspiciousChain(4);
  const std::string before = DumpState(core());
  Suspicious(4);
  Images(4);
  EXPECT_EQ(DumpState(core()), before);
}

TEST_F(TreeQueriesTest, AQueryTracesItsKeyItsRootItsCountAndItsFinds) {
  StartSuspiciousChain(3);
  SetScore(2, 1);
  SetScore(3, -1);
  TraceCapture trace(0x2);
  trace.Take();
  Suspicious(3);
  const std::vector<TraceLine> lines = trace.Take();
  const std::vector<std::string> messages = MessagesOf(lines);
  EXPECT_THAT(messages, ElementsAre("Key: (3, 200)", "RootKey: (1, 100)", "Number of items in tree: 3",
                                    "Proc Pid: 1 has score 2", "Proc Pid: 3 has score 4294967295"));
  EXPECT_THAT(lines, Each(Field(&TraceLine::level, "debug")));
  Images(3);
  EXPECT_EQ(trace.TakeMessages(), messages);
}

TEST_F(TreeQueriesTest, AQueryForAnUnknownIdTracesAnEmptyFamily) {
  TraceCapture trace(0x2);
  trace.Take();
  Suspicious(77);
  EXPECT_THAT(trace.TakeMessages(), ElementsAre("Key: (77, 0)", "RootKey: (77, 0)", "Number of items in tree: 0"));
}

TEST_F(TreeQueriesTest, WithoutTheDebugBitAQueryWritesNothing) {
  StartSuspiciousChain(2);
  TraceCapture trace(0x1 | 0x4);
  trace.Take();
  Suspicious(2);
  Images(2);
  EXPECT_THAT(trace.Take(), IsEmpty());
}

}  // namespace
}  // namespace zt::testing
