#include "platform/utf8.h"

#include <gtest/gtest.h>
#include <utf8cpp/utf8.h>

#include <iterator>
#include <random>
#include <string>

namespace zt {
namespace {

const std::string kReplacement = "\xEF\xBF\xBD";

std::wstring Units(std::initializer_list<unsigned> units) {
  std::wstring text;
  for (const unsigned unit : units) {
    text += static_cast<wchar_t>(unit);
  }
  return text;
}

TEST(Utf8Test, EachLengthAtItsBoundaries) {
  EXPECT_EQ(WideToUtf8(Units({0})), std::string(1, '\0'));
  EXPECT_EQ(WideToUtf8(Units({0x7F})), "\x7F");
  EXPECT_EQ(WideToUtf8(Units({0x80})), "\xC2\x80");
  EXPECT_EQ(WideToUtf8(Units({0x7FF})), "\xDF\xBF");
  EXPECT_EQ(WideToUtf8(Units({0x800})), "\xE0\xA0\x80");
  EXPECT_EQ(WideToUtf8(Units({0xD7FF})), "\xED\x9F\xBF");
  EXPECT_EQ(WideToUtf8(Units({0xE000})), "\xEE\x80\x80");
  EXPECT_EQ(WideToUtf8(Units({0xFFFF})), "\xEF\xBF\xBF");
  EXPECT_EQ(WideToUtf8(Units({0xD800, 0xDC00})), "\xF0\x90\x80\x80");
  EXPECT_EQ(WideToUtf8(Units({0xDBFF, 0xDFFF})), "\xF4\x8F\xBF\xBF");
}

TEST(Utf8Test, EmptyTextIsEmpty) { EXPECT_EQ(WideToUtf8(L""), ""); }

TEST(Utf8Test, LoneSurrogatesAreReplaced) {
  EXPECT_EQ(WideToUtf8(Units({0xD800})), kReplacement);
  EXPECT_EQ(WideToUtf8(Units({0xDBFF, 'a'})), kReplacement + "a");
  EXPECT_EQ(WideToUtf8(Units({0xDC00, 'a'})), kReplacement + "a");
  EXPECT_EQ(WideToUtf8(Units({'a', 0xDFFF})), "a" + kReplacement);
  EXPECT_EQ(WideToUtf8(Units({0xDC00, 0xD800})), kReplacement + kReplacement);
  EXPECT_EQ(WideToUtf8(Units({0xD83D, 0xD83D, 0xDE00})), kReplacement + "\xF0\x9F\x98\x80");
  EXPECT_EQ(WideToUtf8(Units({0xD83D, 0xE000})), kReplacement + "\xEE\x80\x80");
}

TEST(Utf8Test, FirstCharacterTellsWhatItTook) {
  const Utf8Character pair = FirstCharacterAsUtf8(Units({0xD83D, 0xDE00, 'x'}));
  EXPECT_EQ(pair.view(), "\xF0\x9F\x98\x80");
  EXPECT_EQ(pair.unit_count, 2u);
  const Utf8Character lone = FirstCharacterAsUtf8(Units({0xD83D, 'x'}));
  EXPECT_EQ(lone.view(), kReplacement);
  EXPECT_EQ(lone.unit_count, 1u);
}

TEST(Utf8Test, EveryCodePointAgreesWithAnotherConverter) {
  for (unsigned code_point = 1; code_point <= 0x10FFFF; ++code_point) {
    if (code_point == 0xD800) {
      code_point = 0xE000;  // Surrogates are no characters.
    }
    std::string expected;
    utf8::append(code_point, std::back_inserter(expected));
    const std::wstring units =
        code_point < 0x10000 ? Units({code_point}) : Units({0xD7C0 + (code_point >> 10), 0xDC00 + (code_point & 0x3FF)});
    ASSERT_EQ(WideToUtf8(units), expected) << std::hex << code_point;
  }
}

TEST(Utf8Test, RandomUnitsGiveValidText) {
  std::mt19937 random(20250715);
  std::uniform_int_distribution<unsigned> unit(0xD000, 0xE800);  // Half of them surrogates.
  for (int round = 0; round < 1000; ++round) {
    std::wstring text;
    for (int i = 0; i < 50; ++i) {
      text += static_cast<wchar_t>(unit(random));
    }
    const std::string converted = WideToUtf8(text);
    EXPECT_TRUE(utf8::is_valid(converted.begin(), converted.end())) << "round " << round;
  }
}

}  // namespace
}  // namespace zt
