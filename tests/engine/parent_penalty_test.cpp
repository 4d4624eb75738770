#include "engine/parent_penalty.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "engine/tracing.h"
#include "tests/support/engine_test.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// An ancestor with the id 5.
class ParentPenaltyTest : public ::testing::Test {
 protected:
  static constexpr std::int64_t kTime = 777;

  ParentPenaltyTest() {
    ancestor_.Pid = 5;
    ancestor_.Score = 2;
  }

  /// Charges the ancestor for the file `path`.
  bool Charge(const std::wstring& path, std::uint32_t factor = 3) {
    OwnedPath file(path);
    ParentPenalty penalty(factor, time_, file.name());
    penalty.Add(entry_);
    bool charged = false;
    penalty.Charge([&](const ProcessTree::Entry& entry, std::int32_t) { charged = &entry == &entry_; });
    return charged;
  }

  ProcessTree::Entry entry_;
  ProcessItem& ancestor_ = entry_.Item;
  std::int64_t time_ = kTime;
};

TEST_F(ParentPenaltyTest, ScoreIsMultipliedAndTheTimeStamped) {
  EXPECT_TRUE(Charge(L"c:\\f"));
  EXPECT_EQ(ancestor_.Score, 6);
  EXPECT_EQ(ancestor_.ScoreTime, kTime);
}

TEST_F(ParentPenaltyTest, FileThatTheAncestorNeverTouchedIsAddedMarked) {
  Charge(L"c:\\f");
  ASSERT_EQ(ancestor_.files.size(), 1u);
  const FileItem& file = (*FindFile(ancestor_, L"c:\\f"));
  EXPECT_TRUE(file.penalized);
  EXPECT_FALSE(file.Written || file.Similar || file.Renamed || file.SimilarMark || file.Created || file.ReadStarted);
  EXPECT_EQ(file.State, 0u);
  EXPECT_EQ(file.FirstTime, 0);
  EXPECT_EQ(file.Context, 0u);
  EXPECT_EQ(file.ReadInfo, 0u);
  EXPECT_EQ(file.CreateInfo, 0u);
  EXPECT_EQ(file.Path, L"");
}

TEST_F(ParentPenaltyTest, KnownFileIsMarkedAndOtherwiseKept) {
  FileItem& file = EnterFile(ancestor_, L"c:\\f");
  file.State = 2;
  file.Path = MakePath(L"C:\\F");
  EXPECT_TRUE(Charge(L"c:\\f"));
  EXPECT_EQ(ancestor_.Score, 6);
  EXPECT_EQ(ancestor_.ScoreTime, kTime);
  EXPECT_TRUE(file.penalized);
  EXPECT_EQ(file.State, 2u);
  EXPECT_EQ(file.Path, L"C:\\F");
  EXPECT_EQ(ancestor_.files.size(), 1u);
}

TEST_F(ParentPenaltyTest, FileChargesAnAncestorOnce) {
  Charge(L"c:\\f");
  time_ = kTime + 1;
  EXPECT_FALSE(Charge(L"c:\\f"));
  EXPECT_EQ(ancestor_.Score, 6);
  EXPECT_EQ(ancestor_.ScoreTime, kTime);
}

TEST_F(ParentPenaltyTest, EveryFileCharges) {
  Charge(L"c:\\f");
  Charge(L"c:\\g");
  EXPECT_EQ(ancestor_.Score, 18);
}

TEST_F(ParentPenaltyTest, AChargeThatDoesNotFollowLeavesNothing) {
  EnterFile(ancestor_, L"c:\\known").State = 2;
  OwnedPath known(L"c:\\known");
  OwnedPath fresh(L"c:\\fresh");
  {
    ParentPenalty penalty(3, time_, known.name());
    penalty.Add(entry_);
    ParentPenalty other(3, time_, fresh.name());
    other.Add(entry_);
    EXPECT_EQ(ancestor_.files.size(), 2u);
  }
  ASSERT_EQ(ancestor_.files.size(), 1u);
  EXPECT_FALSE((*FindFile(ancestor_, L"c:\\known")).penalized);
  EXPECT_EQ(ancestor_.Score, 2);
}

TEST_F(ParentPenaltyTest, AChargeReportsTheScoreBefore) {
  OwnedPath file(L"c:\\f");
  ParentPenalty penalty(3, time_, file.name());
  penalty.Add(entry_);
  std::int32_t before = 0;
  penalty.Charge([&](const ProcessTree::Entry&, std::int32_t score) { before = score; });
  EXPECT_EQ(before, 2);
}

TEST_F(ParentPenaltyTest, IgnoredAncestorStaysIgnored) {
  ancestor_.Score = 0;
  EXPECT_TRUE(Charge(L"c:\\f"));
  EXPECT_EQ(ancestor_.Score, 0);
  EXPECT_EQ(ancestor_.ScoreTime, kTime);
  EXPECT_TRUE((*FindFile(ancestor_, L"c:\\f")).penalized);
}

TEST_F(ParentPenaltyTest, ProductWrapsAt32Bits) {
  ancestor_.Score = 0x40000000;
  Charge(L"c:\\f", 2);
  EXPECT_EQ(ancestor_.Score, std::numeric_limits<std::int32_t>::min());
  Charge(L"c:\\g", 2);
  EXPECT_EQ(ancestor_.Score, 0);
}

TEST_F(ParentPenaltyTest, NegativeScoresAreMultiplied) {
  ancestor_.Score = -5;
  Charge(L"c:\\f", 6);
  EXPECT_EQ(ancestor_.Score, -30);
}

TEST_F(ParentPenaltyTest, NewFileIsTraced) {
  TraceCapture trace(kTraceDebug);
  Charge(L"c:\\f");
  EXPECT_THAT(trace.Take(), ElementsAre(TraceLine{769, "debug", "Parent pid 5"},
                                        TraceLine{781, "debug", "Parent Penalty 3, new file added to proc 5"}));
}

TEST_F(ParentPenaltyTest, KnownFileIsTraced) {
  EnterFile(ancestor_, L"c:\\f");
  TraceCapture trace(kTraceDebug);
  Charge(L"c:\\f", 6);
  EXPECT_THAT(trace.Take(), ElementsAre(TraceLine{769, "debug", "Parent pid 5"}, TraceLine{775, "debug", "Parent Penalty 6"}));
}

TEST_F(ParentPenaltyTest, ChargedFileTracesOnlyTheAncestor) {
  EnterFile(ancestor_, L"c:\\f").penalized = true;
  TraceCapture trace(kTraceDebug);
  Charge(L"c:\\f");
  EXPECT_THAT(trace.Take(), ElementsAre(TraceLine{769, "debug", "Parent pid 5"}));
}

TEST_F(ParentPenaltyTest, NothingIsTracedUnlessDebugLinesAreOn) {
  TraceCapture trace(kTraceInfo | kTraceWarning);
  trace.Take();
  Charge(L"c:\\f");
  EXPECT_THAT(trace.Take(), IsEmpty());
}

/// Four generations, 1 to 4, of which the youngest acts.
class AncestorsChargeTest : public EngineTest {
 protected:
  AncestorsChargeTest() {
    StartProcess(1);
    StartChild(1, 2);
    StartChild(2, 3);
    StartChild(3, 4);
  }

  /// The youngest opens, reads and, at the time 5000, overwrites a file: a penalty of 2.
  ZtLong OverwriteByTheYoungest(std::wstring_view path) {
    OpenAndRead(4, path);
    LOG_ITEM write = Write(4, path);
    write.Time = 5000;
    return Insert(write);
  }
};

TEST_F(AncestorsChargeTest, EveryAncestorIsCharged) {
  ItemOf(1)->Score = 5;
  ItemOf(2)->Score = 7;
  EXPECT_EQ(OverwriteByTheYoungest(L"C:\\F.doc"), 2);
  EXPECT_EQ(ScoreOf(4), 2);
  EXPECT_EQ(ScoreOf(3), 2);
  EXPECT_EQ(ScoreOf(2), 14);
  EXPECT_EQ(ScoreOf(1), 10);
  for (const std::uint64_t pid : {1u, 2u, 3u, 4u}) {
    EXPECT_EQ(ItemOf(pid)->ScoreTime, 5000) << pid;
    ASSERT_NE(FileOf(pid, L"c:\\f.doc"), nullptr) << pid;
    EXPECT_TRUE(FileOf(pid, L"c:\\f.doc")->penalized) << pid;
  }
}

TEST_F(AncestorsChargeTest, FileThatASiblingWasChargedForChargesTheSiblingsAncestorsNoMore) {
  StartChild(3, 6);
  EXPECT_EQ(Overwrite(6, L"c:\\f.doc"), 2);
  EXPECT_EQ(OverwriteByTheYoungest(L"c:\\f.doc"), 2);
  EXPECT_EQ(ScoreOf(4), 2);
  EXPECT_EQ(ScoreOf(6), 2);
  EXPECT_EQ(ScoreOf(3), 2);
  EXPECT_EQ(ScoreOf(2), 2);
  EXPECT_EQ(ScoreOf(1), 2);
}

TEST_F(AncestorsChargeTest, ChargesEndWhereAParentIsNotInTheTree) {
  core().Tree.Find({2, 200})->parentKey = {1, 12345};
  OverwriteByTheYoungest(L"c:\\f.doc");
  EXPECT_EQ(ScoreOf(3), 2);
  EXPECT_EQ(ScoreOf(2), 2);
  EXPECT_EQ(ScoreOf(1), 1);
}

TEST_F(AncestorsChargeTest, AncestorsScoreMayWrapToZero) {
  ItemOf(1)->Score = std::numeric_limits<std::int32_t>::min();
  OverwriteByTheYoungest(L"c:\\f.doc");
  EXPECT_EQ(ScoreOf(1), 0);
}

}  // namespace
}  // namespace zt::testing
