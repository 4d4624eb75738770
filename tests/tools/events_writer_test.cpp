#include "tools/replay/events_writer.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/tools/calls.h"

namespace replay {
namespace {

using testing::Insert;
using testing::OnProcess;
using testing::Reset;

TEST(ScriptLine, LeavesOutDefaults) {
  EXPECT_EQ(ScriptLine(Insert(1, zt::testing::MakeEvent(BehaviorProcessExit, 7, L""), -5)),
            R"({"time":-5,"pid":7,"behavior":"BehaviorProcessExit"})");
}

TEST(ScriptLine, WritesEveryField) {
  Call call =
      Insert(1, zt::testing::MakeEvent(BehaviorRename, 18446744073709551615U, L"C:\\a|C:\\\u00E9", 9), 133590404967891234);
  call.record.Tid = 8;
  call.record.Context = 10;
  std::strcpy(call.record.Path, "C:\\app.exe");
  EXPECT_EQ(ScriptLine(call),
            "{\"time\":133590404967891234,\"pid\":18446744073709551615,\"tid\":8,\"target_pid\":9,\"path\":\"C:\\\\app.exe\","
            "\"behavior\":\"BehaviorRename\",\"target\":\"C:\\\\a|C:\\\\\xC3\xA9\",\"context\":10}");
}

TEST(ScriptLine, NamesBehavioursWhereTheyHaveNames) {
  const auto line = [](std::uint32_t behavior) { return ScriptLine(Insert(1, zt::testing::MakeEvent(behavior, 1, L""), 0)); };
  EXPECT_EQ(line(0xC003), R"({"time":0,"pid":1,"behavior":"BehaviorProcessCreate"})");
  EXPECT_EQ(line(0x4009), R"({"time":0,"pid":1,"behavior":"0x4009"})");
  EXPECT_EQ(line(0), R"({"time":0,"pid":1,"behavior":"0x0000"})");
  EXPECT_EQ(line(0xFFFFFFFF), R"({"time":0,"pid":1,"behavior":"0xffffffff"})");
}

TEST(ScriptLine, WritesTheOtherCalls) {
  Call score = Insert(1, zt::testing::ModuleLoad(1, L"x.dll"), 2);
  score.kind = CallKind::kCalculateSingleLineScore;
  score.value = -3;
  EXPECT_EQ(ScriptLine(score), R"({"call":"ZtCalculateSingleLineScore","time":2,"pid":1,"behavior":"BehaviorModuleLoad",)"
                               R"("target":"x.dll","score":-3})");
  EXPECT_EQ(ScriptLine(OnProcess(CallKind::kUpdateScore, 1, 7, -1)), R"({"call":"ZtUpdateScore","pid":7,"value":-1})");
  EXPECT_EQ(ScriptLine(Reset(1, -8, 9)), R"({"call":"ZtResetScore","now":-8,"score_age_limit":9})");
  EXPECT_EQ(ScriptLine(OnProcess(CallKind::kGetProcTree, 1, 7)), R"({"call":"ZtGetProcTree","pid":7})");
  EXPECT_EQ(ScriptLine(OnProcess(CallKind::kGetFinalStateFileByPid, 1, 7)), R"({"call":"ZtGetFinalStateFileByPid","pid":7})");
}

TEST(ScriptLine, ReplacesWhatAScriptCannotHold) {
  Call call = Insert(1, zt::testing::MakeEvent(BehaviorRead, 1, std::wstring{L'a', 0xDC00}), 0);
  std::strcpy(call.record.Path, "b\xFF");
  EXPECT_EQ(ScriptLine(call),
            "{\"time\":0,\"pid\":1,\"path\":\"b\xEF\xBF\xBD\",\"behavior\":\"BehaviorRead\",\"target\":\"a\xEF\xBF\xBD\"}");
}

class EventsWriterTest : public ::testing::Test {
 protected:
  testing::Sink sink_;
  EventsWriter writer_{sink_.Take()};
};

TEST_F(EventsWriterTest, WritesEachCallOnTheLineOfItsNumber) {
  writer_.Write(OnProcess(CallKind::kGetProcTree, 2, 7));
  writer_.Write(OnProcess(CallKind::kGetProcTree, 3, 8));
  writer_.Write(OnProcess(CallKind::kGetProcTree, 6, 9));
  EXPECT_EQ(sink_.text,
            "\n"
            "{\"call\":\"ZtGetProcTree\",\"pid\":7}\n"
            "{\"call\":\"ZtGetProcTree\",\"pid\":8}\n"
            "\n\n"
            "{\"call\":\"ZtGetProcTree\",\"pid\":9}\n");
}

TEST_F(EventsWriterTest, ItsOwnCallsMoveLaterOnesDown) {
  writer_.Write(OnProcess(CallKind::kGetProcTree, 1, 7));
  writer_.WriteOwn(Reset(0, 1, 2));
  writer_.Write(OnProcess(CallKind::kGetProcTree, 2, 8));
  writer_.Write(OnProcess(CallKind::kGetProcTree, 4, 9));
  EXPECT_EQ(sink_.text,
            "{\"call\":\"ZtGetProcTree\",\"pid\":7}\n"
            "{\"call\":\"ZtResetScore\",\"now\":1,\"score_age_limit\":2}\n"
            "{\"call\":\"ZtGetProcTree\",\"pid\":8}\n"
            "\n"
            "{\"call\":\"ZtGetProcTree\",\"pid\":9}\n");
}

}  // namespace
}  // namespace replay
