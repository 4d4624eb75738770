#include "tools/replay/input/json_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace replay {
namespace {

using ::testing::HasSubstr;

std::string ErrorOf(std::string_view line) {
  try {
    JsonLine json;
    json.Parse(line);
  } catch (const RowError& error) {
    return error.what();
  }
  return {};
}

JsonValue ValueOf(const std::string& written) {
  JsonLine json;
  json.Parse(R"({"v": )" + written + "}");
  return *json.Find("v");
}

TEST(JsonLineTest, FindsMembersOfBothLevels) {
  JsonLine json;
  json.Parse(R"({"a": "x", "in": {"b": "y", "a": true}, "c": 3})");
  EXPECT_EQ(ToText(*json.Find("a")), "x");
  EXPECT_EQ(ToText(*json.Find("in.b")), "y");
  EXPECT_EQ(json.Find("in.a")->kind, JsonValue::Kind::kBoolean);
  EXPECT_EQ(json.Find("in")->kind, JsonValue::Kind::kNested);
  EXPECT_EQ(ToUnsigned64(*json.Find("c")), 3U);
  EXPECT_EQ(json.Find("b"), nullptr);
}

TEST(JsonLineTest, WhatIsDeeperIsPassedOver) {
  JsonLine json;
  json.Parse(R"({"in": {"deep": {"x": 1, "y": [{"z": 2}]}, "b": 7}, "list": [1, {"k": 2}, [3]], "last": 9})");
  EXPECT_EQ(json.Find("in.deep")->kind, JsonValue::Kind::kNested);
  EXPECT_EQ(json.Find("in.x"), nullptr);
  EXPECT_EQ(json.Find("k"), nullptr);
  EXPECT_EQ(json.Find("list")->kind, JsonValue::Kind::kNested);
  EXPECT_EQ(ToUnsigned64(*json.Find("in.b")), 7U);
  EXPECT_EQ(ToUnsigned64(*json.Find("last")), 9U);
}

TEST(JsonLineTest, ALineReplacesTheOneBefore) {
  JsonLine json;
  json.Parse(R"({"a": 1, "b": 2})");
  json.Parse(R"({"c": 3})");
  EXPECT_EQ(json.members().size(), 1U);
  EXPECT_EQ(json.Find("a"), nullptr);
}

TEST(JsonLineTest, RejectsWhatIsNotOneObject) {
  EXPECT_EQ(ErrorOf("[1]"), "not a JSON object");
  EXPECT_EQ(ErrorOf("3"), "not a JSON object");
  EXPECT_EQ(ErrorOf("\"x\""), "not a JSON object");
  EXPECT_EQ(ErrorOf("null"), "not a JSON object");
  for (const char* line :
       {"", "{", "{\"a\": 1,}", "{\"a\" 1}", "{} {}", "{\"a\": 1} x", "{'a': 1}", "{\"a\": 01}", "{\"a\": +1}"}) {
    EXPECT_THAT(ErrorOf(line), HasSubstr("not valid JSON at column")) << line;
  }
}

TEST(JsonLineTest, RejectsTextThatIsNoUnicode) {
  EXPECT_THAT(ErrorOf("{\"a\": \"\xFF\"}"), HasSubstr("ill-formed UTF-8"));
  EXPECT_THAT(ErrorOf("{\"a\": \"\xC0\x80\"}"), HasSubstr("ill-formed UTF-8"));
  EXPECT_THAT(ErrorOf("{\"a\": \"\xED\xA0\x80\"}"), HasSubstr("ill-formed UTF-8"));
  EXPECT_THAT(ErrorOf(R"({"a": "\ud800"})"), HasSubstr("surrogate"));
  EXPECT_THAT(ErrorOf(R"({"a": "\ud800x"})"), HasSubstr("surrogate"));
  EXPECT_THAT(ErrorOf(R"({"a": "\udc00"})"), HasSubstr("surrogate"));
  EXPECT_EQ(ToText(ValueOf(R"("\ud83d\ude00")")), "\xF0\x9F\x98\x80");
}

TEST(JsonLineTest, DeepNestingIsNoTrouble) {
  EXPECT_EQ(ErrorOf("{\"a\": " + std::string(200000, '[') + std::string(200000, ']') + "}"), "");
}

struct IntegerCase {
  int line;
  const char* written;
  const char* signed_64;  // The value, or what the error says.
  const char* unsigned_64;
  const char* signed_32;
  const char* unsigned_32;
};

template <typename Read>
std::string Outcome(const JsonValue& value, const Read& read) {
  try {
    return std::to_string(read(value));
  } catch (const RowError& error) {
    return error.what();
  }
}

TEST(JsonLineTest, IntegersAreNumbersOrTextWithinTheirRange) {
  const char* const out = "is out of range";
  const IntegerCase cases[] = {
      {__LINE__, "0", "0", "0", "0", "0"},
      {__LINE__, "-0", "0", "0", "0", "0"},
      {__LINE__, "\"0\"", "0", "0", "0", "0"},
      {__LINE__, "-1", "-1", out, "-1", out},
      {__LINE__, "\"-1\"", "-1", out, "-1", out},
      {__LINE__, "\"007\"", "7", "7", "7", "7"},
      {__LINE__, "\"0x4001\"", "16385", "16385", "16385", "16385"},
      {__LINE__, "\"0X4aB\"", "1195", "1195", "1195", "1195"},
      {__LINE__, "2147483647", "2147483647", "2147483647", "2147483647", "2147483647"},
      {__LINE__, "2147483648", "2147483648", "2147483648", out, "2147483648"},
      {__LINE__, "-2147483648", "-2147483648", out, "-2147483648", out},
      {__LINE__, "-2147483649", "-2147483649", out, out, out},
      {__LINE__, "4294967295", "4294967295", "4294967295", out, "4294967295"},
      {__LINE__, "\"0x100000000\"", "4294967296", "4294967296", out, out},
      {__LINE__, "9223372036854775807", "9223372036854775807", "9223372036854775807", out, out},
      {__LINE__, "9223372036854775808", out, "9223372036854775808", out, out},
      {__LINE__, "-9223372036854775808", "-9223372036854775808", out, out, out},
      {__LINE__, "\"-9223372036854775809\"", out, out, out, out},
      {__LINE__, "18446744073709551615", out, "18446744073709551615", out, out},
      {__LINE__, "\"0xFFFFFFFFFFFFFFFF\"", out, "18446744073709551615", out, out},
      {__LINE__, "18446744073709551616", out, out, out, out},
      {__LINE__, "\"18446744073709551616\"", out, out, out, out},
      {__LINE__, "\"0x10000000000000000\"", out, out, out, out},
      {__LINE__, "-9223372036854775809", out, out, out, out},
  };
  for (const IntegerCase& c : cases) {
    const JsonValue value = ValueOf(c.written);
    EXPECT_THAT(Outcome(value, ToSigned64), ::testing::EndsWith(c.signed_64)) << "line " << c.line;
    EXPECT_THAT(Outcome(value, ToUnsigned64), ::testing::EndsWith(c.unsigned_64)) << "line " << c.line;
    EXPECT_THAT(Outcome(value, ToSigned32), ::testing::EndsWith(c.signed_32)) << "line " << c.line;
    EXPECT_THAT(Outcome(value, ToUnsigned32), ::testing::EndsWith(c.unsigned_32)) << "line " << c.line;
  }
}

TEST(JsonLineTest, OtherValuesAreNoIntegers) {
  for (const char* written : {"1.0", "1e3", "0.5", "\"\"", "\"x\"", "\"0x\"", "\"-\"", "\"+1\"", "\" 1\"", "\"1 \"", "\"12a\"",
                              "\"0xg\"", "\"--1\"", "\"0x-1\"", "true", "null", "[1]", "{}"}) {
    EXPECT_THAT(Outcome(ValueOf(written), ToSigned64), ::testing::EndsWith("is no integer")) << written;
    EXPECT_THAT(Outcome(ValueOf(written), ToUnsigned64), ::testing::EndsWith("is no integer")) << written;
  }
}

TEST(JsonLineTest, OnlyTextIsText) {
  for (const char* written : {"1", "true", "null", "[]", "{}", "1.5"}) {
    EXPECT_THROW(ToText(ValueOf(written)), RowError) << written;
  }
}

}  // namespace
}  // namespace replay
