#include "trace/hex_dump.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zt {
namespace {

std::string Row(std::uint64_t offset, std::string_view bytes) {
  const std::vector<unsigned char> data(bytes.begin(), bytes.end());
  return std::string(HexRow(offset, data).view());
}

TEST(HexDumpTest, FullRow) {
  EXPECT_EQ(Row(0, "ABCDEFGHIJKLMNOP"), "00000000  41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50   ABCDEFGHIJKLMNOP\r\n");
}

TEST(HexDumpTest, ShortRowKeepsTheColumns) {
  EXPECT_EQ(Row(0, "A"), "00000000  41                                                A\r\n");
  EXPECT_EQ(Row(0, "ABCDEFGHIJKLMNO"), "00000000  41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F      ABCDEFGHIJKLMNO\r\n");
}

TEST(HexDumpTest, OffsetHasEightUpperCaseDigits) {
  EXPECT_EQ(Row(0x10, "A").substr(0, 10), "00000010  ");
  EXPECT_EQ(Row(0x9ABCDEF0, "A").substr(0, 10), "9ABCDEF0  ");
  EXPECT_EQ(Row(0x1'0000'0020, "A").substr(0, 10), "00000020  ");
}

TEST(HexDumpTest, OnlyPrintableAsciiShowsAsItself) {
  EXPECT_EQ(Row(0, std::string_view("\x00\x1F\x20\x7E\x7F\x80\xFF\n", 8)),
            "00000000  00 1F 20 7E 7F 80 FF 0A                           .. ~....\r\n");
}

TEST(HexDumpTest, EveryByteHasItsDigits) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (unsigned value = 0; value < 256; ++value) {
    const std::string row = Row(0, std::string(1, static_cast<char>(value)));
    EXPECT_EQ(row.substr(10, 3), std::string({kDigits[value / 16], kDigits[value % 16], ' '}));
    EXPECT_EQ(row.substr(60), std::string(1, value >= 32 && value < 127 ? static_cast<char>(value) : '.') + "\r\n");
  }
}

}  // namespace
}  // namespace zt
