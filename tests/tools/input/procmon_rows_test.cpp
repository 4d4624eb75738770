#include "tools/replay/input/procmon_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/input/reading.h"

namespace replay::testing {
namespace {

using ::testing::ElementsAre;

constexpr std::string_view kHeader = R"("Time of Day","Process Name","PID","Operation","Path","Result","Detail")";

// Each row as "LINE|PID|PATH|DETAIL".
std::vector<std::string> Rows(const std::string& text, std::size_t step = 4096) {
  ProcmonRows rows(SourceOf(text, step));
  std::vector<std::string> all;
  ProcmonRow row;
  while (rows.Next(row)) {
    all.push_back(std::to_string(row.line) + '|' + row[Column::kPid] + '|' + row[Column::kPath] + '|' + row[Column::kDetail]);
  }
  return all;
}

std::string ErrorOfRows(const std::string& text) {
  return ErrorOf([&] { Rows(text); });
}

std::string WithHeader(std::string_view rows) { return std::string(kHeader) + "\r\n" + std::string(rows); }

TEST(ProcmonRowsTest, ReadsQuotedFields) {
  const std::string row =
      "\"7:21:49.0 AM\",\"a.exe\",\"976\",\"ReadFile\",\"C:\\a\",\"SUCCESS\",\"Offset: 4,352, Length: 32\"\r\n";
  EXPECT_THAT(Rows(WithHeader(row + row)),
              ElementsAre("2|976|C:\\a|Offset: 4,352, Length: 32", "3|976|C:\\a|Offset: 4,352, Length: 32"));
}

TEST(ProcmonRowsTest, ADoubledQuoteIsOne) {
  EXPECT_THAT(Rows(WithHeader(R"("t","a","1","o","p","r","say ""x"", y")")), ElementsAre("2|1|p|say \"x\", y"));
}

TEST(ProcmonRowsTest, LineEndsInsideQuotesBelongToTheValue) {
  EXPECT_THAT(Rows(WithHeader("\"t\",\"a\",\"1\",\"o\",\"p\",\"r\",\"Environment: \r;\t=::=::\\\r;\tX=1\"\r\n"
                              "\"t\",\"a\",\"2\",\"o\",\"p\",\"r\",\"one\r\ntwo\nthree\"\r\n"
                              "\"t\",\"a\",\"3\",\"o\",\"p\",\"r\",\"d\"\r\n")),
              ElementsAre("2|1|p|Environment: \r;\t=::=::\\\r;\tX=1", "3|2|p|one\r\ntwo\nthree", "6|3|p|d"));
}

TEST(ProcmonRowsTest, ASpreadsheetsFormIsRead) {
  EXPECT_THAT(Rows("Time of Day,Process Name,PID,Operation,Path,Result,Detail\n"
                   "44:57.9,a b.exe,976,WriteFile,C:\\a b,SUCCESS,\"Offset: 0, Length: 5\"\n"),
              ElementsAre("2|976|C:\\a b|Offset: 0, Length: 5"));
  EXPECT_THAT(Rows("Time of Day;Process Name;PID;Operation;Path;Result;Detail\n"
                   "44:57,9;a.exe;976;CloseFile;C:\\a;SUCCESS;\n"),
              ElementsAre("2|976|C:\\a|"));
}

TEST(ProcmonRowsTest, ColumnsAreFoundByNameInAnyOrder) {
  EXPECT_THAT(Rows("\"Detail\",\"User\",\"Path\",\"PID\",\"Result\",\"Operation\"\r\n\"d\",\"u\",\"p\",\"5\",\"r\",\"o\"\r\n"),
              ElementsAre("2|5|p|d"));
}

TEST(ProcmonRowsTest, EveryUnicodeFormIsRead) {
  const std::u16string text = u"PID,Operation,Path,Result,Detail\r\n7,o,C:\\\u05D9,r,\"d\"\r\n";
  std::string little;
  std::string big;
  for (const char16_t unit : text) {
    little += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    big += {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
  }
  const auto expected = ElementsAre("2|7|C:\\\xD7\x99|d");
  EXPECT_THAT(Rows("PID,Operation,Path,Result,Detail\r\n7,o,C:\\\xD7\x99,r,\"d\"\r\n"), expected);
  EXPECT_THAT(Rows("\xEF\xBB\xBFPID,Operation,Path,Result,Detail\r\n7,o,C:\\\xD7\x99,r,\"d\"\r\n"), expected);
  EXPECT_THAT(Rows("\xFF\xFE" + little, 3), expected);
  EXPECT_THAT(Rows("\xFE\xFF" + big, 3), expected);
  EXPECT_THAT(Rows(little), expected);
  EXPECT_THAT(Rows(big), expected);
}

TEST(ProcmonRowsTest, BlankLinesAreNoRowsButCount) {
  EXPECT_THAT(Rows("\r\n" + WithHeader("\r\n\r\nt,a,1,o,p,r,d\r\n\r\n")), ElementsAre("5|1|p|d"));
}

TEST(ProcmonRowsTest, TheLastRowNeedsNoLineEnd) { EXPECT_THAT(Rows(WithHeader("t,a,1,o,p,r,d")), ElementsAre("2|1|p|d")); }

TEST(ProcmonRowsTest, RowsArriveInPieces) {
  for (const std::size_t step : {1U, 2U, 7U}) {
    EXPECT_THAT(Rows(WithHeader("\"t\",\"a\",\"1\",\"o\",\"p\",\"r\",\"x, \"\"y\"\"\r\nz\"\r\n"), step),
                ElementsAre("2|1|p|x, \"y\"\r\nz"));
  }
}

TEST(ProcmonRowsTest, AMissingColumnIsAnErrorThatNamesIt) {
  EXPECT_EQ(ErrorOfRows("PID,Operation,Path,Detail\n1,o,p,d\n"),
            "capture:1: the column \"Result\" is missing: show it in Process Monitor and save the capture again");
}

TEST(ProcmonRowsTest, ARowOfAnotherWidthIsAnError) {
  EXPECT_EQ(ErrorOfRows(WithHeader("t,a,1,o,p,r,d\r\nt,a,1,o\r\n")), "capture:3: the row has 4 fields where the header has 7");
  EXPECT_EQ(ErrorOfRows(WithHeader("t,a,1,o,p,r,d,e\r\n")), "capture:2: the row has 8 fields where the header has 7");
}

TEST(ProcmonRowsTest, QuotesOutOfPlaceAreErrors) {
  EXPECT_EQ(ErrorOfRows(WithHeader("\"t\",\"a\"x,1,o,p,r,d\r\n")), "capture:2: a quote stands where none may");
  EXPECT_EQ(ErrorOfRows(WithHeader("t,a\"b,1,o,p,r,d\r\n")), "capture:2: a quote stands where none may");
}

TEST(ProcmonRowsTest, ACaptureThatEndsInsideQuotesIsAnErrorAtItsRow) {
  EXPECT_EQ(ErrorOfRows(WithHeader("t,a,1,o,p,r,d\r\nt,a,1,o,p,r,\"d\r\nx\r\n")), "capture:3: the capture ends inside quotes");
}

TEST(ProcmonRowsTest, ARowLongerThan16MiBIsAnError) {
  const std::string line = std::string(1 << 20, 'x') + "\n";
  std::string text = WithHeader("t,a,1,o,p,r,\"");
  for (int i = 0; i < 17; ++i) {
    text += line;
  }
  EXPECT_EQ(ErrorOfRows(text), "capture:17: the row is longer than 16 MiB: is a closing quote missing?");
}

TEST(ProcmonRowsTest, NothingIsAnError) { EXPECT_EQ(ErrorOfRows(""), "capture: is empty"); }

TEST(ProcmonRowsTest, KnownColumnsAreCounted) {
  EXPECT_EQ(CountProcmonColumns(kHeader), 7U);
  EXPECT_EQ(CountProcmonColumns("PID;Operation;Company\r\n"), 2U);
  EXPECT_EQ(CountProcmonColumns("one,two,three"), 0U);
  EXPECT_EQ(CountProcmonColumns(""), 0U);
}

}  // namespace
}  // namespace replay::testing
