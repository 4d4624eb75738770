#include "tests/trace/trace_test.h"

#include <cstdint>
#include <limits>
#include <string>

namespace zt::testing {
namespace {

// Leaves out everything but the tag block.
constexpr std::uint64_t kTagsOnly = kTraceNoTime | kTraceNoPid | kTraceNoTid;

TEST_F(TraceTest, LineCarriesTimeIdsModuleAndSourceLine) {
  Start(0x100);
  TracePrint(nullptr, 0, 649, "", "x=%d", 5);
  EXPECT_EQ(Written(), "[2025-07-15 09:24:23.1234567] [1234:5678] [zteng 649] x=5\r\n");
}

TEST_F(TraceTest, BareLineIsTheMessageAlone) {
  Start(0x100 | 0xFF0000);
  TracePrint(nullptr, 0, 649, "", "x=%d", 5);
  EXPECT_EQ(Written(), "x=5\r\n");
}

TEST_F(TraceTest, TagBlockWithoutAnyWordIsItsClosingBracket) {
  Start(0x100 | 0x80000 | 0x100000 | 0x200000);
  TracePrint(nullptr, 0, 649, "debug", "x=%d", 5);
  EXPECT_EQ(Written(), "[2025-07-15 09:24:23.1234567] [1234:5678] ] x=5\r\n");
}

TEST_F(TraceTest, LevelWordFollowsTheSourceLine) {
  Start(0x100 | kTagsOnly);
  TracePrint(nullptr, 0, 649, "debug", "x");
  EXPECT_EQ(Written(), "[zteng 649 debug] x\r\n");
}

TEST_F(TraceTest, SourceLineZeroLeavesTheLocationEmpty) {
  Start(0x100 | kTagsOnly);
  TracePrint(nullptr, 0, 0, "debug", "x");
  TracePrint(nullptr, 0, 0, "", "y");
  EXPECT_EQ(Written(), "[zteng debug] x\r\n[zteng] y\r\n");
}

TEST_F(TraceTest, SourceLinesAreSignedDecimals) {
  Start(0x100 | kTagsOnly);
  TracePrint(nullptr, 0, 1, "", "a");
  TracePrint(nullptr, 0, -7, "", "b");
  TracePrint(nullptr, 0, std::numeric_limits<std::int32_t>::max(), "", "c");
  TracePrint(nullptr, 0, std::numeric_limits<std::int32_t>::min(), "", "d");
  EXPECT_EQ(Written(), "[zteng 1] a\r\n[zteng -7] b\r\n[zteng 2147483647] c\r\n[zteng -2147483648] d\r\n");
}

TEST_F(TraceTest, PercentSignsOfTheFormattedMessageAreNotFormattedAgain) {
  Start(0x100 | 0xFF0000);
  TracePrint(nullptr, 0, 1, "", "%s is 100%%%%", "%d%ws");
  EXPECT_EQ(Written(), "%d%ws is 100%%\r\n");
}

TEST_F(TraceTest, MessageIsCutToItsCapacity) {
  Start(0x100 | 0xFF0000);
  const std::string long_text(20000, 'a');
  TracePrint(nullptr, 0, 1, "", "%s", long_text.c_str());
  EXPECT_EQ(Written(), std::string(16383, 'a') + "\r\n");
}

TEST_F(TraceTest, LongestPrefixLeavesRoomForTheLongestMessage) {
  Start(0x100);
  const std::string long_text(20000, 'a');
  TracePrint(nullptr, 0, std::numeric_limits<std::int32_t>::min(), "12345678901234567", "%s", long_text.c_str());
  EXPECT_EQ(Written(), "[2025-07-15 09:24:23.1234567] [1234:5678] [zteng -2147483648 1234567890123456] " +
                           std::string(16383, 'a') + "\r\n");
}

TEST_F(TraceTest, NullLevelAndFormatAreEmpty) {
  Start(0x100 | kTagsOnly);
  TracePrint(nullptr, 0, 3, nullptr, nullptr);
  EXPECT_EQ(Written(), "[zteng 3] \r\n");
}

TEST_F(TraceTest, WithoutAnOutputNothingIsFormatted) {
  Start(0x2);
  TracePrint(nullptr, 0, 649, "debug", "x=%d", 5);
  EXPECT_EQ(FakeSystemLog().time_reads, 0);
  EXPECT_EQ(FakeSystemLog().counter_reads, 0);
  EXPECT_EQ(SharedTraceState().fill, 0u);
  EXPECT_EQ(Written(), "");
  EXPECT_THAT(Events(), ::testing::IsEmpty());
}

TEST_F(TraceTest, EachOutputAloneGetsTheLine) {
  for (const std::uint64_t output : {0x100u, 0x200u, 0x400u, 0x800u}) {
    SCOPED_TRACE(output);
    Start(output | 0xFF0000);
    TracePrint(nullptr, 0, 1, "", "one");
    EXPECT_EQ(FakeSystemLog().counter_reads, 1);
    EXPECT_EQ(Written(), output == 0x100 ? "one\r\n" : "");
    EXPECT_EQ(SharedTraceState().ring != nullptr, output == 0x200);
    EXPECT_EQ(Events().size(), output >= 0x400 ? 1u : 0u);
    TraceTakeDown();
    stream_.text.clear();
    FakeSystemLog() = {};
  }
}

TEST_F(TraceTest, PrintBeforeStartDoesNothing) {
  TraceFlags = 0xF00;
  TracePrint(nullptr, 0, 1, "debug", "%s", "early");
  EXPECT_EQ(FakeSystemLog().time_reads, 0);
  EXPECT_THAT(Events(), ::testing::IsEmpty());
  Start(0x100);
  EXPECT_EQ(Written(), "");
}

TEST_F(TraceTest, PrintAfterStopDoesNothing) {
  Start(0xF00);
  TraceTakeDown();
  TraceFlags = 0xF00;
  TracePrint(nullptr, 0, 1, "debug", "%s", "late");
  EXPECT_EQ(FakeSystemLog().time_reads, 0);
  EXPECT_THAT(Events(), ::testing::IsEmpty());
  EXPECT_EQ(stream_.text, "");
}

TEST_F(TraceTest, EveryPrintNotesThePerformanceCounter) {
  Start(0x100);
  TracePrint(nullptr, 0, 1, "", "a");
  EXPECT_EQ(SharedTraceState().last_print, 1);
  TracePrint(nullptr, 0, 1, "", "b");
  EXPECT_EQ(SharedTraceState().last_print, 2);
}

TEST_F(TraceTest, RingKeepsTheLineWithoutItsLastCharacter) {
  Start(0x200 | 0xFF0000);
  TracePrint(nullptr, 0, 1, "", "abc");
  ASSERT_NE(SharedTraceState().ring, nullptr);
  EXPECT_STREQ(SharedTraceState().ring->slots[0], "ab");
  EXPECT_EQ(SharedTraceState().ring->count, 1u);
}

TEST_F(TraceTest, RingKeepsThePrefixButNeitherLineEndNorDump) {
  Start(0x200 | kTagsOnly);
  TracePrint("data", 4, 12, "debug", "abc");
  EXPECT_STREQ(SharedTraceState().ring->slots[0], "[zteng 12 debug] ab");
}

}  // namespace
}  // namespace zt::testing
