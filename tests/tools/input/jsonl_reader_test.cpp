#include "tools/replay/input/jsonl_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/input/reading.h"

namespace replay::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

Reading Read(const std::string& text) { return ReadCapture(CaptureFormat::kJsonl, text); }

Call Only(const std::string& line) {
  const Reading reading = Read(line);
  EXPECT_EQ(reading.error, "") << line;
  EXPECT_EQ(reading.calls.size(), 1U) << line;
  return reading.calls.empty() ? Call{} : reading.calls.front();
}

TEST(JsonlReaderTest, ReadsEveryFieldOfAnEvent) {
  const Call call =
      Only(R"({"call": "ZtInsertLog", "time": -5, "pid": 100, "tid": "7", "target_pid": "0x10", "path": "a.exe", )"
           R"("behavior": 16390, "target": "C:\\a|C:\\\u65e5", "context": 18446744073709551615})");
  EXPECT_EQ(call.kind, CallKind::kInsertLog);
  EXPECT_EQ(call.record.Time, -5);
  EXPECT_EQ(call.record.Pid, 100U);
  EXPECT_EQ(call.record.Tid, 7U);
  EXPECT_EQ(call.record.TargetPid, 16U);
  EXPECT_EQ(PathText(call.record), "a.exe");
  EXPECT_EQ(call.record.Behavior, 0x4006U);
  EXPECT_EQ(TargetText(call.record), "C:\\a|C:\\<65E5>");
  EXPECT_EQ(call.record.Context, 18446744073709551615U);
}

TEST(JsonlReaderTest, ALineWithoutCallIsAnEventWithDefaults) {
  const Call call = Only(R"({"behavior": "0x4001", "pid": 100, "time": 1})");
  EXPECT_EQ(call.kind, CallKind::kInsertLog);
  EXPECT_EQ(call.record.Behavior, 0x4001U);
  EXPECT_EQ(call.record.Tid, 0U);
  EXPECT_EQ(call.record.TargetPid, 0U);
  EXPECT_EQ(call.record.Context, 0U);
  EXPECT_EQ(PathText(call.record), "");
  EXPECT_EQ(TargetText(call.record), "");
}

TEST(JsonlReaderTest, BehavioursHaveNames) {
  const std::pair<const char*, std::uint32_t> names[] = {
      {"BehaviorCreate", 0x4001},     {"BehaviorCreateNew", 0x4002},   {"BehaviorRead", 0x4003},
      {"BehaviorWrite", 0x4004},      {"BehaviorDelete", 0x4005},      {"BehaviorRename", 0x4006},
      {"BehaviorSizeChange", 0x4007}, {"BehaviorSectionSync", 0x4008}, {"BehaviorDeleteAlt", 0x400B},
      {"BehaviorModuleLoad", 0xC001}, {"BehaviorProcessExit", 0xC002}, {"BehaviorProcessCreate", 0xC003},
  };
  for (const auto& [name, code] : names) {
    EXPECT_EQ(Only(std::string(R"({"time": 1, "pid": 1, "behavior": ")") + name + "\"}").record.Behavior, code) << name;
  }
}

TEST(JsonlReaderTest, AnyCodeThatFitsIsABehaviour) {
  EXPECT_EQ(Only(R"({"time": 1, "pid": 1, "behavior": 0})").record.Behavior, 0U);
  EXPECT_EQ(Only(R"({"time": 1, "pid": 1, "behavior": "0xFFFFFFFF"})").record.Behavior, 0xFFFFFFFFU);
}

TEST(JsonlReaderTest, ReadsTheOtherCalls) {
  const Call score =
      Only(R"({"call":"ZtCalculateSingleLineScore","time":1,"pid":2,"behavior":49153,"target":"x","score":-2147483648})");
  EXPECT_EQ(score.kind, CallKind::kCalculateSingleLineScore);
  EXPECT_EQ(score.value, -2147483647 - 1);
  EXPECT_EQ(score.record.Behavior, 0xC001U);
  EXPECT_EQ(TargetText(score.record), "x");

  const Call update = Only(R"({"call":"ZtUpdateScore","pid":"0xFFFFFFFFFFFFFFFF","value":"2147483647"})");
  EXPECT_EQ(update.kind, CallKind::kUpdateScore);
  EXPECT_EQ(update.pid, 0xFFFFFFFFFFFFFFFFU);
  EXPECT_EQ(update.value, 2147483647);

  const Call reset = Only(R"({"call":"ZtResetScore","now":-9223372036854775808,"score_age_limit":600000})");
  EXPECT_EQ(reset.kind, CallKind::kResetScore);
  EXPECT_EQ(reset.now, std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(reset.score_age_limit, 600000);

  EXPECT_EQ(Only(R"({"call":"ZtGetProcTree","pid":5})").kind, CallKind::kGetProcTree);
  const Call files = Only(R"({"call":"ZtGetFinalStateFileByPid","pid":6})");
  EXPECT_EQ(files.kind, CallKind::kGetFinalStateFileByPid);
  EXPECT_EQ(files.pid, 6U);
}

TEST(JsonlReaderTest, NumbersAreThoseOfTheLinesAndBlankLinesAreSkipped) {
  const Reading reading = Read("\n{\"call\":\"ZtGetProcTree\",\"pid\":1}\r\n \t\r\n\n{\"call\":\"ZtGetProcTree\",\"pid\":2}");
  ASSERT_EQ(reading.error, "");
  ASSERT_EQ(reading.calls.size(), 2U);
  EXPECT_EQ(reading.calls[0].number, 2U);
  EXPECT_EQ(reading.calls[1].number, 5U);
  EXPECT_EQ(reading.counts.rows, 2U);
}

TEST(JsonlReaderTest, LongTextIsCutAndCutTargetsAreCounted) {
  const std::string path(36, 'p');
  const std::string start = R"({"time":1,"pid":1,"behavior":16385,"path":")" + path + R"(","target":")";
  const Reading reading = Read(start + std::string(524, 'a') + "\"}\n" + start + std::string(525, 'b') + "\"}\n");
  ASSERT_EQ(reading.calls.size(), 2U);
  EXPECT_EQ(PathText(reading.calls[0].record), std::string(35, 'p'));
  EXPECT_EQ(TargetText(reading.calls[0].record), std::string(524, 'a'));
  EXPECT_EQ(TargetText(reading.calls[1].record), std::string(524, 'b'));
  EXPECT_EQ(reading.counts.targets_cut, 1U);
}

struct BadLine {
  int line;
  const char* text;
  const char* what;
};

TEST(JsonlReaderTest, BadLinesAreErrorsThatNameTheLineAndTheFault) {
  const BadLine cases[] = {
      {__LINE__, "nonsense", "not valid JSON at column 2"},
      {__LINE__, "[1]", "not a JSON object"},
      {__LINE__, R"({"time":1,"pid":1})", "ZtInsertLog needs the field \"behavior\""},
      {__LINE__, R"({"time":1,"behavior":1})", "ZtInsertLog needs the field \"pid\""},
      {__LINE__, R"({"pid":1,"behavior":1})", "ZtInsertLog needs the field \"time\""},
      {__LINE__, R"({"time":1,"pid":1,"behavior":1,"size":3})", "ZtInsertLog has no field \"size\""},
      {__LINE__, R"({"time":1,"pid":1,"behavior":1,"score":3})", "ZtInsertLog has no field \"score\""},
      {__LINE__, R"({"call":"ZtUpdateScore","pid":1})", "ZtUpdateScore needs the field \"value\""},
      {__LINE__, R"({"call":"ZtResetScore","now":1})", "ZtResetScore needs the field \"score_age_limit\""},
      {__LINE__, R"({"call":"ZtGetProcTree"})", "ZtGetProcTree needs the field \"pid\""},
      {__LINE__, R"({"call":"ZtGetProcTree","pid":1,"tid":1})", "ZtGetProcTree has no field \"tid\""},
      {__LINE__, R"({"call":"ZtCalculateSingleLineScore","time":1,"pid":1,"behavior":1})",
       "ZtCalculateSingleLineScore needs the field \"score\""},
      {__LINE__, R"({"call":"ZtSomething","pid":1})", "unknown call \"ZtSomething\""},
      {__LINE__, R"({"call":1,"pid":1})", "the field \"call\" is no text"},
      {__LINE__, R"({"time":1,"pid":1,"behavior":"BehaviorSing"})",
       R"(the field "behavior": names the unknown behaviour "BehaviorSing")"},
      {__LINE__, R"({"time":1,"pid":1,"behavior":4294967296})", "the field \"behavior\": 4294967296 is out of range"},
      {__LINE__, R"({"time":1,"pid":-1,"behavior":1})", "the field \"pid\": -1 is out of range"},
      {__LINE__, R"({"time":9223372036854775808,"pid":1,"behavior":1})",
       "the field \"time\": 9223372036854775808 is out of range"},
      {__LINE__, R"({"time":1.5,"pid":1,"behavior":1})", R"(the field "time": "1.5" is no integer)"},
      {__LINE__, R"({"time":null,"pid":1,"behavior":1})", "the field \"time\": is no integer"},
      {__LINE__, R"({"time":1,"pid":1,"behavior":1,"target":7})", "the field \"target\": is no text"},
      {__LINE__, R"({"time":1,"pid":1,"behavior":1,"path":null})", "the field \"path\": is no text"},
      {__LINE__, R"({"time":1,"pid":1,"pid":2,"behavior":1})", "the field \"pid\" stands twice"},
      {__LINE__, R"({"call":"ZtUpdateScore","pid":1,"value":2147483648})", "the field \"value\": 2147483648 is out of range"},
      {__LINE__, R"({"time":1,"pid":1,"behavior":1,"target":"\ud800"})",
       "not valid JSON at column 48: invalid string: surrogate"},
      {__LINE__, "{\"time\":1,\"pid\":1,\"behavior\":1,\"target\":\"\xFF\"}",
       "not valid JSON at column 42: invalid string: ill-formed"},
  };
  const std::string good = "{\"call\":\"ZtGetProcTree\",\"pid\":1}\n";
  for (const BadLine& c : cases) {
    const Reading reading = Read(fmt::format("{}\n{}\n{}", good, c.text, good));
    EXPECT_THAT(reading.error, StartsWith(std::string("capture:3: ") + c.what)) << "line " << c.line;
    EXPECT_EQ(reading.calls.size(), 1U) << "line " << c.line;
  }
}

}  // namespace
}  // namespace replay::testing
