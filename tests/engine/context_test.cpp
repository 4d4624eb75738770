// The life of an engine: what init builds, what clean-up leaves, and who keeps the context alive.

#include "engine/context.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/engine_test.h"
#include "tests/support/state_dump.h"

namespace zt::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;
using ::testing::StartsWith;

class ContextTest : public EngineTest {};

TEST_F(ContextTest, InitReturnsOneAndFillsTheHandle) {
  std::shared_ptr<void> engine;
  EXPECT_EQ(ZtInitEngineCore(engine, 0), 1);
  EXPECT_NE(engine, nullptr);
}

TEST_F(ContextTest, InitStoresTheIdentifier) {
  std::shared_ptr<void> engine;
  ZtInitEngineCore(engine, 0xFFFFFFFE);
  EXPECT_EQ(std::static_pointer_cast<_ZtEngineCore>(engine)->EngineId, 0xFFFFFFFE);
}

TEST_F(ContextTest, InitSetsTheFixedLimits) {
  EXPECT_EQ(core().Setting, 1);
  EXPECT_EQ(core().ScoreWalkLimit, 4U);
  EXPECT_EQ(core().fileKeepTime, 900000);
}

TEST_F(ContextTest, AnEngineBeginsWithoutProcesses) {
  EXPECT_THAT(core().StartTimes, IsEmpty());
  EXPECT_EQ(core().Tree.size(), 0U);
}

TEST_F(ContextTest, TheWatchTableHasOneRowOfFourNames) {
  EXPECT_THAT(
      core().CryptoModules,
      ElementsAre(Pair(0xC001U, ElementsAre(L"bcrypt.dll", L"cryptbase.dll", L"bcryptprimitives.dll", L"cryptsp.dll"))));
}

TEST_F(ContextTest, ASecondInitFreesTheContextThatNobodyElseHolds) {
  StartProcess(10);
  const std::weak_ptr<void> first = engine_;
  EXPECT_EQ(ZtInitEngineCore(engine_, 8), 1);
  EXPECT_TRUE(first.expired());
  EXPECT_EQ(core().EngineId, 8U);
  EXPECT_EQ(DumpState(core()), "");
  EXPECT_THAT(core().CryptoModules, SizeIs(1));
}

TEST_F(ContextTest, ASecondInitLeavesTheContextOfAnotherCopyAlone) {
  StartProcess(10);
  std::shared_ptr<void> copy = engine_;
  ZtInitEngineCore(engine_, 8);
  EXPECT_NE(copy, engine_);
  EXPECT_EQ(std::static_pointer_cast<_ZtEngineCore>(copy)->Tree.size(), 1U);
  LOG_ITEM child = ProcessCreate(10, 20, 200);
  ZtInsertLog(copy, &child);
  EXPECT_EQ(std::static_pointer_cast<_ZtEngineCore>(copy)->Tree.size(), 2U);
  EXPECT_EQ(core().Tree.size(), 0U);
}

TEST_F(ContextTest, InitTracesOneLineWithAnEmptyLevelAfterTheTransitions) {
  TraceCapture trace(0x1 | 0x2);
  trace.Take();
  std::shared_ptr<void> engine;
  ZtInitEngineCore(engine, 1);
  const std::vector<TraceLine> lines = trace.Take();
  ASSERT_THAT(lines, SizeIs(16));
  EXPECT_EQ(lines.back().message, "init\n");
  EXPECT_EQ(lines.back().level, "");
  EXPECT_THAT(lines.front().message, StartsWith("Adding Transition"));
}

TEST_F(ContextTest, WithoutTheInfoBitInitWritesNoLineOfItsOwn) {
  TraceCapture trace(0x2 | 0x4);
  trace.Take();
  std::shared_ptr<void> engine;
  ZtInitEngineCore(engine, 1);
  EXPECT_THAT(trace.TakeMessages(), Each(StartsWith("Adding Transition")));
}

TEST_F(ContextTest, WithTheWarningBitAloneInitWritesNothing) {
  TraceCapture trace(0x4);
  trace.Take();
  std::shared_ptr<void> engine;
  ZtInitEngineCore(engine, 1);
  EXPECT_THAT(trace.Take(), IsEmpty());
}

TEST_F(ContextTest, CleanupLeavesTheHandleNonEmptyAndItsTablesInPlace) {
  StartProcess(10);
  ZtCleanupEngineCore(engine_);
  EXPECT_NE(engine_, nullptr);
  EXPECT_EQ(core().Tree.size(), 1U);
}

TEST_F(ContextTest, CleanupDeletesTheLock) {
  EXPECT_TRUE(core().Lock.IsInitialised());
  ZtCleanupEngineCore(engine_);
  EXPECT_FALSE(core().Lock.IsInitialised());
}

TEST_F(ContextTest, CleanupWritesNothing) {
  TraceCapture trace(0x7);
  trace.Take();
  ZtCleanupEngineCore(engine_);
  EXPECT_THAT(trace.Take(), IsEmpty());
}

TEST_F(ContextTest, ASecondCleanupDoesNothing) {
  ZtCleanupEngineCore(engine_);
  ZtCleanupEngineCore(engine_);
  EXPECT_NE(engine_, nullptr);
}

TEST_F(ContextTest, AHandleMayBeInitialisedAnewAfterCleanup) {
  ZtCleanupEngineCore(engine_);
  EXPECT_EQ(ZtInitEngineCore(engine_, 8), 1);
  StartProcess(10);
  EXPECT_EQ(ScoreOf(10), 1);
}

TEST_F(ContextTest, TheContextIsFreedWithTheLastCopyOfTheHandle) {
  const std::weak_ptr<void> context = engine_;
  std::shared_ptr<void> copy = engine_;
  ZtCleanupEngineCore(engine_);
  engine_.reset();
  EXPECT_FALSE(context.expired());
  copy.reset();
  EXPECT_TRUE(context.expired());
}

TEST_F(ContextTest, AnEngineMayBeDroppedWithoutCleanup) {
  const std::weak_ptr<void> context = engine_;
  engine_.reset();
  EXPECT_TRUE(context.expired());
}

TEST_F(ContextTest, TwoEnginesShareNothing) {
  std::shared_ptr<void> other;
  ZtInitEngineCore(other, 8);
  _ZtEngineCore& other_core = *std::static_pointer_cast<_ZtEngineCore>(other);
  StartProcess(10);
  EXPECT_EQ(Overwrite(10, L"c:\\a.doc"), 2);
  EXPECT_EQ(DumpState(other_core), "");

  LOG_ITEM start = ProcessCreate(0, 10, 300);
  ZtInsertLog(other, &start);
  ZtUpdateScore(other, Handle(10), 50);
  EXPECT_EQ(ScoreOf(10), 2);
  EXPECT_EQ(core().StartTimes[10], 100);
  EXPECT_EQ(other_core.StartTimes[10], 300);

  ZtCleanupEngineCore(other);
  EXPECT_EQ(Overwrite(10, L"c:\\b.doc"), 4);
}

// An engine in which each export would have something to tell or to change.
class NeutralResultTest : public EngineTest {
 protected:
  NeutralResultTest() {
    StartProcess(10);
    ItemOf(10)->Score = 7;
    Track(10, L"c:\\d\\a.doc", ZT_OVERWRITE).Similar = true;
    AddPath(ItemOf(10)->QuarantineList, L"c:\\d\\q.doc");
  }

  static void ExpectNeutralResults(std::shared_ptr<void>& engine) {
    LOG_ITEM open = Open(10, L"C:\\d\\b.doc");
    EXPECT_EQ(ZtInsertLog(engine, &open), 0);
    LOG_ITEM load = ModuleLoad(10, L"C:\\bcrypt.dll");
    EXPECT_EQ(ZtCalculateSingleLineScore(engine, &load, 5), 0);
    ZtUpdateScore(engine, Handle(10), 9);
    ZtUpdateScore(engine, Handle(11), 9);
    ZtResetScore(engine, std::numeric_limits<std::int64_t>::max(), -1);
    EXPECT_THAT(ZtGetProcTree(engine, Handle(10)), IsEmpty());
    EXPECT_THAT(ZtGetProcTree(engine, Handle(12)), IsEmpty());
    ExpectUntouchedOutputs(engine);
    ExpectNoSimilarFile(engine);
    ZtCleanupEngineCore(engine);
  }

 private:
  static void ExpectUntouchedOutputs(std::shared_ptr<void>& engine) {
    std::map<void*, std::wstring> procs = {{Handle(1), L"kept"}};
    ZtGetProcTree(engine, Handle(10), procs);
    EXPECT_THAT(procs, ElementsAre(Pair(Handle(1), L"kept")));
    std::map<std::wstring, ZT_FILE_ITEM_PUBLIC> files;
    std::vector<std::wstring> paths = {L"kept"};
    EXPECT_EQ(ZtGetFinalStateFileByPid(engine, Handle(10), files, paths), 0);
    EXPECT_THAT(files, IsEmpty());
    EXPECT_THAT(paths, ElementsAre(L"kept"));
  }

  static void ExpectNoSimilarFile(const std::shared_ptr<void>& engine) {
    std::shared_ptr<_ZtEngineCore> typed = std::static_pointer_cast<_ZtEngineCore>(engine);
    ZT_PID_ITEM process;
    process.files[L"c:\\d\\a.doc"];
    EXPECT_EQ(ZtSearchSimilarFile(typed, process, process.files, L"c:\\d\\a.doc.enc"), process.files.end());
    EXPECT_EQ(ZtSearchSimilarFile(typed, process, process.files, L"c:\\d\\xa.doc"), process.files.end());
    EXPECT_EQ(process.NameDiff, L"");
  }
};

TEST_F(NeutralResultTest, AnEmptyHandleGivesNeutralResultsAndStaysEmpty) {
  TraceCapture trace(0x7);
  trace.Take();
  std::shared_ptr<void> empty;
  ExpectNeutralResults(empty);
  EXPECT_EQ(empty, nullptr);
  EXPECT_THAT(trace.Take(), IsEmpty());
}

TEST_F(NeutralResultTest, AfterCleanupEveryExportGivesItsNeutralResultAndChangesNothing) {
  ZtCleanupEngineCore(engine_);
  const std::string before = DumpState(core());
  ExpectNeutralResults(engine_);
  EXPECT_EQ(DumpState(core()), before);
}

TEST_F(NeutralResultTest, ANullRecordGivesZeroAndChangesNothing) {
  const std::string before = DumpState(core());
  EXPECT_EQ(ZtInsertLog(engine_, nullptr), 0);
  EXPECT_EQ(ZtCalculateSingleLineScore(engine_, nullptr, 5), 0);
  EXPECT_EQ(DumpState(core()), before);
}

TEST_F(NeutralResultTest, ANullRecordWithAnEmptyHandleGivesZero) {
  std::shared_ptr<void> empty;
  EXPECT_EQ(ZtInsertLog(empty, nullptr), 0);
  EXPECT_EQ(ZtCalculateSingleLineScore(empty, nullptr, 5), 0);
}

// Drops a handle from another thread while a call with that very handle runs.
class HandleDropper : public EngineObserver {
 public:
  explicit HandleDropper(std::shared_ptr<void>& handle) : handle_(handle), context_(handle) {}

  void OnStep(const StepReport& /*step*/) override { Drop(); }
  void OnScore(const ScoreReport& /*score*/) override { Drop(); }
  void OnSimilarFile(const ZtProcKey& /*process*/, std::wstring_view /*target*/, std::wstring_view /*key*/) override {}

  [[nodiscard]] bool LivedDuringTheCall() const { return lived_during_call_; }
  [[nodiscard]] bool IsFreed() const { return context_.expired(); }

 private:
  void Drop() {
    std::thread([this] { handle_.reset(); }).join();
    lived_during_call_ = !context_.expired();
  }

  std::shared_ptr<void>& handle_;
  std::weak_ptr<void> context_;
  bool lived_during_call_ = false;
};

TEST_F(ContextTest, AHandleDroppedDuringAnInsertionEndsTheContextAfterTheCall) {
  StartProcess(10);
  OpenAndRead(10, L"c:\\a.doc");
  HandleDropper dropper(engine_);
  SetEngineObserver(engine_, &dropper);
  EXPECT_EQ(Insert(Write(10, L"c:\\a.doc")), 2);
  EXPECT_TRUE(dropper.LivedDuringTheCall());
  EXPECT_TRUE(dropper.IsFreed());
}

TEST_F(ContextTest, AHandleDroppedDuringAScoreUpdateEndsTheContextAfterTheCall) {
  StartProcess(10);
  HandleDropper dropper(engine_);
  SetEngineObserver(engine_, &dropper);
  ZtUpdateScore(engine_, Handle(10), 5);
  EXPECT_TRUE(dropper.LivedDuringTheCall());
  EXPECT_TRUE(dropper.IsFreed());
}

TEST_F(ContextTest, AHandleDroppedDuringAResetEndsTheContextAfterTheCall) {
  StartProcess(10);
  ItemOf(10)->Score = 7;
  HandleDropper dropper(engine_);
  SetEngineObserver(engine_, &dropper);
  ZtResetScore(engine_, 1000000, 0);
  EXPECT_TRUE(dropper.LivedDuringTheCall());
  EXPECT_TRUE(dropper.IsFreed());
}

}  // namespace
}  // namespace zt::testing
