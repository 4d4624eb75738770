// Processes in captures of Process Monitor.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/input/procmon_capture.h"

namespace replay::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

constexpr std::string_view kStart =
    "Parent PID: 860, Command line: gcc  @includes.txt main.c, Current directory: D:\\CreateProcess-gcc-issue\\, Environment: "
    "\r;\t=::=::\\\r;\tPATH=C:\\";

TEST(ProcmonProcessesTest, ACreationIsItsCreatorsAndTheStartBelongsToIt) {
  const Reading reading = ReadRows({
      {"Process Create", R"(D:\Tools\bin\gcc.exe)", "SUCCESS", "PID: 11464, Command line: gcc  @includes.txt main.c", "860",
       "cmd.exe", "16:53:03,9596452"},
      {"Process Start", "", "SUCCESS", kStart, "11464", "gcc.exe", "16:53:03,9596507"},
      {"CreateFile", "C:\\a", "SUCCESS", "OpenResult: Opened", "11464", "gcc.exe", "16:53:03,9600000"},
      {"Process Exit", "", "SUCCESS",
       "Exit Status: 1, User Time: 0.0156250 seconds, Kernel Time: 0.0937500 seconds, Private Bytes: 2\u00A0420\u00A0736",
       "11464", "gcc.exe", "16:53:04,9391228"},
  });
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(reading.Events(), ElementsAre("c003 0 860 cmd.exe", "c003 860 11464 D:\\Tools\\bin\\gcc.exe",
                                            "4001 11464 1 C:\\a", "c002 11464 0 "));
  EXPECT_EQ(reading.calls[1].record.Time, 607839596452);  // 16:53:03.9596452 in units of 100 ns.
  EXPECT_EQ(PathText(reading.calls[2].record), "D:\\Tools\\bin\\gcc.exe");
  EXPECT_THAT(reading.counts.skipped, ElementsAre(Pair("start of a process whose creation was fed", 1)));
}

TEST(ProcmonProcessesTest, AStartWithoutACreationIsOne) {
  const Reading reading = ReadRows({{"Process Start", "", "SUCCESS", kStart, "11464", "gcc.exe"}});
  EXPECT_THAT(reading.Events(), ElementsAre("c003 0 860 pid 860", "c003 860 11464 gcc.exe"));
}

TEST(ProcmonProcessesTest, AProcessIsEnteredAtItsFirstRowWhateverThatIs) {
  const Reading reading = ReadRows({
      {"RegOpenKey", "HKLM\\Software", "SUCCESS", "", "100", "a.exe", "1:00:00.0000000 AM"},
      {"CreateFile", "C:\\a", "SUCCESS", "OpenResult: Opened", "100", "a.exe", "1:00:01.0000000 AM"},
  });
  EXPECT_THAT(reading.Events(), ElementsAre("c003 0 100 a.exe", "4001 100 1 C:\\a"));
  EXPECT_EQ(reading.calls[0].record.Time, 36000000000);
  EXPECT_EQ(reading.calls[1].record.Time, 36010000000);
}

TEST(ProcmonProcessesTest, AnIdCanBeUsedAgain) {
  const Reading reading = ReadRows({
      {"Process Create", "C:\\one.exe", "SUCCESS", "PID: 200, Command line: one"},
      {"Process Exit", "", "SUCCESS", "Exit Status: 0", "200", "one.exe"},
      {"Process Create", "C:\\two.exe", "SUCCESS", "PID: 200, Command line: two"},
      {"CreateFile", "C:\\a", "SUCCESS", "OpenResult: Opened", "200", "two.exe"},
  });
  EXPECT_THAT(reading.Events(), ElementsAre("c003 0 100 a.exe", "c003 100 200 C:\\one.exe", "c002 200 0 ",
                                            "c003 100 200 C:\\two.exe", "4001 200 1 C:\\a"));
}

TEST(ProcmonProcessesTest, LastRowsAfterAnExitAreStillTheProcesss) {
  const Reading reading = ReadRows({
      {"Process Exit", "", "SUCCESS", "Exit Status: 0"},
      {"WriteFile", "C:\\a", "SUCCESS", "Offset: 0, Length: 5"},
  });
  EXPECT_THAT(reading.Events(), ElementsAre("c003 0 100 a.exe", "c002 100 0 ", "4004 100 0 C:\\a|5"));
}

TEST(ProcmonProcessesTest, AnotherProgramUnderAnIdIsEntered) {
  const Reading reading = ReadRows({
      {"Process Exit", "", "SUCCESS", "Exit Status: 0", "100", "one.exe"},
      {"CloseFile", "C:\\a", "SUCCESS", "", "100", "two.exe"},
  });
  EXPECT_THAT(reading.Events(), ElementsAre("c003 0 100 one.exe", "c002 100 0 ", "c003 0 100 two.exe"));
}

TEST(ProcmonProcessesTest, AProcessOfTheSameIdDeletesNothingThatTheOneBeforeMarked) {
  const Reading reading = ReadRows({
      {"Process Create", "C:\\one.exe", "SUCCESS", "PID: 200, Command line: one"},
      {"CreateFile", "C:\\a", "SUCCESS", "Disposition: Open, Options: Delete On Close, Attributes: n/a, OpenResult: Opened",
       "200", "one.exe"},
      {"Process Create", "C:\\two.exe", "SUCCESS", "PID: 200, Command line: two"},
      {"CloseFile", "C:\\a", "SUCCESS", "", "200", "two.exe"},
  });
  EXPECT_THAT(reading.EventsButCreations(), ElementsAre("4001 200 1 C:\\a"));
}

TEST(ProcmonProcessesTest, ParentsAreTakenFromTheirColumn) {
  const Reading reading = ReadCapture(CaptureFormat::kProcmon,
                                      "PID,Operation,Path,Result,Detail,Parent PID,Image Path\n"
                                      "932,CloseFile,C:\\a,SUCCESS,,572,C:\\Windows\\system32\\dwm.exe\n"
                                      "3596,CloseFile,C:\\a,SUCCESS,,932,C:\\Windows\\Explorer.EXE\n"
                                      "4,CloseFile,C:\\a,SUCCESS,,0,System\n"
                                      "572,CloseFile,C:\\a,SUCCESS,,500,C:\\Windows\\system32\\winlogon.exe\n");
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(reading.Events(), ElementsAre("c003 0 572 pid 572", "c003 572 932 C:\\Windows\\system32\\dwm.exe",
                                            "c003 932 3596 C:\\Windows\\Explorer.EXE", "c003 0 4 System"));
}

}  // namespace
}  // namespace replay::testing
