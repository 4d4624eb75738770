#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "engine/tracing.h"
#include "tests/support/engine_test.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
/// Ticks in one unit of age.
constexpr std::int64_t kUnit = 10000;
/// So many units that no score is old.
constexpr std::int64_t kNoScore = kMax;
constexpr std::int64_t kNow = 1'000'000'000'000;

class ScoreResetTest : public EngineTest {
 protected:
  /// One pass in which file records and scores of the time kNow are new.
  void Collect() { ZtResetScore(engine_, kNow, kNoScore); }

  /// A process with the score 7 and its last penalty at `score_time`.
  ProcessItem& StartScored(std::uint64_t pid, std::int64_t score_time, std::int32_t score = 7) {
    StartProcess(pid);
    ProcessItem& item = *ItemOf(pid);
    item.Score = score;
    item.ScoreTime = score_time;
    return item;
  }
  /// The score after a reset of one process.
  std::int32_t ScoreAfterReset(std::int64_t now, std::int64_t score_time, std::int64_t limit) {
    StartScored(10, score_time);
    ZtResetScore(engine_, now, limit);
    return ScoreOf(10);
  }
  /// Whether a file record of the time `first_time` is erased at `now`.
  bool IsErased(std::int64_t now, std::int64_t first_time) {
    StartProcess(10);
    EnterFile(*ItemOf(10), L"c:\\f").FirstTime = first_time;
    ZtResetScore(engine_, now, kNoScore);
    return FileOf(10, L"c:\\f") == nullptr;
  }
  std::vector<TraceLine> TracesOfReset(std::uint64_t flags, std::int64_t now, std::int64_t limit) {
    TraceCapture trace(flags);
    trace.Take();
    ZtResetScore(engine_, now, limit);
    return trace.Take();
  }
  std::vector<ZtProcKey> Keys() {
    std::vector<ZtProcKey> keys;
    for (const auto& [key, entry] : core().Tree) {
      keys.push_back(key);
    }
    return keys;
  }
};

// Scores.

TEST_F(ScoreResetTest, ScoreOfExactlyTheLimitsAgeIsKept) { EXPECT_EQ(ScoreAfterReset(kNow, kNow - 50 * kUnit, 50), 7); }

TEST_F(ScoreResetTest, ScoreOneUnitOlderBecomesOne) { EXPECT_EQ(ScoreAfterReset(kNow, kNow - 51 * kUnit, 50), 1); }

TEST_F(ScoreResetTest, PartOfAUnitDoesNotCount) { EXPECT_EQ(ScoreAfterReset(kNow, kNow - 51 * kUnit + 1, 50), 7); }

// A stamp less than a unit in the future has the age 0, which is above -1.
TEST_F(ScoreResetTest, NegativeAgesAreTruncatedTowardZero) {
  EXPECT_EQ(ScoreAfterReset(kNow, kNow + kUnit - 1, -1), 1);
  EXPECT_EQ(ScoreAfterReset(kNow, kNow + kUnit, -1), 7);
  EXPECT_EQ(ScoreAfterReset(kNow, kNow + 2 * kUnit - 1, -2), 1);
}

// From the least stamp to the greatest time is -1 tick: age 0. From stamp 1 to the least time is the greatest number of ticks.
TEST_F(ScoreResetTest, AgesWrapAt64Bits) {
  EXPECT_EQ(ScoreAfterReset(kMax, kMin, 0), 7);
  EXPECT_EQ(ScoreAfterReset(kMax, kMin, -1), 1);
  EXPECT_EQ(ScoreAfterReset(kMin, 1, kMax / kUnit), 7);
  EXPECT_EQ(ScoreAfterReset(kMin, 1, kMax / kUnit - 1), 1);
}

TEST_F(ScoreResetTest, LimitsOfAnyValueWork) {
  EXPECT_EQ(ScoreAfterReset(kNow, 0, kMax), 7);
  EXPECT_EQ(ScoreAfterReset(kNow, kNow + 1000 * kUnit, kMin), 1);
}

TEST_F(ScoreResetTest, IgnoredProcessCountsAgain) {
  StartScored(10, 0, 0);
  ZtResetScore(engine_, kNow, 0);
  EXPECT_EQ(ScoreOf(10), 1);
}

TEST_F(ScoreResetTest, NegativeScoreBecomesOne) {
  StartScored(10, 0, -5);
  ZtResetScore(engine_, kNow, 0);
  EXPECT_EQ(ScoreOf(10), 1);
}

TEST_F(ScoreResetTest, EveryProcessIsJudgedByItsOwnPenalty) {
  StartScored(10, kNow - 51 * kUnit);
  StartScored(11, kNow - 50 * kUnit);
  StartScored(12, 0);
  ZtResetScore(engine_, kNow, 50);
  EXPECT_EQ(ScoreOf(10), 1);
  EXPECT_EQ(ScoreOf(11), 7);
  EXPECT_EQ(ScoreOf(12), 1);
}

TEST_F(ScoreResetTest, TimeOfThePenaltyStays) {
  StartScored(10, 33);
  ZtResetScore(engine_, kNow, 0);
  EXPECT_EQ(ItemOf(10)->ScoreTime, 33);
}

TEST_F(ScoreResetTest, ScoreGrowsFromOneAfterwards) {
  StartScored(10, 0);
  ZtResetScore(engine_, kNow, 0);
  Insert(ModuleLoad(10, L"C:\\bcrypt.dll"));
  EXPECT_EQ(ScoreOf(10), 2);
}

TEST_F(ScoreResetTest, ResetOfAScoreIsTracedWithoutALevel) {
  StartScored(10, 0);
  EXPECT_THAT(TracesOfReset(kTraceInfo, kNow, 0), ElementsAre(TraceLine{1253, "", "GC: reset 10 7 to 1\n"}));
}

TEST_F(ScoreResetTest, ResetsAreTracedInTheOrderOfKeys) {
  StartScored(300, 0, 3);
  StartScored(2, 0, 2);
  StartScored(10, 0, -5);
  EXPECT_THAT(TracesOfReset(kTraceInfo, kNow, 0),
              ElementsAre(TraceLine{1253, "", "GC: reset 2 2 to 1\n"}, TraceLine{1253, "", "GC: reset 10 -5 to 1\n"},
                          TraceLine{1253, "", "GC: reset 300 3 to 1\n"}));
}

TEST_F(ScoreResetTest, ResetOfAScoreBelowTwoIsNotTraced) {
  StartScored(10, 0, 0);
  StartScored(11, 0, 1);
  EXPECT_THAT(TracesOfReset(kTraceInfo, kNow, 0), IsEmpty());
  EXPECT_EQ(ScoreOf(10), 1);
}

TEST_F(ScoreResetTest, KeptScoreIsNotTraced) {
  StartScored(10, kNow);
  EXPECT_THAT(TracesOfReset(kTraceInfo, kNow, 0), IsEmpty());
}

TEST_F(ScoreResetTest, ResetOfAScoreIsNoDebugLine) {
  StartScored(10, 0);
  for (const TraceLine& line : TracesOfReset(kTraceDebug | kTraceWarning, kNow, 0)) {
    EXPECT_NE(line.line, 1253) << line;
  }
  EXPECT_EQ(ScoreOf(10), 1);
}

// File records.

TEST_F(ScoreResetTest, FileOfExactlyTheKeepTimesAgeIsKept) {
  EXPECT_FALSE(IsErased(kNow, kNow - 900000 * kUnit));
  EXPECT_FALSE(IsErased(kNow, kNow - 900001 * kUnit + 1));
}

TEST_F(ScoreResetTest, OlderFileIsErased) { EXPECT_TRUE(IsErased(kNow, kNow - 900001 * kUnit)); }

TEST_F(ScoreResetTest, AgesOfFilesWrapAt64Bits) {
  EXPECT_FALSE(IsErased(kMax, kMin));
  EXPECT_TRUE(IsErased(kMin, 1));
}

TEST_F(ScoreResetTest, AgesOfFilesAreTruncatedTowardZero) {
  core().fileKeepTime = -1;
  EXPECT_TRUE(IsErased(kNow, kNow + kUnit - 1));
  EXPECT_FALSE(IsErased(kNow, kNow + kUnit));
}

TEST_F(ScoreResetTest, KeepTimeIsTheEngines) {
  core().fileKeepTime = 5;
  EXPECT_FALSE(IsErased(kNow, kNow - 5 * kUnit));
  EXPECT_TRUE(IsErased(kNow, kNow - 6 * kUnit));
}

TEST_F(ScoreResetTest, OldFileThatNeedsRecoveryIsKept) {
  StartProcess(10);
  EnterFile(*ItemOf(10), L"c:\\f").Similar = true;
  Collect();
  EXPECT_NE(FileOf(10, L"c:\\f"), nullptr);
}

TEST_F(ScoreResetTest, OtherMarksDoNotKeepAFile) {
  StartProcess(10);
  FileItem& file = EnterFile(*ItemOf(10), L"c:\\f");
  file.Written = file.Renamed = file.SimilarMark = file.Created = file.ReadStarted = file.penalized = true;
  file.State = 8;
  Collect();
  EXPECT_EQ(FileOf(10, L"c:\\f"), nullptr);
}

TEST_F(ScoreResetTest, EveryOldFileOfEveryProcessIsErased) {
  StartProcess(10);
  StartProcess(11);
  for (const std::uint64_t pid : {10u, 11u}) {
    for (const wchar_t* const key : {L"c:\\a", L"c:\\b", L"c:\\c", L"c:\\d"}) {
      EnterFile(*ItemOf(pid), key);
    }
    EnterFile(*ItemOf(pid), L"c:\\c").FirstTime = kNow;
  }
  Collect();
  EXPECT_EQ(ItemOf(10)->files.size(), 1u);
  EXPECT_NE(FileOf(10, L"c:\\c"), nullptr);
  EXPECT_EQ(ItemOf(11)->files.size(), 1u);
}

TEST_F(ScoreResetTest, ListsOfTheProcessStay) {
  StartProcess(10);
  Insert(CreateFresh(10, L"c:\\new"));
  Collect();
  EXPECT_THAT(ItemOf(10)->QuarantineList.Paths(), ElementsAre(L"c:\\new"));
  EXPECT_THAT(ItemOf(10)->CreatedFilesList.Paths(), ElementsAre(L"c:\\new"));
}

TEST_F(ScoreResetTest, ErasedFilesAreTracedInMapOrder) {
  StartProcess(10);
  EnterFile(*ItemOf(10), L"c:\\b").FirstTime = kNow - 900001 * kUnit;
  EnterFile(*ItemOf(10), L"c:\\a").FirstTime = kNow - 900002 * kUnit;
  EnterFile(*ItemOf(10), L"c:\\c").FirstTime = kNow;
  EXPECT_THAT(
      TracesOfReset(kTraceDebug, kNow, kNoScore),
      ElementsAre(
          TraceLine{1248, "debug", "ZtResetScore start :: ProcTree size: 1"},
          TraceLine{1263, "debug", "File c:\\a does not need recovery, will be erased from file context. Time elapsed 900002"},
          TraceLine{1263, "debug", "File c:\\b does not need recovery, will be erased from file context. Time elapsed 900001"},
          TraceLine{1272, "debug", "PID: 10"}, TraceLine{1275, "debug", "ZtResetScore end:: ProcTree size: 1"}));
}

// The process tree.

TEST_F(ScoreResetTest, EmptyTreeYieldsTheTwoSizeLines) {
  EXPECT_THAT(TracesOfReset(kTraceDebug, kNow, 0),
              ElementsAre(TraceLine{1248, "debug", "ZtResetScore start :: ProcTree size: 0"},
                          TraceLine{1275, "debug", "ZtResetScore end:: ProcTree size: 0"}));
}

TEST_F(ScoreResetTest, RunningProcessIsKept) {
  StartProcess(10);
  Collect();
  Collect();
  EXPECT_EQ(EntryOf(10)->LiveCount, 1u);
  EXPECT_EQ(EntryOf(10)->Exited, 0);
}

TEST_F(ScoreResetTest, ExitedFlagIsCountedDownBeforeTheProcessGoes) {
  StartProcess(10);
  EntryOf(10)->LiveCount = 0;
  EntryOf(10)->Exited = 2;
  Collect();
  ASSERT_NE(EntryOf(10), nullptr);
  EXPECT_EQ(EntryOf(10)->Exited, 1);
  Collect();
  ASSERT_NE(EntryOf(10), nullptr);
  EXPECT_EQ(EntryOf(10)->Exited, 0);
  Collect();
  EXPECT_EQ(EntryOf(10), nullptr);
}

TEST_F(ScoreResetTest, ExitedProcessSurvivesOneCall) {
  StartProcess(10);
  Insert(ProcessExit(10));
  Collect();
  ASSERT_NE(EntryOf(10), nullptr);
  Collect();
  EXPECT_EQ(EntryOf(10), nullptr);
  EXPECT_EQ(core().Tree.size(), 0u);
}

TEST_F(ScoreResetTest, StartTimeOfARemovedProcessIsKept) {
  StartProcess(10);
  EntryOf(10)->LiveCount = 0;
  Collect();
  ASSERT_NE(core().FindStartTime(10), nullptr);
  EXPECT_EQ(*core().FindStartTime(10), 100);
}

TEST_F(ScoreResetTest, ExitedFlagIsCountedDownWhileDescendantsLive) {
  StartProcess(10);
  StartChild(10, 20);
  Insert(ProcessExit(10));
  Collect();
  ASSERT_NE(EntryOf(10), nullptr);
  EXPECT_EQ(EntryOf(10)->Exited, 0);
  Collect();
  ASSERT_NE(EntryOf(10), nullptr);
  EXPECT_EQ(EntryOf(10)->Exited, 0);
  EXPECT_EQ(EntryOf(10)->LiveCount, 1u);
}

TEST_F(ScoreResetTest, ParentGoesOnceItsLastDescendantHasExited) {
  StartProcess(10);
  StartChild(10, 20);
  Insert(ProcessExit(10));
  Collect();
  Insert(ProcessExit(20));
  Collect();
  EXPECT_EQ(EntryOf(10), nullptr) << "its own call to wait is over";
  ASSERT_NE(EntryOf(20), nullptr);
  Collect();
  EXPECT_EQ(EntryOf(20), nullptr);
}

TEST_F(ScoreResetTest, NegativeExitedFlagIsKept) {
  StartProcess(10);
  EntryOf(10)->LiveCount = 0;
  EntryOf(10)->Exited = -1;
  Collect();
  ASSERT_NE(EntryOf(10), nullptr);
  EXPECT_EQ(EntryOf(10)->Exited, -1);
}

TEST_F(ScoreResetTest, RemovedChildLeavesItsSiblingsInOrder) {
  StartProcess(10);
  StartChild(10, 23);
  StartChild(10, 21);
  StartChild(10, 22);
  EntryOf(21)->LiveCount = 0;
  Collect();
  EXPECT_EQ(EntryOf(21), nullptr);
  EXPECT_THAT(EntryOf(10)->children, ElementsAre(ZtProcKey{23, 200}, ZtProcKey{22, 200}));
}

TEST_F(ScoreResetTest, OnlyTheChildOfTheSameStartTimeIsUnlinked) {
  StartProcess(10);
  StartChild(10, 20, 200);
  StartChild(10, 20, 300);
  core().Tree.Find({20, 300})->LiveCount = 0;
  Collect();
  EXPECT_THAT(EntryOf(10)->children, ElementsAre(ZtProcKey{20, 200}));
  EXPECT_THAT(Keys(), ElementsAre(ZtProcKey{10, 100}, ZtProcKey{20, 200}));
}

TEST_F(ScoreResetTest, ChildListedTwiceIsUnlinkedOnce) {
  StartProcess(10);
  StartChild(10, 20);
  StartChild(10, 21);
  StartChild(10, 20);
  EntryOf(20)->LiveCount = 0;
  Collect();
  EXPECT_THAT(EntryOf(10)->children, ElementsAre(ZtProcKey{21, 200}, ZtProcKey{20, 200}));
}

TEST_F(ScoreResetTest, ChildrenOfARemovedProcessStay) {
  StartProcess(10);
  StartChild(10, 20);
  StartChild(20, 30);
  EntryOf(20)->LiveCount = 0;
  Collect();
  EXPECT_THAT(Keys(), ElementsAre(ZtProcKey{10, 100}, ZtProcKey{30, 200}));
  EXPECT_EQ(EntryOf(30)->parentKey, (ZtProcKey{20, 200}));
  EXPECT_THAT(EntryOf(10)->children, IsEmpty());
  Collect();
  EXPECT_EQ(EntryOf(30)->LiveCount, 1u);
}

TEST_F(ScoreResetTest, ProcessesThatAreDoneGoTogether) {
  StartProcess(10);
  StartChild(10, 20);
  StartChild(20, 30);
  for (const std::uint64_t pid : {10u, 20u, 30u}) {
    EntryOf(pid)->LiveCount = 0;
  }
  Collect();
  EXPECT_THAT(Keys(), IsEmpty());
}

TEST_F(ScoreResetTest, RemovedProcessIsStillResetAndTraced) {
  StartScored(10, 0);
  StartScored(11, kNow);
  EntryOf(10)->LiveCount = 0;
  EnterFile(*ItemOf(10), L"c:\\f");
  EXPECT_THAT(
      TracesOfReset(kTraceDebug | kTraceInfo, kNow, 0),
      ElementsAre(TraceLine{1248, "debug", "ZtResetScore start :: ProcTree size: 2"},
                  TraceLine{1253, "", "GC: reset 10 7 to 1\n"},
                  TraceLine{1263, "debug",
                            "File c:\\f does not need recovery, will be erased from file context. Time elapsed 100000000"},
                  TraceLine{1272, "debug", "PID: 11"}, TraceLine{1275, "debug", "ZtResetScore end:: ProcTree size: 1"}));
}

TEST_F(ScoreResetTest, RemainingProcessesAreTracedInTheOrderOfKeys) {
  StartProcess(300);
  StartProcess(2, 500);
  StartProcess(2, 400);
  EXPECT_THAT(
      TracesOfReset(kTraceDebug, 0, kNoScore),
      ElementsAre(TraceLine{1248, "debug", "ZtResetScore start :: ProcTree size: 3"}, TraceLine{1272, "debug", "PID: 2"},
                  TraceLine{1272, "debug", "PID: 2"}, TraceLine{1272, "debug", "PID: 300"},
                  TraceLine{1275, "debug", "ZtResetScore end:: ProcTree size: 3"}));
}

TEST_F(ScoreResetTest, NothingIsTracedUnderTheWarningBit) {
  StartScored(10, 0);
  EnterFile(*ItemOf(10), L"c:\\f");
  EXPECT_THAT(TracesOfReset(kTraceWarning, kNow, 0), IsEmpty());
}

// A process that created itself is its own parent and its own child.
TEST_F(ScoreResetTest, ProcessThatIsItsOwnParentIsRemoved) {
  StartProcess(10);
  StartChild(10, 10, 100);
  EntryOf(10)->LiveCount = 0;
  Collect();
  EXPECT_THAT(Keys(), IsEmpty());
}

}  // namespace
}  // namespace zt::testing
