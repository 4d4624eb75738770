// The program's command line, outputs, messages and exit statuses.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/events.h"
#include "tests/tools/program.h"

namespace replay {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using Json = nlohmann::json;
using testing::RunProgram;
using testing::RunResult;
using testing::ScratchFolder;
using testing::ScriptPath;

constexpr const char* kCreate =
    "{\"time\":1000,\"pid\":4,\"target_pid\":100,\"behavior\":\"BehaviorProcessCreate\",\"target\":\"C:\\\\bad.exe\"}\n";

/// Three events by which the process 100 damages a file.
std::string Overwrite(const std::string& file, int time) {
  const auto event = [&](const char* behavior, int offset, const std::string& target, int target_pid) {
    return R"({"time":)" + std::to_string(time + offset) + R"(,"pid":100,"target_pid":)" + std::to_string(target_pid) +
           R"(,"behavior":")" + behavior + R"(","target":"C:\\Docs\\)" + target + "\"}\n";
  };
  return event("BehaviorCreate", 0, file, 10) + event("BehaviorRead", 10, file, 10) +
         event("BehaviorWrite", 20, file + "|10", 0);
}

class ZtreplayTest : public ::testing::Test {
 protected:
  /// Checks that a run failed with exactly this message and wrote nothing else.
  static void ExpectFailure(const RunResult& run, const std::string& message) {
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, message + "\n");
    EXPECT_EQ(run.out, "");
  }

  ScratchFolder folder_;
};

TEST_F(ZtreplayTest, SummarisesForPeople) {
  const std::string capture = folder_.Write("run.jsonl", kCreate + Overwrite("a.doc", 2000) + Overwrite("b.doc", 3000));
  const RunResult run = RunProgram({capture, "--alarm", "4"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(run.out, StartsWith("1 process reached the alarm (score 4).\n"
                                  "\n"
                                  "The culprit, to be stopped with its descendants:\n"
                                  "\n"
                                  "  C:\\bad.exe\n"
                                  "    process id  100\n"
                                  "    parent      not known\n"
                                  "    score       4\n"
                                  "    alarm       event 7 at 3020 ticks (0.000 s), 2 files damaged by then\n"
                                  "    to restore  2 files, 2 of them overwritten in place\n"
                                  "    quarantine  2 paths\n"
                                  "    family      100 C:\\bad.exe\n"
                                  "\n" +
                                  capture + ": 7 rows read, 7 events fed; "));
}

TEST_F(ZtreplayTest, EqualRunsGiveEqualJson) {
  const std::string script = ScriptPath("delete_then_write_similar.jsonl");
  const Json summary = Json::parse(RunProgram({script, "--json"}).out);
  EXPECT_FALSE(summary.contains("seconds"));
  EXPECT_FALSE(summary.contains("events_per_second"));
  EXPECT_EQ(RunProgram({script, "--json"}).out, RunProgram({script, "--json"}).out);
}

TEST_F(ZtreplayTest, MessagesShowNothingThatSteersATerminal) {
  const std::string end = "\xEF\xBF\xBD[31m";
  for (const char* line :
       {R"({"time":1,"pid":1,"behavior":"BehaviorRead","\u001b[31m":1})", R"({"time":1,"pid":1,"behavior":"\u001b[31m"})",
        R"({"call":"\u001b[31m"})", R"({"time":"\u001b[31m","pid":1,"behavior":"BehaviorRead"})"}) {
    const RunResult run = RunProgram({folder_.Write("bad.jsonl", line)});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr(end)) << line;
    EXPECT_THAT(run.err, Not(HasSubstr("\x1B"))) << line;
  }
}

TEST_F(ZtreplayTest, TheAlarmDecidesTheExitStatus) {
  const std::string capture = folder_.Write("run.jsonl", kCreate + Overwrite("a.doc", 2000) + Overwrite("b.doc", 3000));
  EXPECT_EQ(RunProgram({capture, "--alarm", "4"}).status, 1);
  EXPECT_EQ(RunProgram({capture, "--alarm", "5"}).status, 0);
}

TEST_F(ZtreplayTest, SummarisesAsJson) {
  const RunResult run = RunProgram({ScriptPath("delete_then_write_similar.jsonl"), "--json"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "");
  const Json summary = Json::parse(run.out);
  EXPECT_EQ(summary["rows_read"], 14);
  EXPECT_EQ(summary["events_fed"], 13);
  EXPECT_EQ(summary["other_calls"], 1);
  EXPECT_EQ(summary["alarm"], 64);
  ASSERT_EQ(summary["alarmed"].size(), 1U);
  const Json& process = summary["alarmed"][0];
  EXPECT_EQ(process["pid"], 200);
  EXPECT_EQ(process["score"], 216);
  EXPECT_EQ(process["alarm_event"], 13);
  EXPECT_EQ(process["alarm_time"], 2240);
  EXPECT_EQ(process["files_damaged_by_alarm"], 3);
  EXPECT_EQ(process["files_to_restore"], 3);
  EXPECT_EQ(process["files_overwritten"], 0);
}

TEST_F(ZtreplayTest, ListsTheFilesToRestoreOfEveryProcessThatReachedTheAlarm) {
  // The first process loses its id to the second before the capture ends.
  const RunResult run =
      RunProgram({ScriptPath("process_id_is_reused.jsonl"), "--alarm", "2", "--restore-list", folder_.Path("list")});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(folder_.Read("list"), "C:\\Docs\\Alpha.doc\nC:\\Docs\\Beta.doc\n");
}

TEST_F(ZtreplayTest, TheRestoreListOfAQuietCaptureIsEmpty) {
  const RunResult run = RunProgram({ScriptPath("process_id_is_reused.jsonl"), "--restore-list", "-"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr("No process reached the alarm (score 64)."));
}

TEST_F(ZtreplayTest, ExplainsEachPenalty) {
  const RunResult run = RunProgram({ScriptPath("parents_are_charged.jsonl"), "--explain", "-"});
  std::vector<Json> lines;
  for (std::size_t start = 0; start < run.out.size();) {
    const std::size_t end = run.out.find('\n', start);
    lines.push_back(Json::parse(run.out.substr(start, end - start)));
    start = end + 1;
  }
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0]["event"], 5);
  EXPECT_EQ(lines[0]["process"]["pid"], 701);
  ASSERT_EQ(lines[0]["ancestors"].size(), 1U);
  EXPECT_EQ(lines[0]["ancestors"][0]["pid"], 700);
  EXPECT_EQ(lines[1]["event"], 14);
  EXPECT_EQ(lines[1]["ancestors"].size(), 0U);  // The parent has been charged for this file before.
  EXPECT_EQ(lines[2]["event"], 17);
  EXPECT_EQ(lines[2]["file"], "c:\\docs\\gamma.doc");
  EXPECT_EQ(lines[2]["ancestors"][0]["score_after"], 4);
}

TEST_F(ZtreplayTest, ExplanationsNameTheSimilarFile) {
  const RunResult run = RunProgram({ScriptPath("learned_extension.jsonl"), "--explain", "-"});
  const Json line = Json::parse(run.out.substr(0, run.out.find('\n')));
  EXPECT_EQ(line["event"], 11);
  EXPECT_EQ(line["similar_file"], "c:\\work\\notes.docx");
  EXPECT_EQ(line["copy"], "c:\\work\\notes.enc");
  EXPECT_EQ(line["factor"], 6);
}

TEST_F(ZtreplayTest, TheEngineIdentifierGoesIntoResults) {
  const RunResult run = RunProgram({ScriptPath("overwrite_in_place.jsonl"), "--engine-id", "9", "--results", "-"});
  EXPECT_THAT(run.out, HasSubstr("\"engine_id\":9,"));
  EXPECT_THAT(run.out, Not(HasSubstr("\"engine_id\":1,")));
}

TEST_F(ZtreplayTest, ResetsScoresInEventTime) {
  // One second between the two files, and a reset after each half that takes scores away when their penalty is 0.4 s old.
  const std::string capture = folder_.Write("run.jsonl", kCreate + Overwrite("a.doc", 2000) + Overwrite("b.doc", 10002000));
  EXPECT_THAT(RunProgram({capture, "--results", "-"}).out, EndsWith("\"line\":7,\"call\":\"ZtInsertLog\",\"result\":4}\n"));
  const RunResult reset =
      RunProgram({capture, "--results", "-", "--reset-every", "0.5", "--score-age", "0.4", "--events", folder_.Path("events")});
  EXPECT_THAT(reset.out, EndsWith("\"line\":7,\"call\":\"ZtInsertLog\",\"result\":2}\n"));
  EXPECT_THAT(reset.err, HasSubstr("resets: 2\n"));
  // The events hold the two resets, so they replay to the same without the options.
  EXPECT_THAT(RunProgram({folder_.Path("events"), "--results", "-"}).out,
              EndsWith("\"line\":9,\"call\":\"ZtInsertLog\",\"result\":2}\n"));
}

TEST_F(ZtreplayTest, ReplaysDumpedRecords) {
  LOG_ITEM records[] = {zt::testing::ProcessCreate(4, 100, 1000), zt::testing::Open(100, L"C:\\a.doc"),
                        zt::testing::Read(100, L"C:\\a.doc"), zt::testing::Write(100, L"C:\\a.doc")};
  const std::string bytes(reinterpret_cast<const char*>(records), sizeof(records));
  const std::string capture = folder_.Write("records", bytes);
  const std::string expected =
      "{\"line\":1,\"call\":\"ZtInsertLog\",\"result\":0}\n{\"line\":2,\"call\":\"ZtInsertLog\",\"result\":0}\n"
      "{\"line\":3,\"call\":\"ZtInsertLog\",\"result\":0}\n{\"line\":4,\"call\":\"ZtInsertLog\",\"result\":2}\n";
  EXPECT_EQ(RunProgram({capture, "--format", "records", "--results", "-"}).out, expected);

  EXPECT_EQ(RunProgram({capture, "--format", "records", "--events", folder_.Path("events")}).status, 0);
  EXPECT_EQ(RunProgram({folder_.Path("events"), "--results", "-"}).out, expected);

  const RunResult cut =
      RunProgram({folder_.Write("cut", bytes.substr(1)), "--format", "records", "--results", folder_.Path("results")});
  EXPECT_EQ(cut.status, 2);
  EXPECT_THAT(cut.err, StartsWith(folder_.Path("cut") + ": "));
  EXPECT_THAT(cut.err, HasSubstr("4543"));  // 4 x 1136 bytes less one.
  EXPECT_FALSE(folder_.Has("results"));
}

TEST_F(ZtreplayTest, BadInputNamesFileAndLineAndLeavesNothing) {
  const std::string capture = folder_.Write("bad.jsonl", std::string(kCreate) + "\nnot json\n" + kCreate);
  const std::size_t before = folder_.Size();
  folder_.Write("former", "former results\n");
  const RunResult run = RunProgram({capture, "--results", folder_.Path("results"), "--events", folder_.Path("former"),
                                    "--explain", folder_.Path("explain"), "--restore-list", folder_.Path("list")});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, StartsWith(capture + ":3: "));
  EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
  EXPECT_EQ(folder_.Size(), before + 1);
  EXPECT_EQ(folder_.Read("former"), "former results\n");
}

TEST_F(ZtreplayTest, NothingIsFedAfterBadInput) {
  const std::string capture = folder_.Write("bad.jsonl", std::string(kCreate) + "{}\n" + kCreate);
  EXPECT_EQ(RunProgram({capture, "--results", "-"}).out, "{\"line\":1,\"call\":\"ZtInsertLog\",\"result\":0}\n");
}

TEST_F(ZtreplayTest, BadStandardInputIsNamed) {
  const RunResult run = RunProgram({"-", "--format", "jsonl"}, folder_.Write("bad", std::string(kCreate) + "[]\n"));
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.err, StartsWith("standard input:2: "));
}

TEST_F(ZtreplayTest, ACaptureOfWhichNothingCanBeFedIsBadInput) {
  const std::string capture = folder_.Write("blank.jsonl", "\n\n");
  ExpectFailure(RunProgram({capture, "--format", "jsonl", "--results", folder_.Path("results")}),
                capture + ": nothing in it could be fed (0 rows read)");
  EXPECT_FALSE(folder_.Has("results"));
}

TEST_F(ZtreplayTest, AMissingCaptureIsBadInput) {
  const RunResult run = RunProgram({folder_.Path("missing"), "--results", folder_.Path("results")});
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.err, StartsWith(folder_.Path("missing") + ": "));
  EXPECT_EQ(folder_.Size(), 0U);
}

TEST_F(ZtreplayTest, BadUseIsRefused) {
  const RunResult none = RunProgram({});
  EXPECT_EQ(none.status, 2);
  EXPECT_EQ(none.out, "");
  EXPECT_THAT(none.err, HasSubstr("CAPTURE"));
  EXPECT_EQ(RunProgram({"c", "--alarm", "0"}).status, 2);
  EXPECT_EQ(RunProgram({"c", "--json", "--results", "-"}).status, 2);
  ExpectFailure(RunProgram({"c", "--results", "-", "--explain", "-"}),
                "ztreplay: --results and --explain cannot both go to standard output\nztreplay --help tells more.");
}

TEST_F(ZtreplayTest, AnswersHelpAndVersion) {
  const RunResult help = RunProgram({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.err, "");
  EXPECT_THAT(help.out, HasSubstr("--restore-list"));
  const RunResult version = RunProgram({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out, "ztreplay " ZTREPLAY_VERSION "\n");
}

TEST_F(ZtreplayTest, OutputsThatCannotBeWrittenAreNamed) {
  ExpectFailure(RunProgram({ScriptPath("overwrite_in_place.jsonl"), "--events", folder_.Path("missing/events")}),
                folder_.Path("missing/events") + ": No such file or directory");
  EXPECT_EQ(folder_.Size(), 0U);
}

TEST_F(ZtreplayTest, NoColorsButOnATerminal) {
  EXPECT_THAT(RunProgram({ScriptPath("overwrite_in_place.jsonl"), "--alarm", "2"}).out, Not(HasSubstr("\x1B")));
}

}  // namespace
}  // namespace replay
