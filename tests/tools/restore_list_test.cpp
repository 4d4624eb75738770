#include "tools/replay/restore_list.h"

#include <gtest/gtest.h>

#include "tests/tools/calls.h"

namespace replay {
namespace {

using Cause = zt::ScoreReport::Cause;

bool KnowsNobody(const ZtProcKey&, zt::ProcessView&) { return false; }

/// Enters a process with the score 64 or, for `alarmed` false, 63, and these paths.
void Enter(ProcessLedger& ledger, ZtProcKey key, bool alarmed, std::vector<std::wstring> paths) {
  CallReports reports;
  reports.scores.push_back({key, Cause::kUpdate, 1, alarmed ? 64 : 63, 0, {}});
  ledger.Apply(reports, 1, 1, KnowsNobody);
  FinalAnswer answer;
  answer.restore_paths = std::move(paths);
  ledger.Find(key)->final_answer = std::move(answer);
}

TEST(WriteRestoreList, WritesEachPathOnceAndSorted) {
  ProcessLedger ledger(64);
  Enter(ledger, {1, 1}, true, {L"C:\\b", L"C:\\\u00E9"});
  Enter(ledger, {2, 1}, true, {L"C:\\a", L"C:\\b"});
  testing::Sink sink;
  WriteRestoreList(ledger, sink.Take(), false);
  EXPECT_EQ(sink.text, "C:\\a\nC:\\b\nC:\\\xC3\xA9\n");
}

TEST(WriteRestoreList, LeavesOutWhoDidNotReachTheAlarm) {
  ProcessLedger ledger(64);
  Enter(ledger, {1, 1}, false, {L"C:\\a"});
  testing::Sink sink;
  WriteRestoreList(ledger, sink.Take(), false);
  EXPECT_EQ(sink.text, "");
}

TEST(WriteRestoreList, APathIsOneLine) {
  ProcessLedger ledger(64);
  Enter(ledger, {1, 1}, true, {L"C:\\a\nC:\\b"});
  testing::Sink sink;
  WriteRestoreList(ledger, sink.Take(), false);
  EXPECT_EQ(sink.text,
            "C:\\a\xEF\xBF\xBD"
            "C:\\b\n");
}

TEST(WriteRestoreList, KeepsNamesWholeButOnATerminal) {
  ProcessLedger ledger(64);
  Enter(ledger, {1, 1}, true,
        {L"C:\\a\x202E"
         L"b\n"});
  testing::Sink file;
  WriteRestoreList(ledger, file.Take(), false);
  EXPECT_EQ(file.text,
            "C:\\a\xE2\x80\xAE"
            "b\xEF\xBF\xBD\n");
  testing::Sink terminal;
  WriteRestoreList(ledger, terminal.Take(), true);
  EXPECT_EQ(terminal.text,
            "C:\\a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD\n");
}

}  // namespace
}  // namespace replay
