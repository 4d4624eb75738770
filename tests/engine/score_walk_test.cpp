// The result of a penalised event: the larger of the process's and its parent's score, clamped.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "engine/transition_table.h"
#include "tests/support/engine_test.h"

namespace zt::testing {
namespace {

using ::testing::Contains;

const std::wstring kDoc = L"c:\\d\\a.doc";
constexpr std::int32_t kTop = 0x7FFFFFFF;

class ScoreWalkTest : public EngineTest {
 protected:
  /// Process 1, its child 10, its grandchild 20, which has read the file.
  ScoreWalkTest() {
    StartProcess(1, 50);
    StartChild(1, 10, 100);
    StartChild(10, 20, 200);
    Track(20, kDoc, ZT_READ_START);
  }
  void SetScore(std::uint64_t pid, std::uint32_t score) { ItemOf(pid)->Score = static_cast<std::int32_t>(score); }
  /// The file was charged to the process before: its score stays.
  void Excuse(std::uint64_t pid) { Track(pid, kDoc, ZT_UNKNOWN).penalized = true; }
  /// Charges 2 to process 20 and its ancestors.
  ZtLong Charge() { return Insert(Write(20, kDoc)); }
};

TEST_F(ScoreWalkTest, TheOwnScoreIsTheResultWhenItIsTheLarger) {
  SetScore(20, 10);
  SetScore(10, 3);
  EXPECT_EQ(Charge(), 20);
}

TEST_F(ScoreWalkTest, TheParentsScoreIsTheResultWhenItIsTheLarger) {
  SetScore(20, 3);
  SetScore(10, 10);
  EXPECT_EQ(Charge(), 20);
  EXPECT_EQ(ScoreOf(20), 6);
}

TEST_F(ScoreWalkTest, AGrandparentsScoreDoesNotCount) {
  SetScore(1, 1000);
  EXPECT_EQ(Charge(), 2);
  EXPECT_EQ(ScoreOf(1), 2000);
}

TEST_F(ScoreWalkTest, AMissingParentLeavesTheOwnScore) {
  EntryOf(20)->parentKey = {77, 7};
  SetScore(10, 1000);
  EXPECT_EQ(Charge(), 2);
}

TEST_F(ScoreWalkTest, AnIgnoredProcessGivesItsParentsScore) {
  SetScore(20, 0);
  SetScore(10, 4);
  EXPECT_EQ(Charge(), 8);
  EXPECT_EQ(ScoreOf(20), 0);
}

TEST_F(ScoreWalkTest, ALimitOfZeroGivesZeroThoughTheScoreRises) {
  core().ScoreWalkLimit = 0;
  TraceCapture trace(0x4);
  trace.Take();
  EXPECT_EQ(Charge(), 0);
  EXPECT_EQ(ScoreOf(20), 2);
  EXPECT_THAT(trace.TakeMessages(), Contains("|--- [SCORE INCREASED] PID:20 score: 0, TimeStamp: 0 ---|\n"));
}

TEST_F(ScoreWalkTest, ALimitOfOneReadsTheOwnScoreAlone) {
  core().ScoreWalkLimit = 1;
  SetScore(10, 1000);
  EXPECT_EQ(Charge(), 2);
}

TEST_F(ScoreWalkTest, ALimitOfTwoReadsTheParentToo) {
  core().ScoreWalkLimit = 2;
  SetScore(10, 1000);
  EXPECT_EQ(Charge(), 2000);
}

TEST_F(ScoreWalkTest, NoLimitReachesTheGrandparent) {
  core().ScoreWalkLimit = 100;
  SetScore(1, 1000);
  EXPECT_EQ(Charge(), 2);
}

TEST_F(ScoreWalkTest, AParentsScoreAboveTheTopIsStoredBackAsTheTop) {
  SetScore(10, 0x80000005);
  Excuse(10);
  EXPECT_EQ(Charge(), kTop);
  EXPECT_EQ(ScoreOf(10), kTop);
  EXPECT_EQ(ScoreOf(20), 2);
}

TEST_F(ScoreWalkTest, AnOwnScoreAboveTheTopIsStoredBackAsTheTop) {
  SetScore(20, 0x40000001);
  EXPECT_EQ(Charge(), kTop);
  EXPECT_EQ(ScoreOf(20), kTop);
}

TEST_F(ScoreWalkTest, TheTopItselfIsKept) {
  SetScore(10, 0x7FFFFFFF);
  Excuse(10);
  EXPECT_EQ(Charge(), kTop);
  EXPECT_EQ(ScoreOf(10), kTop);
}

TEST_F(ScoreWalkTest, AClampedOwnScoreIsNotLoweredByTheParent) {
  SetScore(20, 0x7FFFFFFF);  // Twice that is 0xFFFFFFFE.
  SetScore(10, 1);
  EXPECT_EQ(Charge(), kTop);
  EXPECT_EQ(ScoreOf(10), 2);
}

TEST_F(ScoreWalkTest, WithALimitOfOneTheParentsScoreIsNotClamped) {
  core().ScoreWalkLimit = 1;
  SetScore(10, 0x80000005);
  Excuse(10);
  EXPECT_EQ(Charge(), 2);
  EXPECT_EQ(static_cast<std::uint32_t>(ScoreOf(10)), 0x80000005U);
}

TEST_F(ScoreWalkTest, AGrandparentsScoreIsNotClamped) {
  SetScore(1, 0x40000001);
  EXPECT_EQ(Charge(), 2);
  EXPECT_EQ(static_cast<std::uint32_t>(ScoreOf(1)), 0x80000002U);
}

TEST_F(ScoreWalkTest, ASelfCreatedProcessIsItsOwnParent) {
  Insert(ProcessCreate(20, 20, 200));
  Track(20, kDoc, ZT_READ_START);
  EXPECT_EQ(Charge(), 2);
}

}  // namespace
}  // namespace zt::testing
