#include "trace/settings_worker.h"

#include <thread>

#include "tests/trace/library_test.h"
#include "trace/build_stamp.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class SettingsWorkerTest : public LibraryTest {
 protected:
  /// Changes the settings and lets the worker see them.
  static void ChangeTo(std::map<std::string, std::uint32_t> settings) {
    FakeLibrary().settings = std::move(settings);
    TickAfter(11000);
  }
  static std::string ChangeLine(const char* settings) {
    return "(" + std::string(kBuildStamp) + ", 86461s) setting changed at 2025-07-15 09:24:23.123 " + settings +
           " memory: 0x0000000000000000\r\n";
  }
};

TEST_F(SettingsWorkerTest, IdleFileIsWrittenAndClosed) {
  Start(kBareToFile, 0);
  Print("pending");
  TickAfter(101);
  EXPECT_EQ(Log("zteng.log"), "pending\r\n");
  EXPECT_FALSE(SharedLogFiles().IsOpen());
}

TEST_F(SettingsWorkerTest, FileStaysAsItIsWhilePrintsComeIn) {
  Start(kBareToFile, 0);
  Print("pending");
  TickAfter(100);
  EXPECT_THAT(LogNames(), IsEmpty());
  Flush();
  TickAfter(0);
  EXPECT_TRUE(SharedLogFiles().IsOpen());
}

TEST_F(SettingsWorkerTest, ClosedFileIsOpenedAgainByTheNextWrite) {
  Start(kBareToFile, 0);
  Print("one");
  TickAfter(300);
  Print("two");
  TickAfter(300);
  EXPECT_EQ(Log("zteng.log"), "one\r\ntwo\r\n");
}

TEST_F(SettingsWorkerTest, IdleTickWithoutTextMakesNoFile) {
  Start(kBareToFile, 0);
  TickAfter(300);
  EXPECT_THAT(LogNames(), IsEmpty());
}

TEST_F(SettingsWorkerTest, SettingsAreReadEveryElevenSeconds) {
  Start(kBareToFile, 0);
  const int at_start = FakeLibrary().settings_reads;
  TickAfter(10999);
  EXPECT_EQ(FakeLibrary().settings_reads, at_start);
  TickAfter(1);
  EXPECT_EQ(FakeLibrary().settings_reads, at_start + 1);
  TickAfter(10999);
  EXPECT_EQ(FakeLibrary().settings_reads, at_start + 1);
  TickAfter(1);
  EXPECT_EQ(FakeLibrary().settings_reads, at_start + 2);
}

TEST_F(SettingsWorkerTest, SettingsAreNotReadAfterAStop) {
  Start(kBareToFile, 0);
  TraceStop();
  const int at_stop = FakeLibrary().settings_reads;
  TickAfter(11000);
  EXPECT_EQ(FakeLibrary().settings_reads, at_stop);
}

TEST_F(SettingsWorkerTest, UnchangedSettingsPrintNothing) {
  Start(kBareToFile, 0);
  TickAfter(11000);
  TraceStop();
  EXPECT_EQ(Log("zteng.log"), kStopped);
}

TEST_F(SettingsWorkerTest, ChangedFlagIsTakenOverAndTold) {
  Start(kBareToFile, 0);
  ChangeTo({{"flag", kBareToFile | 0x2}, {"size", 0}});
  EXPECT_EQ(TraceFlags, kBareToFile | 0x2);
  TraceStop();
  EXPECT_EQ(Log("zteng.log"), ChangeLine("type: 0xff0103 size: 0") + kStopped);
}

TEST_F(SettingsWorkerTest, ChangeLineHasTheLibrarysTags) {
  Start(0x100 | 0x70000, 0);
  ChangeTo({{"flag", 0x102 | 0x70000}, {"size", 0}});
  TraceStop();
  EXPECT_THAT(Log("zteng.log"), ::testing::StartsWith("[zteng 649] ("));
}

TEST_F(SettingsWorkerTest, InfoFlagIsSetOnlyWhileTheChangeIsTold) {
  environment_.write_debugger = [](std::string_view text) {
    FakeLibrary().events.push_back(std::string(text.substr(text.find("type"))) + std::to_string(TraceFlags & 0x1));
  };
  Start(0x400 | 0xFF0000, 0);
  FakeLibrary().events.clear();
  ChangeTo({{"flag", 0x402 | 0xFF0000}, {"size", 0}});
  EXPECT_THAT(FakeLibrary().events,
              ElementsAre("remove crash filter", "type: 0xff0403 size: 0 memory: 0x0000000000000000\r\n1"));
  EXPECT_EQ(TraceFlags, 0x402u | 0xFF0000);
  environment_.write_debugger = [](std::string_view) {};
}

TEST_F(SettingsWorkerTest, InfoFlagOfTheSettingsStays) {
  Start(kBareToFile, 0);
  ChangeTo({{"flag", kBareToFile | 0x1}, {"size", 0}});
  EXPECT_EQ(TraceFlags, kBareToFile | 0x1);
}

TEST_F(SettingsWorkerTest, ChangeClosesTheFileFirst) {
  Start(kBareToFile, 0);
  Print("before");
  Flush();
  ASSERT_TRUE(SharedLogFiles().IsOpen());
  FakeLibrary().milliseconds += 10950;
  Print("pending");
  FakeLibrary().settings["flag"] = kBareToFile | 0x4;
  FakeLibrary().milliseconds += 50;
  TraceSettingsWorker();
  EXPECT_FALSE(SharedLogFiles().IsOpen());
  TraceStop();
  EXPECT_EQ(Log("zteng.log"), "before\r\npending\r\n" + ChangeLine("type: 0xff0105 size: 0") + kStopped);
}

TEST_F(SettingsWorkerTest, SwitchingFileOutputOffDeletesTheLogFiles) {
  Start(kBareToFile, 0);
  Print("gone");
  Flush();
  ASSERT_THAT(LogNames(), ElementsAre("zteng.log"));
  ChangeTo({{"flag", 0x200 | 0xFF0000}, {"size", 0}});
  EXPECT_THAT(LogNames(), IsEmpty());
}

TEST_F(SettingsWorkerTest, LogGoesOnInARotationFileAfterADeletion) {
  Start(kBareToFile, 0);
  ChangeTo({{"flag", 0x200}, {"size", 0}});
  ChangeTo({{"flag", kBareToFile}, {"size", 0}});
  Print("again");
  TraceStop();
  EXPECT_THAT(LogNames(), ElementsAre("zteng_1.log"));
  EXPECT_THAT(Log("zteng_1.log"), HasSubstr("again\r\n"));
}

TEST_F(SettingsWorkerTest, RingComesAndGoesWithItsFlag) {
  Start(kBareToFile, 0);
  ChangeTo({{"flag", kBareToFile | 0x200}, {"size", 0}});
  EXPECT_NE(SharedTraceState().ring, nullptr);
  ChangeTo({{"flag", kBareToFile}, {"size", 0}});
  EXPECT_EQ(SharedTraceState().ring, nullptr);
}

TEST_F(SettingsWorkerTest, CrashFilterComesAndGoesWithItsFlag) {
  Start(kBareToFile, 0);
  FakeLibrary().events.clear();
  ChangeTo({{"flag", kBareToFile | 0x10000000}, {"size", 0}});
  EXPECT_THAT(FakeLibrary().events, ElementsAre("install crash filter"));
  ChangeTo({{"flag", kBareToFile}, {"size", 0}});
  EXPECT_THAT(FakeLibrary().events, ElementsAre("install crash filter", "remove crash filter"));
}

TEST_F(SettingsWorkerTest, ChangedSizeChoosesTheFileAnew) {
  Start(kBareToFile, 0);
  ChangeTo({{"flag", kBareToFile}, {"size", 3}});
  EXPECT_EQ(SharedTraceState().size_limit, 3u);
  TraceStop();
  EXPECT_EQ(Log("zteng_1.log"), ChangeLine("type: 0xff0101 size: 3") + kStopped);
}

TEST_F(SettingsWorkerTest, ChangedSizeAloneLeavesTheFilterAlone) {
  Start(kBareToFile, 0);
  FakeLibrary().events.clear();
  ChangeTo({{"flag", kBareToFile}, {"size", 3}});
  EXPECT_THAT(FakeLibrary().events, IsEmpty());
}

TEST_F(SettingsWorkerTest, SizeOfZeroGoesBackToTheOneFile) {
  Start(kBareToFile, 3);
  ChangeTo({{"flag", kBareToFile}, {"size", 0}});
  TraceStop();
  EXPECT_EQ(Log("zteng.log"), ChangeLine("type: 0xff0101 size: 0") + kStopped);
}

TEST_F(SettingsWorkerTest, FlagAndSizeChangeTogether) {
  MakeLog("zteng.log", 5, 0);
  Start(kBareToFile, 3);
  ChangeTo({{"flag", 0x200 | 0xFF0000}, {"size", 0}});
  EXPECT_THAT(LogNames(), IsEmpty());
  // The deletion left a rotation file current, and then the size chose the plain one.
  EXPECT_EQ(SharedLogFiles().current().view(), LogPath("zteng.log").string());
}

TEST_F(SettingsWorkerTest, NamesStayWhenTheProcessIdIsAskedForLater) {
  Start(kBareToFile, 0);
  ChangeTo({{"flag", kBareToFile | 0x1000000}, {"size", 0}});
  TraceStop();
  EXPECT_THAT(LogNames(), ElementsAre("zteng.log"));
}

// A tick that waited for the lock would never end where a thread crashed while it held it.
TEST_F(SettingsWorkerTest, TickDoesNotWaitForTheLock) {
  Start(kBareToFile, 0);
  Print("pending");
  FakeLibrary().settings["flag"] = kBareToFile | 0x2;
  {
    const CriticalSectionLock lock(SharedTraceState().lock);
    std::thread([] { TickAfter(11000); }).join();
    EXPECT_THAT(LogNames(), IsEmpty());
    EXPECT_EQ(TraceFlags, kBareToFile);
  }
  // The turn was skipped, not lost.
  TickAfter(0);
  EXPECT_EQ(TraceFlags, kBareToFile | 0x2);
}

TEST_F(SettingsWorkerTest, TimesAreTakenByTheCountersFrequency) {
  environment_.performance_frequency = [] { return std::int64_t{10000}; };  // Ten ticks a millisecond.
  Start(kBareToFile, 0);
  Print("pending");
  TickAfter(1009);  // Ticks: 100.9 ms.
  EXPECT_THAT(LogNames(), IsEmpty());
  TickAfter(1);
  EXPECT_THAT(LogNames(), ElementsAre("zteng.log"));
}

TEST_F(SettingsWorkerTest, TimesOfMonthsDoNotOverflow) {
  environment_.performance_frequency = [] { return std::int64_t{1000000000}; };
  Start(kBareToFile, 0);
  Print("pending");
  TickAfter(std::int64_t{200} * 86400 * 1000000000);
  EXPECT_THAT(LogNames(), ElementsAre("zteng.log"));
}

TEST_F(SettingsWorkerTest, MissingKeySwitchesTracingOff) {
  Start(kBareToFile, 0);
  ChangeTo({});
  EXPECT_EQ(TraceFlags, 0u);
  EXPECT_EQ(SharedTraceState().size_limit, 512u);
}

TEST_F(SettingsWorkerTest, MissingValueGetsItsDefault) {
  Start(kBareToFile, 7);
  ChangeTo({{"flag", kBareToFile}});
  EXPECT_EQ(SharedTraceState().size_limit, 512u);
  ChangeTo({{"size", 9}});
  EXPECT_EQ(TraceFlags, 0u);
  EXPECT_EQ(SharedTraceState().size_limit, 9u);
}

// A stop that comes while the worker reads the settings: what it cleared stays clear.
TEST_F(SettingsWorkerTest, SettingsReadBeforeAStopAreNotFollowedAfterIt) {
  Start(kBareToFile, 0);
  FakeLibrary().settings["flag"] = kBareToFile | 0x10000200;
  environment_.read_settings = [](const char* key, std::span<NumberSetting> settings) {
    FakeReadSettings(key, settings);
    TraceStop();
  };
  FakeLibrary().events.clear();
  TickAfter(11000);
  EXPECT_EQ(TraceFlags, 0u);
  EXPECT_EQ(SharedTraceState().ring, nullptr);
  EXPECT_THAT(FakeLibrary().events, ElementsAre("stop worker"));
}

}  // namespace
}  // namespace zt::testing
