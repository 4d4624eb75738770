#include "tools/replay/input/utf8_source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/input/reading.h"

namespace replay::testing {
namespace {

// Each unit of `text` as two bytes.
std::string LittleEndian(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}
std::string BigEndian(std::u16string_view text) {
  std::string bytes = LittleEndian(text);
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    std::swap(bytes[i], bytes[i + 1]);
  }
  return bytes;
}

std::string Converted(const std::string& bytes, std::size_t step = 4096) {
  const auto source = OpenAsUtf8(SourceOf(bytes, step));
  return ReadAll(*source);
}

// "PID" and one character each of two, three and four bytes of UTF-8.
constexpr std::u16string_view kText = u"PID \u05D9\u65E5\U0001F600\r\n";
constexpr std::string_view kUtf8 = "PID \xD7\x99\xE6\x97\xA5\xF0\x9F\x98\x80\r\n";

TEST(Utf8SourceTest, ReadsEveryUnicodeForm) {
  EXPECT_EQ(Converted(std::string(kUtf8)), kUtf8);
  EXPECT_EQ(Converted("\xEF\xBB\xBF" + std::string(kUtf8)), kUtf8);
  EXPECT_EQ(Converted("\xFF\xFE" + LittleEndian(kText)), kUtf8);
  EXPECT_EQ(Converted("\xFE\xFF" + BigEndian(kText)), kUtf8);
  EXPECT_EQ(Converted(LittleEndian(kText)), kUtf8);
  EXPECT_EQ(Converted(BigEndian(kText)), kUtf8);
}

TEST(Utf8SourceTest, CharactersMayComeInPieces) {
  for (std::size_t step = 1; step < 6; ++step) {
    EXPECT_EQ(Converted("\xFF\xFE" + LittleEndian(kText), step), kUtf8) << step;
  }
}

TEST(Utf8SourceTest, LoneSurrogatesBecomeReplacementCharacters) {
  const std::u16string text = {u'a', 0xD83D, u'b', 0xDE00, u'c'};
  EXPECT_EQ(Converted("\xFF\xFE" + LittleEndian(text)),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD"
            "c");
}

TEST(Utf8SourceTest, TextThatEndsAmidACharacterIsAnError) {
  EXPECT_EQ(ErrorOf([] { Converted("\xFF\xFE" + LittleEndian(u"ab") + "c"); }),
            "capture: the UTF-16 text ends amid a character");
  EXPECT_EQ(ErrorOf([] {
              Converted("\xFF\xFE" + LittleEndian(std::u16string{u'a', 0xD83D}));
            }),
            "capture: the UTF-16 text ends amid a character");
}

TEST(Utf8SourceTest, AnEmptyTextIsEmpty) {
  EXPECT_EQ(Converted(""), "");
  EXPECT_EQ(Converted("\xEF\xBB\xBF"), "");
  EXPECT_EQ(Converted("\xFF\xFE"), "");
}

}  // namespace
}  // namespace replay::testing
