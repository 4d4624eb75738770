#include "trace/library.h"

#include <cstdio>
#include <regex>
#include <thread>

#include "platform/last_error.h"
#include "tests/support/gate.h"
#include "tests/trace/library_test.h"
#include "trace/build_stamp.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(LibraryTest, StartWithoutSettingsLeavesAllTracingOff) {
  TraceStart();
  EXPECT_TRUE(SharedTraceState().started);
  EXPECT_EQ(TraceFlags, 0u);
  EXPECT_EQ(SharedTraceState().size_limit, 512u);
  Print("unseen");
  TraceStop();
  EXPECT_THAT(LogNames(), IsEmpty());
}

TEST_F(LibraryTest, LinesGoToAFileInAFolderThatIsMade) {
  Start(kBareToFile, 0);
  Print("one");
  Print("two");
  EXPECT_THAT(LogNames(), IsEmpty());
  TraceStop();
  EXPECT_EQ(Log("zteng.log"), std::string("one\r\ntwo\r\n") + kStopped);
}

TEST_F(LibraryTest, LinesCarryTheLibrarysName) {
  Start(0x100 | 0x70000, 0);
  TracePrint(nullptr, 0, 649, "debug", "x=%d", 5);
  TraceStop();
  EXPECT_EQ(Log("zteng.log"), "[zteng 649 debug] x=5\r\n[zteng 1277] trace stopped\r\n");
}

TEST_F(LibraryTest, LogGrowsOverSeveralRuns) {
  for (const char* text : {"first run", "second run"}) {
    Start(kBareToFile, 0);
    Print(text);
    TraceStop();
  }
  EXPECT_EQ(Log("zteng.log"), "first run\r\ntrace stopped\r\nsecond run\r\ntrace stopped\r\n");
}

TEST_F(LibraryTest, SizeLimitWritesToARotationFile) {
  Start(kBareToFile, 1);
  TraceStop();
  EXPECT_THAT(LogNames(), ElementsAre("zteng_1.log"));
}

TEST_F(LibraryTest, SecondStartSetsTheLastErrorAndChangesNothing) {
  Start(kBareToFile, 0);
  SetLastErrorCode(ErrorCode::kNotReady);
  FakeLibrary().settings = {{"flag", 0x800}};
  TraceStart();
  EXPECT_EQ(LastErrorCode(), 183u);
  EXPECT_EQ(TraceFlags, kBareToFile);
}

TEST_F(LibraryTest, UnknownProgramPathLeavesTheLibraryUnstarted) {
  FakeLibrary().executable = "";
  TraceStart();
  EXPECT_FALSE(SharedTraceState().started);
}

TEST_F(LibraryTest, ProgramPathWithoutFolderLeavesTheLibraryUnstarted) {
  FakeLibrary().executable = "host.exe";
  TraceStart();
  EXPECT_FALSE(SharedTraceState().started);
  EXPECT_THAT(FakeLibrary().events, IsEmpty());
}

TEST_F(LibraryTest, PathThatIsTooLongLeavesTheLibraryUnstarted) {
  // With "logs/trace/" the folder just fits; the name of the log file no longer does.
  const std::string start = folder_.string();
  const std::size_t folder_length = kMaxPathSize - 1 - std::string_view("logs/trace/").size();
  FakeLibrary().executable = start + std::string(folder_length - start.size() - 1, kPathSeparator) + kPathSeparator + "h";
  TraceStart();
  EXPECT_FALSE(SharedTraceState().started);
  EXPECT_FALSE(SharedTraceState().lock.IsInitialised());
  EXPECT_EQ(TraceFlags, 0u);
  EXPECT_EQ(LastErrorCode(), 87u);
}

TEST_F(LibraryTest, StartStartsTheWorkerAndStopEndsIt) {
  Start(0x100, 0);
  TraceStop();
  EXPECT_THAT(FakeLibrary().events, ElementsAre("start worker 300", "stop worker"));
}

TEST_F(LibraryTest, CrashFilterIsInstalledWhereTheFlagsAskForIt) {
  Start(0x10000000, 0);
  EXPECT_THAT(FakeLibrary().events, ElementsAre("start worker 300", "install crash filter"));
}

TEST_F(LibraryTest, LoadingThreadIsPreparedForAFilterThatMayComeLater) {
  Start(0, 0);
  EXPECT_TRUE(FakeLibrary().is_thread_prepared);
}

TEST_F(LibraryTest, RingIsMadeWhereTheFlagsAskForIt) {
  Start(0x200 | 0xFF0000, 0);
  ASSERT_NE(SharedTraceState().ring, nullptr);
  Print("abc");
  EXPECT_STREQ(SharedTraceState().ring->slots[0], "ab");
  TraceStop();
  EXPECT_EQ(SharedTraceState().ring, nullptr);
}

TEST_F(LibraryTest, BannerTellsOfTheStart) {
  Start(0x101 | 0x70000, 7);
  TraceStop();
  EXPECT_EQ(Log("zteng_1.log"), "[zteng 1216] (" + std::string(kBuildStamp) +
                                    ", 86461s) 2025-07-15 09:24:23.123 type: 0x70101 size: 7 memory: 0x0000000000000000\r\n"
                                    "[zteng 1277] trace stopped\r\n");
}

TEST_F(LibraryTest, BannerTellsWhereTheRingLies) {
  Start(0x301 | 0xFF0000, 0);
  char address[20];
  std::snprintf(address, sizeof address, "0x%016llX",
                static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(SharedTraceState().ring)));
  TraceStop();
  EXPECT_THAT(Log("zteng.log"), ::testing::HasSubstr(" type: 0xff0301 size: 0 memory: " + std::string(address) + "\r\n"));
}

TEST_F(LibraryTest, BuildStampIsADate) {
  EXPECT_TRUE(std::regex_match(kBuildStamp, std::regex("[A-Z][a-z]{2} [A-Z][a-z]{2} [0-9]{2} "
                                                       "[0-9]{2}:[0-9]{2}:[0-9]{2} 20[0-9]{2}")))
      << kBuildStamp;
}

TEST_F(LibraryTest, FlagDeletesOldLogFilesAtStartAndTheLogGoesOnInARotationFile) {
  MakeLog("zteng.log", 10, 0);
  MakeLog("zteng_1.log", 10, 1);
  MakeLog("zteng_2.log", 10, 2);
  Start(kBareToFile | 0x8000, 0);
  EXPECT_THAT(LogNames(), IsEmpty());
  TraceStop();
  EXPECT_THAT(LogNames(), ElementsAre("zteng_2.log"));
}

TEST_F(LibraryTest, StopDeletesTheLogFilesWhenFileOutputIsNoLongerWanted) {
  Start(kBareToFile, 0);
  Print("gone");
  Flush();
  ASSERT_THAT(LogNames(), ElementsAre("zteng.log"));
  FakeLibrary().settings = {{"flag", 0x2}};
  TraceStop();
  EXPECT_THAT(LogNames(), IsEmpty());
}

TEST_F(LibraryTest, StopKeepsTheLogFilesWhenTheSettingsAreGone) {
  Start(kBareToFile, 0);
  FakeLibrary().settings.clear();
  TraceStop();
  EXPECT_THAT(LogNames(), ElementsAre("zteng.log"));
}

TEST_F(LibraryTest, StopWithoutFileOutputDeletesOldLogFiles) {
  MakeLog("zteng.log", 10, 0);
  Start(0x400, 0);
  TraceStop();
  EXPECT_THAT(LogNames(), IsEmpty());
}

TEST_F(LibraryTest, StopClearsTheState) {
  Start(0x10000F00, 3);
  TraceStop();
  const TraceState& state = SharedTraceState();
  EXPECT_FALSE(state.started);
  EXPECT_EQ(TraceFlags, 0u);
  EXPECT_EQ(state.settings_key, nullptr);
  EXPECT_STREQ(state.module_name, "");
  EXPECT_TRUE(SharedLogFiles().current().empty());
  EXPECT_FALSE(SharedLogFiles().IsOpen());
}

TEST_F(LibraryTest, SecondStopDoesNothing) {
  Start(kBareToFile, 0);
  TraceStop();
  TraceStop();
  EXPECT_THAT(FakeLibrary().events, ElementsAre("start worker 300", "stop worker"));
  EXPECT_EQ(Log("zteng.log"), kStopped);
}

TEST_F(LibraryTest, StopDuringAStopLeavesItToTheFirst) {
  environment_.stop_worker = [] {
    FakeLibrary().events.emplace_back("stop worker");
    TraceStop();
  };
  Start(kBareToFile, 0);
  TraceStop();
  EXPECT_THAT(FakeLibrary().events, ElementsAre("start worker 300", "stop worker"));
}

TEST_F(LibraryTest, LibraryWithoutAWorkerPrintsAllTheSame) {
  environment_.start_worker = [](std::uint32_t, void (*)()) { return false; };
  Start(kBareToFile, 0);
  Print("text");
  TraceStop();
  EXPECT_EQ(Log("zteng.log"), std::string("text\r\n") + kStopped);
}

TEST_F(LibraryTest, StopInACrashLeavesTheRingForTheDump) {
  Start(0x200 | 0xFF0000, 0);
  Print("kept");
  TraceMemLogHead* const ring = SharedTraceState().ring;
  TraceStopInCrash([] {});
  EXPECT_FALSE(SharedTraceState().started);
  EXPECT_EQ(SharedTraceState().ring, ring);
  EXPECT_STREQ(ring->slots[0], "kep");
  // The next life of the library goes on with it, or frees it.
  Start(0x200 | 0xFF0000, 0);
  EXPECT_EQ(SharedTraceState().ring, ring);
  TraceStop();
  EXPECT_EQ(SharedTraceState().ring, nullptr);
}

TEST_F(LibraryTest, StopLineIsWrittenWithTheInfoFlagSet) {
  environment_.write_debugger = [](std::string_view text) {
    FakeLibrary().events.push_back(std::string(text) + std::to_string(TraceFlags & 0x1));
  };
  Start(0x400 | 0xFF0000, 0);
  FakeLibrary().events.clear();
  TraceStop();
  EXPECT_THAT(FakeLibrary().events, ElementsAre("trace stopped\r\n1", "stop worker"));
}

TEST_F(LibraryTest, ProcessIdStandsInTheNames) {
  Start(kBareToFile | 0x1000000, 0);
  TraceStop();
  EXPECT_THAT(LogNames(), ElementsAre("zteng_pid_1234.log"));
}

TEST_F(LibraryTest, StopWithoutThreadsWritesWhatIsPending) {
  Start(kBareToFile, 0);
  Print("last");
  TraceStopWithoutThreads();
  EXPECT_EQ(Log("zteng.log"), std::string("last\r\n") + kStopped);
  EXPECT_FALSE(SharedTraceState().started);
}

// A thread that holds the lock and does not go on is, as far as the stop can tell, one that was ended there.
TEST_F(LibraryTest, StopWithoutThreadsGivesUpWhereAnotherThreadHasTheLock) {
  Start(kBareToFile, 0);
  Print("pending");
  Gate is_held;
  Gate may_go_on;
  std::thread holder([&] {
    const CriticalSectionLock lock(SharedTraceState().lock);
    is_held.Open();
    may_go_on.Wait();
  });
  is_held.Wait();
  TraceStopWithoutThreads();
  EXPECT_TRUE(SharedTraceState().started);
  EXPECT_THAT(LogNames(), IsEmpty());
  may_go_on.Open();
  holder.join();
}

}  // namespace
}  // namespace zt::testing
