#include "trace/line_builder.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "tests/trace/trace_test.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;

constexpr std::uint64_t kTagsOnly = kTraceNoTime | kTraceNoPid | kTraceNoTid;

std::vector<unsigned char> MakeData(std::size_t size) {
  std::vector<unsigned char> data(size);
  for (std::size_t i = 0; i < size; ++i) {
    data[i] = static_cast<unsigned char>(i * 7);
  }
  return data;
}

// A dump written the simple way.
std::string ExpectedDump(const std::vector<unsigned char>& data) {
  std::string dump;
  for (std::size_t row = 0; row < data.size(); row += 16) {
    std::array<char, 16> text = {};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%08X  ", static_cast<unsigned>(row)));
    dump += text.data();
    std::string characters;
    for (std::size_t i = row; i < row + 16; ++i) {
      if (i < data.size()) {
        static_cast<void>(std::snprintf(text.data(), text.size(), "%02X ", data[i]));
        dump += text.data();
        characters += data[i] >= 32 && data[i] < 127 ? static_cast<char>(data[i]) : '.';
      } else {
        dump += "   ";
      }
    }
    dump += "  " + characters + "\r\n";
  }
  return dump;
}

class LineBuilderTest : public TraceTest {
 protected:
  // The texts that one output was given, one a call.
  static std::vector<std::string> Shown(const std::string& output) {
    std::vector<std::string> texts;
    for (const std::string& event : Events()) {
      if (event.starts_with(output + ":")) {
        texts.push_back(event.substr(output.size() + 1));
      }
    }
    return texts;
  }
  static std::string Join(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) {
      all += text;
    }
    return all;
  }
};

TEST_F(LineBuilderTest, LocationIsAnyText) {
  Start(0x100 | kTagsOnly);
  TraceWrite(nullptr, 0, "engine.cpp:12", "warning", "%d of %s", 1, "two");
  EXPECT_EQ(Written(), "[zteng engine.cpp:12 warning] 1 of two\r\n");
}

TEST_F(LineBuilderTest, SeventyCharactersOfLocationAreCutTo64) {
  Start(0x100 | kTagsOnly);
  const std::string location = std::string(61, 'x') + "123456789";
  TraceWrite(nullptr, 0, location.c_str(), "", "m");
  EXPECT_EQ(Written(), "[zteng " + std::string(61, 'x') + "...] m\r\n");
}

TEST_F(LineBuilderTest, NullTextsAreEmpty) {
  Start(0x100 | kTagsOnly);
  TraceWrite(nullptr, 0, nullptr, nullptr, nullptr);
  EXPECT_EQ(Written(), "[zteng] \r\n");
}

TEST_F(LineBuilderTest, NothingIsWrittenWhileNotStarted) {
  TraceFlags = 0xF00;
  TraceWrite(nullptr, 0, "1", "debug", "m");
  EXPECT_EQ(FakeSystemLog().counter_reads, 0);
}

// ---- dumps

TEST_F(LineBuilderTest, DataAreDumpedAfterTheMessage) {
  Start(0x100 | 0xFF0000);
  TraceWrite("0123456789ABCDEFxyz", 19, "1", "", "m=%d", 5);
  EXPECT_EQ(Written(),
            "m=5 length=19\r\n"
            "00000000  30 31 32 33 34 35 36 37 38 39 41 42 43 44 45 46   0123456789ABCDEF\r\n"
            "00000010  78 79 7A                                          xyz\r\n");
}

TEST_F(LineBuilderTest, DumpTakesBothDataAndLength) {
  Start(0x100 | 0xFF0000);
  TraceWrite(nullptr, 5, "1", "", "a");
  TraceWrite("x", 0, "1", "", "b");
  EXPECT_EQ(Written(), "a\r\nb\r\n");
}

TEST_F(LineBuilderTest, DumpMayBeLargerThanTheLineBuffer) {
  const std::vector<unsigned char> data = MakeData(0x10000);  // 4096 rows of 78 bytes: more than twice the line buffer.
  const std::string expected = "m length=65536\r\n" + ExpectedDump(data);
  Start(0x100 | 0x800 | 0xFF0000);
  TraceWrite(data.data(), data.size(), "1", "", "m");
  EXPECT_EQ(Join(Shown("console")), expected);
  EXPECT_GT(stream_.append_count, 2);
  EXPECT_EQ(Written(), expected);
}

TEST_F(LineBuilderTest, DumpAfterPendingLinesIsShownWithoutThem) {
  Start(0x100 | 0x800 | 0xFF0000);
  TraceWrite(nullptr, 0, "1", "", "before");
  TraceWrite("A", 1, "1", "", "m");
  const std::string dump = "m length=1\r\n" + ExpectedDump({'A'});
  EXPECT_THAT(Shown("console"), ElementsAre("before\r\n", dump));
  EXPECT_EQ(Written(), "before\r\n" + dump);
}

// ---- console and debugger

TEST_F(LineBuilderTest, LineIsShownOnceOnEachOutput) {
  Start(0xC00 | 0xBF0000);  // All bits of bare lines but the one against colors, so the tag block is its closing bracket.
  TraceWrite(nullptr, 0, "1", "debug", "one");
  TraceWrite(nullptr, 0, "1", "", "two");
  EXPECT_THAT(Events(), ElementsAre("color:10", "console:] one\r\n", "debugger:] one\r\n", "restore:7", "console:] two\r\n",
                                    "debugger:] two\r\n"));
}

TEST_F(LineBuilderTest, LevelColorsEvenWhenItIsNotWritten) {
  Start(0x800 | kTagsOnly | kTraceNoLevel);
  TraceWrite(nullptr, 0, "1", "warning", "one");
  EXPECT_THAT(Events(), ElementsAre("color:14", "console:[zteng 1] one\r\n", "restore:7"));
}

TEST_F(LineBuilderTest, LineThatEmptiesTheBufferIsShownAsWell) {
  Start(0x900 | 0xFF0000);
  SharedTraceState().fill = kFlushThreshold;
  TraceWrite(nullptr, 0, "1", "", "one");
  EXPECT_EQ(SharedTraceState().fill, 0u);
  EXPECT_THAT(Events(), ElementsAre("console:one\r\n"));
}

TEST_F(LineBuilderTest, DumpIsShownInPiecesOfAtMost2048Bytes) {
  const std::vector<unsigned char> data = MakeData(2000);  // 125 rows of 78 bytes.
  Start(0xC00 | 0xFF0000);
  TraceWrite(data.data(), data.size(), "1", "", "abcdef");
  const std::vector<std::string> pieces = Shown("console");
  ASSERT_EQ(pieces.size(), 5u);  // 20 + 26 * 78 = 2048 bytes in the first, 26 rows in the next three, 21 in the last.
  EXPECT_EQ(pieces[0].size(), 2048u);
  EXPECT_EQ(pieces[1].size(), 26u * 78u);
  EXPECT_EQ(pieces[4].size(), 21u * 78u);
  EXPECT_EQ(Join(pieces), "abcdef length=2000\r\n" + ExpectedDump(data));
  EXPECT_EQ(Shown("debugger"), pieces);
}

TEST_F(LineBuilderTest, OnlyTheFirstLineOfTheFirstPieceIsColored) {
  const std::vector<unsigned char> data = MakeData(2000);
  Start(0x800 | kTagsOnly);
  TraceWrite(data.data(), data.size(), "1", "debug", "m");
  ASSERT_GE(Events().size(), 5u);
  EXPECT_EQ(Events()[0], "color:10");
  EXPECT_EQ(Events()[1], "console:[zteng 1 debug] m length=2000\r\n");
  EXPECT_EQ(Events()[2], "restore:7");
  for (std::size_t i = 3; i < Events().size(); ++i) {
    EXPECT_TRUE(Events()[i].starts_with("console:")) << Events()[i];
  }
  EXPECT_EQ(Join(Shown("console")), "[zteng 1 debug] m length=2000\r\n" + ExpectedDump(data));
}

TEST_F(LineBuilderTest, LineLongerThanAPieceIsShownInOneBeforeItsDump) {
  const std::string message(5000, 'a');
  Start(0x800 | 0xFF0000);
  TraceWrite("A", 1, "1", "", "%s", message.c_str());
  EXPECT_THAT(Shown("console"), ElementsAre(message + " length=1\r\n", ExpectedDump({'A'})));
}

TEST_F(LineBuilderTest, DumpIsShownAlsoAcrossFlushes) {
  const std::vector<unsigned char> data = MakeData(100);
  Start(0x900 | 0xFF0000);
  SharedTraceState().fill = kFlushThreshold - 100;  // The buffer is written after the first row.
  TraceWrite(data.data(), data.size(), "1", "", "m");
  EXPECT_EQ(Join(Shown("console")), "m length=100\r\n" + ExpectedDump(data));
  EXPECT_EQ(stream_.append_count, 1);
  EXPECT_TRUE(Written().ends_with("m length=100\r\n" + ExpectedDump(data)));
}

}  // namespace
}  // namespace zt::testing
