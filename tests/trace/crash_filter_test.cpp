#include "trace/crash_filter.h"

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
  EXPECT_THAT(FakeSystemLog().events, ElementsAre("debugger:[zteng 380] " + FakeLibrary().executable + "\r\n",
                                                  "debugger:[zteng 1277] trace stopped\r\n"));
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
