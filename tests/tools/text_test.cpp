#include "tools/replay/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace replay {
namespace {

TEST(Utf8, WritesOneToFourBytes) {
  // U+0041, U+00E9, U+20AC and U+1F600, the last as a pair of surrogates.
  EXPECT_EQ(Utf8(L"A\u00E9\u20AC\xD83D\xDE00"), "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(Utf8, ReplacesSurrogatesWithoutAPartner) {
  const std::string replacement = "\xEF\xBF\xBD";
  EXPECT_EQ(Utf8(std::wstring{L'a', 0xD800, L'b'}), "a" + replacement + "b");
  EXPECT_EQ(Utf8(std::wstring{L'a', 0xDC00, L'b'}), "a" + replacement + "b");
  EXPECT_EQ(Utf8(std::wstring{L'a', 0xD800}), "a" + replacement);
  // A trail before its lead pairs with nothing.
  EXPECT_EQ(Utf8(std::wstring{0xDE00, 0xD83D}), replacement + replacement);
  // The first lead stands alone, the second has its trail.
  EXPECT_EQ(Utf8(std::wstring{0xD83D, 0xD83D, 0xDE00}), replacement + "\xF0\x9F\x98\x80");
}

TEST(PlainUtf8, ReplacesControlCharacters) {
  const std::string replacement = "\xEF\xBF\xBD";
  EXPECT_EQ(PlainUtf8(L"a\x1B[31m\nb"), "a" + replacement + "[31m" + replacement + "b");
  EXPECT_EQ(PlainUtf8(std::wstring{0x7F, 0x9B, 0xA0}), replacement + replacement + "\xC2\xA0");
}

TEST(JsonString, EscapesWhatJsonWantsEscaped) {
  EXPECT_EQ(JsonString(std::wstring_view(L"C:\\a\"b\n")), "\"C:\\\\a\\\"b\\n\"");
  EXPECT_EQ(JsonString(std::string_view("plain")), "\"plain\"");
}

TEST(JsonString, ReplacesBytesThatAreNoUtf8) { EXPECT_EQ(JsonString(std::string_view("a\xFF")), "\"a\xEF\xBF\xBD\""); }

TEST(TargetOf, EndsAtTheTerminatorOrWithTheField) {
  LOG_ITEM record = {};
  EXPECT_EQ(TargetOf(record), L"");
  record.Target[0] = ZtWideChar{'x'};
  record.Target[1] = ZtWideChar{'y'};
  record.Target[3] = ZtWideChar{'z'};
  EXPECT_EQ(TargetOf(record), L"xy");
  std::fill(std::begin(record.Target), std::end(record.Target), ZtWideChar{'q'});
  EXPECT_EQ(TargetOf(record), std::wstring(524, L'q'));
}

TEST(PathOf, EndsAtTheTerminatorOrWithTheField) {
  LOG_ITEM record = {};
  EXPECT_EQ(PathOf(record), "");
  std::fill(std::begin(record.Path), std::end(record.Path), 'p');
  EXPECT_EQ(PathOf(record), std::string(36, 'p'));
  record.Path[3] = '\0';
  EXPECT_EQ(PathOf(record), "ppp");
}

}  // namespace
}  // namespace replay
