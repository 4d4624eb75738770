#include "tools/replay/session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/trace_capture.h"
#include "tests/tools/calls.h"

namespace replay {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::Insert;
using testing::OnProcess;
using ::testing::Pair;
using testing::Reset;
using zt::testing::ProcessCreate;
using zt::testing::ProcessExit;

constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

/// A session with the alarm at 4, fed call by call; the n-th call has the number n and the event time 1000 n.
class SessionTest : public ::testing::Test {
 protected:
  SessionTest() { options_.alarm = 4; }

  Session& session() {
    if (!session_) {
      session_ = std::make_unique<Session>(options_, SessionOutputs{&results_, &events_, &explain_}, true);
    }
    return *session_;
  }
  void Feed(const LOG_ITEM& record) {
    ++number_;
    session().Feed(Insert(number_, record, static_cast<std::int64_t>(number_) * 1000));
  }
  void Feed(Call call) {
    call.number = ++number_;
    session().Feed(call);
  }
  /// Three events, the last of which damages the file.
  void Overwrite(std::uint64_t pid, const std::wstring& path) {
    Feed(zt::testing::Open(pid, path));
    Feed(zt::testing::Read(pid, path));
    Feed(zt::testing::Write(pid, path));
  }
  /// The only record.
  const ProcessRecord& TheProcess() {
    EXPECT_EQ(session().ledger().records().size(), 1U);
    return session().ledger().records().front();
  }

  Options options_;
  testing::Sink results_text_;
  testing::Sink events_text_;
  testing::Sink explain_text_;
  ResultsWriter results_{results_text_.Take()};
  EventsWriter events_{events_text_.Take()};
  ExplainWriter explain_{explain_text_.Take()};
  std::uint64_t number_ = 0;
  std::unique_ptr<Session> session_;
};

TEST_F(SessionTest, TellsWhenAProcessReachedTheAlarmAndWhatIsLeft) {
  Feed(ProcessCreate(4, 50, 0, L"C:\\bad.exe"));
  Overwrite(50, L"C:\\Docs\\Alpha.doc");
  Overwrite(50, L"C:\\Docs\\Beta.doc");
  Feed(zt::testing::Open(50, L"C:\\Docs\\Gamma.doc"));
  Feed(zt::testing::Delete(50, L"C:\\Docs\\Gamma.doc"));
  session().Finish();
  const ProcessRecord& process = TheProcess();
  EXPECT_EQ(process.image, L"C:\\bad.exe");
  EXPECT_EQ(process.score, 4);
  ASSERT_TRUE(process.alarm);
  EXPECT_EQ(process.alarm->number, 7U);
  EXPECT_EQ(process.alarm->time, 7000);
  EXPECT_EQ(process.alarm->damaged_files, 2U);
  ASSERT_TRUE(process.final_answer);
  EXPECT_EQ(process.final_answer->files_to_restore, 3U);
  EXPECT_EQ(process.final_answer->overwritten_files, 2U);  // The deleted one was not overwritten.
  EXPECT_EQ(process.final_answer->quarantine_paths, 2U);
  EXPECT_THAT(process.final_answer->restore_paths,
              ElementsAre(L"C:\\Docs\\Alpha.doc", L"C:\\Docs\\Beta.doc", L"C:\\Docs\\Gamma.doc"));
  ASSERT_TRUE(process.family);
  EXPECT_THAT(*process.family, ElementsAre(Pair(50U, L"C:\\bad.exe")));
}

TEST_F(SessionTest, CountsWhatItFeeds) {
  Feed(ProcessCreate(4, 50, 0));
  Feed(OnProcess(CallKind::kGetProcTree, 0, 50));
  Feed(ProcessExit(50));
  EXPECT_EQ(session().counts().events, 2U);
  EXPECT_EQ(session().counts().others, 1U);
  EXPECT_EQ(session().counts().resets, 0U);
}

TEST_F(SessionTest, TheParentReachesTheAlarmToo) {
  Feed(ProcessCreate(4, 50, 0, L"C:\\parent.exe"));
  Feed(ProcessCreate(50, 51, 0, L"C:\\child.exe"));
  Feed(OnProcess(CallKind::kUpdateScore, 0, 50, 3));
  Overwrite(51, L"C:\\Docs\\Alpha.doc");
  session().Finish();
  const auto& records = session().ledger().records();
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0].key.Pid, 50U);
  EXPECT_EQ(records[0].score, 6);
  ASSERT_TRUE(records[0].alarm);
  EXPECT_EQ(records[0].alarm->number, 6U);
  EXPECT_EQ(records[1].parent.Pid, 50U);
  EXPECT_EQ(records[1].parent_image, L"C:\\parent.exe");
  EXPECT_FALSE(records[1].alarm);
  ASSERT_TRUE(records[1].final_answer);
  EXPECT_EQ(records[1].final_answer->files_to_restore, 1U);
  EXPECT_TRUE(records[1].final_answer->restore_paths.empty());  // Kept for processes that reached the alarm.
}

TEST_F(SessionTest, AsksBeforeTheIdGoesToANewProcess) {
  Feed(ProcessCreate(4, 50, 0, L"C:\\old.exe"));
  Overwrite(50, L"C:\\Docs\\Alpha.doc");
  Feed(ProcessExit(50));
  Feed(ProcessCreate(4, 50, 0, L"C:\\new.exe"));
  session().Finish();
  ASSERT_TRUE(TheProcess().final_answer);
  EXPECT_EQ(TheProcess().final_answer->files_to_restore, 1U);
  EXPECT_THAT(*TheProcess().family, ElementsAre(Pair(50U, L"C:\\old.exe")));
}

TEST_F(SessionTest, ACreationWithoutImageTakesNoId) {
  Feed(ProcessCreate(4, 50, 0, L"C:\\old.exe"));
  Overwrite(50, L"C:\\Docs\\Alpha.doc");
  Feed(ProcessCreate(4, 50, 0, L""));
  Overwrite(50, L"C:\\Docs\\Beta.doc");
  session().Finish();
  EXPECT_EQ(TheProcess().final_answer->files_to_restore, 2U);
}

TEST_F(SessionTest, AProcessEnteredTwiceUnderOneKeyIsTwoProcesses) {
  Call create = Insert(0, ProcessCreate(4, 50, 0, L"C:\\one.exe"), 500);
  Feed(create);
  Overwrite(50, L"C:\\Docs\\Alpha.doc");
  Feed(create);
  Overwrite(50, L"C:\\Docs\\Beta.doc");
  Overwrite(50, L"C:\\Docs\\Gamma.doc");
  session().Finish();
  const auto& records = session().ledger().records();
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0].final_answer->files_to_restore, 1U);
  EXPECT_FALSE(records[0].alarm);
  EXPECT_EQ(records[1].final_answer->files_to_restore, 2U);
  EXPECT_TRUE(records[1].alarm);
}

TEST_F(SessionTest, AsksBeforeAResetRemovesAnExitedProcess) {
  Feed(ProcessCreate(4, 50, 0, L"C:\\bad.exe"));
  Overwrite(50, L"C:\\Docs\\Alpha.doc");
  Feed(ProcessExit(50));
  Feed(Reset(0, 0, kNever));
  Feed(Reset(0, 0, kNever));
  Feed(OnProcess(CallKind::kGetFinalStateFileByPid, 0, 50));
  EXPECT_THAT(results_text_.text, HasSubstr("\"line\":8,\"call\":\"ZtGetFinalStateFileByPid\",\"result\":1,\"files\":{},"));
  session().Finish();
  ASSERT_TRUE(TheProcess().final_answer);
  EXPECT_EQ(TheProcess().final_answer->files_to_restore, 1U);
}

TEST_F(SessionTest, AResetScoreDoesNotTakeTheFamilyAway) {
  Feed(ProcessCreate(4, 50, 0, L"C:\\bad.exe"));
  Overwrite(50, L"C:\\Docs\\Alpha.doc");
  Feed(Reset(0, 1'000'000'000, 0));
  session().Finish();
  EXPECT_EQ(TheProcess().score, 1);
  EXPECT_EQ(TheProcess().highest_score, 2);
  EXPECT_THAT(*TheProcess().family, ElementsAre(Pair(50U, L"C:\\bad.exe")));
  EXPECT_EQ(TheProcess().final_answer->files_to_restore, 1U);
}

TEST_F(SessionTest, ResetsInEventTimeWhereTheyAreAskedFor) {
  options_.reset = ResetSchedule{2500, 0};  // A tick every two and a half events; any penalty is old.
  Feed(ProcessCreate(4, 50, 0));            // 1000: the timer starts.
  Overwrite(50, L"C:\\Docs\\Alpha.doc");    // 2000 to 4000; the tick at 3500 comes before the penalty.
  EXPECT_EQ(session().counts().resets, 1U);
  EXPECT_EQ(TheProcess().score, 2);
  Feed(zt::testing::Open(50, L"C:\\x"));  // 5000
  Feed(zt::testing::Open(50, L"C:\\y"));  // 6000: the tick at 6000; the penalty is 2000 ticks old, 0 ms, so not above 0.
  EXPECT_EQ(session().counts().resets, 2U);
  EXPECT_EQ(TheProcess().score, 2);
  session().Feed(Insert(7, zt::testing::Open(50, L"C:\\z"), 30000));  // The ticks at 26000 and 28500; 2 ms old.
  EXPECT_EQ(session().counts().resets, 4U);
  EXPECT_EQ(TheProcess().score, 1);
  EXPECT_THAT(results_text_.text, ::testing::Not(HasSubstr("ZtResetScore")));
  EXPECT_THAT(events_text_.text, HasSubstr("{\"call\":\"ZtResetScore\",\"now\":3500,\"score_age_limit\":0}\n"
                                           "{\"time\":4000,"));
  EXPECT_THAT(events_text_.text, HasSubstr("{\"call\":\"ZtResetScore\",\"now\":26000,\"score_age_limit\":0}\n"
                                           "{\"call\":\"ZtResetScore\",\"now\":28500,\"score_age_limit\":0}\n"
                                           "{\"time\":30000,"));
}

TEST_F(SessionTest, ExplainsAPenalty) {
  Feed(ProcessCreate(4, 50, 0, L"C:\\bad.exe"));
  Overwrite(50, L"C:\\Docs\\Alpha.doc");
  Feed(zt::testing::ModuleLoad(50, L"bcrypt.dll"));
  EXPECT_EQ(
      explain_text_.text,
      "{\"event\":4,\"time\":4000,\"process\":{\"pid\":50,\"start_time\":1000,\"image\":\"C:\\\\bad.exe\",\"score_before\":1,"
      "\"score_after\":2},\"file\":\"c:\\\\docs\\\\alpha.doc\",\"factor\":2,\"in_parent\":false,"
      "\"stepped_file\":\"C:\\\\Docs\\\\Alpha.doc\",\"state_before\":{\"number\":2,\"name\":\"ZT_READ_START\"},"
      "\"state_after\":{\"number\":4,\"name\":\"ZT_OVERWRITE\"},\"ancestors\":[]}\n");
}

TEST_F(SessionTest, TheEngineHasTheIdentifierGiven) {
  options_.engine_id = 77;
  Feed(ProcessCreate(4, 50, 0));
  Overwrite(50, L"C:\\Docs\\Alpha.doc");
  Feed(OnProcess(CallKind::kGetFinalStateFileByPid, 0, 50));
  EXPECT_THAT(results_text_.text, HasSubstr("\"engine_id\":77"));
}

TEST_F(SessionTest, AForcedScoreCanReachTheAlarm) {
  Feed(ProcessCreate(4, 50, 0));
  Feed(OnProcess(CallKind::kUpdateScore, 0, 50, 4));
  ASSERT_TRUE(TheProcess().alarm);
  EXPECT_EQ(TheProcess().alarm->number, 2U);
  EXPECT_EQ(TheProcess().alarm->time, 1000);  // Of the last event: the call has no time.
}

/// What is traced, without the lines of time that differ from run to run.
std::vector<std::string> Steady(std::vector<std::string> messages) {
  std::erase_if(messages, [](const std::string& message) { return message.starts_with("Time past: "); });
  return messages;
}

TEST_F(SessionTest, TheTraceIsThatOfTheCapturesCalls) {
  std::vector<Call> calls;
  const auto add = [&](Call call) {
    call.number = calls.size() + 1;
    call.record.Time = static_cast<std::int64_t>(call.number) * 1000;
    calls.push_back(call);
  };
  const auto overwrite = [&](const std::wstring& path) {
    add(Insert(0, zt::testing::Open(50, path), 0));
    add(Insert(0, zt::testing::Read(50, path), 0));
    add(Insert(0, zt::testing::Write(50, path), 0));
  };
  add(Insert(0, ProcessCreate(4, 50, 0, L"C:\\old.exe"), 0));
  overwrite(L"C:\\Docs\\Alpha.doc");
  add(Reset(0, 0, kNever));
  add(Insert(0, ProcessExit(50), 0));
  add(Reset(0, 0, kNever));
  add(Insert(0, ProcessCreate(4, 50, 0, L"C:\\new.exe"), 0));
  overwrite(L"C:\\Docs\\Beta.doc");

  zt::testing::TraceCapture trace(7);
  std::shared_ptr<void> engine;
  ZtInitEngineCore(engine, options_.engine_id);
  for (Call& call : calls) {
    if (call.kind == CallKind::kInsertLog) {
      ZtInsertLog(engine, &call.record);
    } else {
      ZtResetScore(engine, call.now, call.score_age_limit);
    }
  }
  ZtCleanupEngineCore(engine);
  const std::vector<std::string> of_calls = Steady(trace.TakeMessages());
  ASSERT_THAT(of_calls, ::testing::Contains(HasSubstr("SCORE INCREASED")));

  for (const Call& call : calls) {
    session().Feed(call);
  }
  session().Finish();
  ASSERT_TRUE(session().ledger().records().front().final_answer);
  session_.reset();
  EXPECT_EQ(Steady(trace.TakeMessages()), of_calls);
}

}  // namespace
}  // namespace replay
