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

// One of each kind, as a capture may name a file.
struct NotShown {
  const char* text;
  const char* json;
};
constexpr NotShown kNotShown[] = {
    {"\x7F", "\\u007f"},                     // DEL
    {"\xC2\x80", "\\u0080"},                 // the first of C1
    {"\xC2\x9B", "\\u009b"},                 // the escape sequence introducer of C1
    {"\xC2\x9F", "\\u009f"},                 // the last of C1
    {"\xD8\x9C", "\\u061c"},                 // Arabic letter mark
    {"\xE2\x80\x8B", "\\u200b"},             // zero-width space
    {"\xE2\x80\x8E", "\\u200e"},             // left-to-right mark
    {"\xE2\x80\x8F", "\\u200f"},             // right-to-left mark
    {"\xE2\x80\xA8", "\\u2028"},             // line separator
    {"\xE2\x80\xA9", "\\u2029"},             // paragraph separator
    {"\xE2\x80\xAA", "\\u202a"},             // embedding
    {"\xE2\x80\xAE", "\\u202e"},             // right-to-left override
    {"\xE2\x81\xA6", "\\u2066"},             // isolate
    {"\xE2\x81\xA9", "\\u2069"},             // end of an isolate
    {"\xEF\xBB\xBF", "\\ufeff"},             // byte order mark
    {"\xF3\xA0\x80\x81", "\\udb40\\udc01"},  // language tag U+E0001
};

TEST(ShownText, ReplacesWhatIsNotSeenOrSteersTheTerminal) {
  for (const NotShown& character : kNotShown) {
    EXPECT_EQ(ShownText(std::string("a") + character.text + "b"),
              "a\xEF\xBF\xBD"
              "b")
        << character.json;
  }
  EXPECT_EQ(ShownText("a\x1B[31m\r\nb"),
            "a\xEF\xBF\xBD[31m\xEF\xBF\xBD\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(ShownText(std::wstring{L'a', 0x202E, L'b', 0xD83D}),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD");
}

TEST(ShownText, ReplacesBytesThatAreNoUtf8) {
  EXPECT_EQ(ShownText("a\x9B"
                      "b"),
            "a\xEF\xBF\xBD"
            "b");                                  // C1 as a byte of its own
  EXPECT_EQ(ShownText("a\xC3"), "a\xEF\xBF\xBD");  // a sequence that was cut
  EXPECT_EQ(ShownText(std::string("a\0b", 3)),
            "a\xEF\xBF\xBD"
            "b");
}

TEST(ShownText, KeepsWhatIsSeen) {
  for (const char* text : {"", "C:\\Docs\\a b~.txt", "\xC2\xA0", "\xD7\x99\xD7\x95", "\xE6\x97\xA5", "\xF0\x9F\x98\x80"}) {
    EXPECT_EQ(ShownText(std::string_view(text)), text);
  }
}

TEST(ShownJson, EscapesWhatIsNotSeen) {
  for (const NotShown& character : kNotShown) {
    EXPECT_EQ(ShownJson(std::string("\"") + character.text + "\""), std::string("\"") + character.json + "\"");
    EXPECT_EQ(JsonString(std::string_view(character.text)), std::string("\"") + character.json + "\"");
  }
  EXPECT_EQ(ShownJson("{\"\xE6\x97\xA5\":1}"), "{\"\xE6\x97\xA5\":1}");
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
