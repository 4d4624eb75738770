#include "trace/crash_filter.h"

#include <thread>

#include "tests/support/gate.h"
#include "tests/trace/library_test.h"
#include "trace/lock_user.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The details only pass through.
const CrashDetails& SomeDetails() {
  static const int kAnything = 0;
  return reinterpret_cast<const CrashDetails&>(kAnything);
}

using CrashFilterTest = LibraryTest;

TEST_F(CrashFilterTest, DumpLiesBesideTheProgramAndCarriesItsName) {
  Start(kBareToFile | 0x10000000, 0);
  TraceCrashFilter(SomeDetails());
  EXPECT_THAT(FakeLibrary().dumps, ElementsAre((folder_ / "host.exe [1234.5678] 2025-07-15 09.24.23.dmp").string()));
}

TEST_F(CrashFilterTest, LibraryIsStoppedFirstAndItsLinesAreWritten) {
  environment_.write_crash_dump = [](const char*, const CrashDetails&) {
    FakeLibrary().dumps.emplace_back(SharedTraceState().started ? "started" : "stopped");
  };
  Start(kBareToFile, 0);
  Print("last words");
  TraceCrashFilter(SomeDetails());
  EXPECT_THAT(FakeLibrary().dumps, ElementsAre("stopped"));
  EXPECT_EQ(Log("zteng.log"), std::string("last words\r\n") + kStopped);
}

TEST_F(CrashFilterTest, ProgramsPathIsPrintedWithTheInfoFlag) {
  Start(0x400 | 0x70001, 0);
  FakeSystemLog().events.clear();
  TraceCrashFilter(SomeDetails());
  EXPECT_THAT(FakeSystemLog().events, ElementsAre("debugger in crash:[zteng 380] " + FakeLibrary().executable + "\r\n",
                                                  "debugger in crash:[zteng 1277] trace stopped\r\n"));
}

TEST_F(CrashFilterTest, OutputsAreWrittenToAsInACrashUntilTheNextStart) {
  Start(0x800 | 0xFF0000, 0);
  TraceCrashFilter(SomeDetails());
  Start(0x800 | 0xFF0000, 0);
  TraceStop();
  EXPECT_THAT(FakeSystemLog().events, ElementsAre("console in crash:trace stopped\r\n", "console:trace stopped\r\n"));
}

// The thread may have crashed in the middle of the system's conversion.
TEST_F(CrashFilterTest, LocalTimeIsReckonedWithoutTheSystem) {
  // 5 hours and 45 minutes ahead.
  environment_.to_local_time = [](std::int64_t) { return LocalTime{2025, 7, 15, 15, 9, 23}; };
  Start(0x10000100 | 0xFE0000, 0);
  environment_.to_local_time = [](std::int64_t) {
    ADD_FAILURE();
    return LocalTime{};
  };
  TraceCrashFilter(SomeDetails());
  EXPECT_THAT(FakeLibrary().dumps, ElementsAre((folder_ / "host.exe [1234.5678] 2025-07-15 15.09.23.dmp").string()));
  EXPECT_EQ(Log("zteng.log"), "[2025-07-15 15:09:23.1234567] ] trace stopped\r\n");
}

TEST_F(CrashFilterTest, WorkerFollowsTheOffsetOfLocalTime) {
  Start(kBareToFile | 0x10000000, 0);
  // 3 hours behind, since a moment ago.
  environment_.to_local_time = [](std::int64_t) { return LocalTime{2025, 7, 15, 6, 24, 23}; };
  TickAfter(300);
  TraceCrashFilter(SomeDetails());
  EXPECT_THAT(FakeLibrary().dumps, ElementsAre((folder_ / "host.exe [1234.5678] 2025-07-15 06.24.23.dmp").string()));
}

TEST_F(CrashFilterTest, TimeThatTheSystemDoesNotKnowChangesNoOffset) {
  Start(kBareToFile | 0x10000000, 0);
  environment_.to_local_time = [](std::int64_t) { return LocalTime{}; };
  TickAfter(300);
  TraceCrashFilter(SomeDetails());
  EXPECT_THAT(FakeLibrary().dumps, ElementsAre((folder_ / "host.exe [1234.5678] 2025-07-15 09.24.23.dmp").string()));
}

// Lines that nobody can be sure of are given up, the dump is not.
TEST_F(CrashFilterTest, ThreadThatKeepsTheLockCostsTheLinesOnly) {
  Start(kBareToFile | 0x1, 0);
  Print("pending");
  Gate is_held;
  Gate may_go_on;
  std::thread holder([&] {
    const LockUser user(SharedTraceState());
    const CriticalSectionLock lock(SharedTraceState().lock);
    is_held.Open();
    may_go_on.Wait();
  });
  is_held.Wait();
  TraceCrashFilter(SomeDetails());
  EXPECT_EQ(FakeLibrary().dumps.size(), 1u);
  EXPECT_FALSE(SharedTraceState().started);
  EXPECT_THAT(LogNames(), IsEmpty());
  may_go_on.Open();
  holder.join();
}

TEST_F(CrashFilterTest, WorkerIsHaltedAndEndedByTheNextStop) {
  Start(kBareToFile, 0);
  TraceCrashFilter(SomeDetails());
  TraceStop();
  TraceStop();
  EXPECT_THAT(FakeLibrary().events, ElementsAre("start worker 300", "halt worker 2000", "stop worker"));
}

TEST_F(CrashFilterTest, WorkerIsHaltedAndEndedByTheNextStart) {
  Start(kBareToFile, 0);
  TraceCrashFilter(SomeDetails());
  Start(kBareToFile, 0);
  EXPECT_THAT(FakeLibrary().events, ElementsAre("start worker 300", "halt worker 2000", "stop worker", "start worker 300"));
}

TEST_F(CrashFilterTest, ProgramsPathIsNotPrintedWithoutIt) {
  Start(kBareToFile, 0);
  TraceCrashFilter(SomeDetails());
  EXPECT_EQ(Log("zteng.log"), kStopped);
}

TEST_F(CrashFilterTest, UnknownProgramPathLeavesTheLibraryRunning) {
  Start(kBareToFile, 0);
  FakeLibrary().executable = "";
  TraceCrashFilter(SomeDetails());
  EXPECT_TRUE(SharedTraceState().started);
  EXPECT_THAT(FakeLibrary().dumps, IsEmpty());
}

TEST_F(CrashFilterTest, PathWithoutFolderStopsTheLibraryAndLeavesNoDump) {
  Start(kBareToFile, 0);
  FakeLibrary().executable = "host.exe";
  TraceCrashFilter(SomeDetails());
  EXPECT_FALSE(SharedTraceState().started);
  EXPECT_THAT(FakeLibrary().dumps, IsEmpty());
}

TEST_F(CrashFilterTest, CrashInTheMiddleOfAPrintIsHandled) {
  Start(kBareToFile, 0);
  Print("before");
  {
    const LockUser user(SharedTraceState());
    const CriticalSectionLock lock(SharedTraceState().lock);
    TraceCrashFilter(SomeDetails());
  }
  EXPECT_EQ(FakeLibrary().dumps.size(), 1u);
  EXPECT_EQ(Log("zteng.log"), std::string("before\r\n") + kStopped);
}

TEST_F(CrashFilterTest, SecondCrashInTheSameSecondHasTheSameDump) {
  Start(kBareToFile, 0);
  TraceCrashFilter(SomeDetails());
  TraceCrashFilter(SomeDetails());
  ASSERT_EQ(FakeLibrary().dumps.size(), 2u);
  EXPECT_EQ(FakeLibrary().dumps[0], FakeLibrary().dumps[1]);
}

}  // namespace
}  // namespace zt::testing
