#include "trace/outputs.h"

#include "tests/trace/trace_test.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Colors as Windows consoles count them.
class OutputsTest : public TraceTest {
 protected:
  static void ConsoleOut(std::uint64_t flags, std::string_view level, bool continuation, std::string_view text) {
    TraceFlags = flags;
    FakeSystemLog().events.clear();
    TraceConsoleOut(level, continuation, text);
  }
};

TEST_F(OutputsTest, DebugLinesAreBrightGreen) {
  ConsoleOut(0x800, "debug", false, "text\r\n");
  EXPECT_THAT(Events(), ElementsAre("color:10", "console:text\r\n", "restore:7"));
}

TEST_F(OutputsTest, ErrorLinesAreBrightRed) {
  ConsoleOut(0x800, "error", false, "text\r\n");
  EXPECT_THAT(Events(), ElementsAre("color:12", "console:text\r\n", "restore:7"));
}

TEST_F(OutputsTest, WarningLinesAreYellow) {
  ConsoleOut(0x800, "warning", false, "text\r\n");
  EXPECT_THAT(Events(), ElementsAre("color:14", "console:text\r\n", "restore:7"));
}

TEST_F(OutputsTest, FirstLetterDecides) {
  ConsoleOut(0x800, "d", false, "text\r\n");
  EXPECT_EQ(Events().front(), "color:10");
  for (const char* level : {"", "info", "Debug", "Warning", "xd"}) {
    ConsoleOut(0x800, level, false, "text\r\n");
    EXPECT_THAT(Events(), ElementsAre("console:text\r\n")) << level;
  }
}

TEST_F(OutputsTest, OnlyTheFirstLineIsColored) {
  ConsoleOut(0x800, "debug", false, "one\r\ntwo\r\nthree\r\n");
  EXPECT_THAT(Events(), ElementsAre("color:10", "console:one\r\n", "restore:7", "console:two\r\nthree\r\n"));
}

TEST_F(OutputsTest, TextWithoutLineEndIsColoredAsAWhole) {
  ConsoleOut(0x800, "debug", false, "one\ntwo");
  EXPECT_THAT(Events(), ElementsAre("color:10", "console:one\ntwo", "restore:7"));
}

TEST_F(OutputsTest, ContinuationsAreNotColored) {
  ConsoleOut(0x800, "debug", true, "one\r\ntwo\r\n");
  EXPECT_THAT(Events(), ElementsAre("console:one\r\ntwo\r\n"));
}

TEST_F(OutputsTest, ColorsCanBeSwitchedOff) {
  ConsoleOut(0x800 | 0x400000, "debug", false, "one\r\ntwo\r\n");
  EXPECT_THAT(Events(), ElementsAre("console:one\r\ntwo\r\n"));
}

TEST_F(OutputsTest, ConsoleComesBeforeDebugger) {
  ConsoleOut(0xC00, "", false, "one\r\ntwo\r\n");
  EXPECT_THAT(Events(), ElementsAre("console:one\r\ntwo\r\n", "debugger:one\r\ntwo\r\n"));
  ConsoleOut(0xC00, "debug", false, "one\r\ntwo\r\n");
  EXPECT_THAT(Events(), ElementsAre("color:10", "console:one\r\n", "debugger:one\r\n", "restore:7", "console:two\r\n",
                                    "debugger:two\r\n"));
}

TEST_F(OutputsTest, DebuggerAloneLeavesTheConsoleAlone) {
  ConsoleOut(0x400, "debug", false, "one\r\n");
  EXPECT_THAT(Events(), ElementsAre("debugger:one\r\n"));
}

TEST_F(OutputsTest, WithoutConsoleAndDebuggerNothingIsShown) {
  ConsoleOut(0x300, "debug", false, "one\r\n");
  EXPECT_THAT(Events(), IsEmpty());
}

}  // namespace
}  // namespace zt::testing
