// Insertion of one event: whom it is fed to, how a penalty is charged, and what is traced.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "engine/inspection.h"
#include "engine/tracing.h"
#include "engine/transition_table.h"
#include "tests/support/engine_test.h"
#include "tests/support/locale_guard.h"
#include "tests/support/state_dump.h"

namespace zt::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const std::wstring kDoc = L"c:\\d\\a.doc";
const std::string kSeparator(106, '=');

// Which lines of a record there are: one for each pass.
std::vector<std::string> PassesOf(TraceCapture& trace) {
  std::vector<std::string> passes;
  for (const std::string& message : trace.TakeMessages()) {
    if (message.rfind("[[ log:", 0) == 0) {
      passes.emplace_back("first");
    } else if (message.rfind("log:", 0) == 0) {
      passes.emplace_back("second");
    }
  }
  return passes;
}

// GoogleTest's own knows no ranges of characters on Windows.
MATCHER_P(MatchesPattern, pattern, "") { return std::regex_match(arg, std::regex(pattern)); }

class LogInsertionTest : public EngineTest {
 protected:
  /// Process 1, its child 10, its grandchild 20.
  void StartFamily() {
    StartProcess(1, 50);
    StartChild(1, 10, 100);
    StartChild(10, 20, 200);
  }
};

// Passes.

TEST_F(LogInsertionTest, FileBehavioursAreFedTwiceAndAllOthersOnce) {
  StartFamily();
  TraceCapture trace(0x2);
  for (const std::uint32_t code : {0x4001U, 0x4002U, 0x4009U, 0x400AU, 0x400CU, 0x5000U, 0x7FFEU, 0x7FFFU}) {
    trace.Take();
    Insert(MakeEvent(code, 10, kDoc, 1));
    EXPECT_THAT(PassesOf(trace), ElementsAre("first", "second")) << code;
  }
  for (const std::uint32_t code :
       {0x0U, 0x3FFFU, 0x4000U, 0x8000U, 0x8001U, 0xC001U, 0xC002U, 0xC003U, 0x14001U, 0xFFFFFFFFU}) {
    trace.Take();
    Insert(MakeEvent(code, 10, kDoc, 1));
    EXPECT_THAT(PassesOf(trace), ElementsAre("first")) << code;
  }
}

TEST_F(LogInsertionTest, TheSecondPassFeedsTheParentAndNobodyElse) {
  StartFamily();
  Insert(Open(20, kDoc));
  EXPECT_NE(FileOf(20, kDoc), nullptr);
  EXPECT_NE(FileOf(10, kDoc), nullptr);
  EXPECT_EQ(FileOf(1, kDoc), nullptr);
}

TEST_F(LogInsertionTest, EachPassWorksOnItsOwnRecords) {
  StartFamily();
  Track(10, kDoc, ZT_READ_START);
  Insert(Open(20, kDoc));
  EXPECT_EQ(FileOf(20, kDoc)->State, ZT_OPEN_EXISTING);
  EXPECT_EQ(FileOf(10, kDoc)->State, ZT_READ_START);
}

TEST_F(LogInsertionTest, AProcessWithoutAParentIsFedOnce) {
  StartProcess(10);
  TraceCapture trace(0x2);
  trace.Take();
  Insert(Open(10, kDoc));
  EXPECT_THAT(PassesOf(trace), ElementsAre("first"));
}

TEST_F(LogInsertionTest, AParentWhoseIdHasZeroLowBitsIsNotFedButIsCharged) {
  constexpr std::uint64_t kZeroLow = 0x700000000;
  StartProcess(kZeroLow, 50);
  StartChild(kZeroLow, 10);
  ItemOf(kZeroLow)->Score = 5;
  TraceCapture trace(0x2);
  trace.Take();
  EXPECT_EQ(Overwrite(10, kDoc), 10);
  EXPECT_THAT(PassesOf(trace), ElementsAre("first", "first", "first"));
  EXPECT_EQ(ScoreOf(kZeroLow), 10);
  EXPECT_EQ(FileOf(kZeroLow, kDoc)->State, ZT_UNKNOWN);
}

TEST_F(LogInsertionTest, AParentThatLeftTheTreeIsLookedForAndNotFound) {
  StartProcess(10);
  EntryOf(10)->parentKey = {77, 7};
  TraceCapture trace(0x2);
  trace.Take();
  Insert(Open(10, kDoc));
  const std::vector<std::string> messages = trace.TakeMessages();
  EXPECT_THAT(messages, Contains(HasSubstr("[[ log: ")));
  ASSERT_GE(messages.size(), 5U);
  const std::vector<std::string> tail(messages.end() - 5, messages.end() - 1);
  EXPECT_THAT(tail, ElementsAre(kSeparator, "log: Time 0 Pid 10 Tid 0 path  behavior 0x004001 target_pid 1 target c:\\d\\a.doc",
                                "Process not found in tree", kSeparator));
}

TEST_F(LogInsertionTest, AnUnknownProcessEndsTheEventAfterOnePass) {
  TraceCapture trace(0x2);
  trace.Take();
  EXPECT_EQ(Insert(Open(10, kDoc)), 0);
  EXPECT_THAT(PassesOf(trace), ElementsAre("first"));
}

// Keys.

TEST_F(LogInsertionTest, OnlyACreationByAnUnknownProcessKeepsSilentAboutItsStartTime) {
  TraceCapture trace(0x2);
  trace.Take();
  Insert(ProcessCreate(5, 10, 100));
  EXPECT_THAT(trace.TakeMessages(), Not(Contains(HasSubstr("Unable to find timestamp"))));
  for (const std::uint32_t code : {0x4001U, 0xC001U, 0xC002U, 0x8001U}) {
    Insert(MakeEvent(code, 6, kDoc));
    EXPECT_EQ(trace.TakeMessages().front(), "Unable to find timestamp for PID 6") << code;
  }
}

TEST_F(LogInsertionTest, AKnownProcessIsFoundByItsIdWhateverTheEventsTime) {
  StartProcess(10, 100);
  Insert(At(Open(10, kDoc), 99999));
  EXPECT_NE(FileOf(10, kDoc), nullptr);
}

// A process that was never created under its id: only the times tell that the event belongs to it.
TEST_F(LogInsertionTest, AnUnknownIdTakesTheEventsTimeAsItsStart) {
  StartProcess(10, 100);
  core().StartTimes.erase(10);
  Insert(At(Open(10, L"c:\\late.doc"), 101));
  Insert(At(Open(10, L"c:\\exact.doc"), 100));
  ProcessItem& item = core().Tree.Find({10, 100})->Item;
  EXPECT_FALSE(HasFile(item, L"c:\\late.doc"));
  EXPECT_TRUE(HasFile(item, L"c:\\exact.doc"));
}

TEST_F(LogInsertionTest, TheCallersRecordIsNotWritten) {
  StartProcess(10);
  LOG_ITEM log = Write(10, L"C:\\D\\A.doc");
  LOG_ITEM copy;
  std::memcpy(&copy, &log, sizeof(log));
  ZtInsertLog(engine_, &log);
  EXPECT_EQ(std::memcmp(&copy, &log, sizeof(log)), 0);
}

// Charges.

TEST_F(LogInsertionTest, APenaltyMultipliesTheScoreAndMarksTheFile) {
  StartProcess(10);
  ItemOf(10)->Score = 3;
  OpenAndRead(10, kDoc);
  EXPECT_EQ(Insert(At(Write(10, kDoc), 500)), 6);
  EXPECT_EQ(ScoreOf(10), 6);
  EXPECT_EQ(ItemOf(10)->ScoreTime, 500);
  EXPECT_TRUE(FileOf(10, kDoc)->penalized);
}

TEST_F(LogInsertionTest, ResultsOfZeroAndOneAreNoPenalty) {
  StartProcess(10);
  ItemOf(10)->Score = 5;
  EXPECT_EQ(Insert(Open(10, kDoc)), 0);               // A callback that returned 0.
  EXPECT_EQ(Insert(SizeChange(10, kDoc)), 0);         // No step.
  EXPECT_EQ(Insert(MakeEvent(0x8001, 10, kDoc)), 0);  // No file behaviour.
  EXPECT_EQ(ScoreOf(10), 5);
  EXPECT_EQ(ItemOf(10)->ScoreTime, 0);
  EXPECT_FALSE(FileOf(10, kDoc)->penalized);
}

TEST_F(LogInsertionTest, ASecondPenaltyForAFileMultipliesNothing) {
  StartFamily();
  Overwrite(20, kDoc);
  FileOf(20, kDoc)->State = ZT_READ_START;
  const std::vector<std::int32_t> before = {ScoreOf(1), ScoreOf(10), ScoreOf(20)};
  TraceCapture trace(0x2 | 0x4);
  trace.Take();
  EXPECT_EQ(Insert(At(Write(20, kDoc), 900)), 0);
  const std::vector<std::string> messages = trace.TakeMessages();
  ASSERT_GE(messages.size(), 3U);
  EXPECT_EQ(*(messages.end() - 3), "ProcKey: (20, 200) Path: c:\\d\\a.doc Penalty: 2");
  EXPECT_EQ(*(messages.end() - 2), "File already penalized\n");
  EXPECT_THAT((std::vector<std::int32_t>{ScoreOf(1), ScoreOf(10), ScoreOf(20)}), before);
  EXPECT_EQ(ItemOf(20)->ScoreTime, 0);
}

TEST_F(LogInsertionTest, APenaltyOfAnotherFileMultipliesAgain) {
  StartProcess(10);
  EXPECT_EQ(Overwrite(10, L"c:\\a.doc"), 2);
  EXPECT_EQ(Overwrite(10, L"c:\\b.doc"), 4);
  EXPECT_EQ(Overwrite(10, L"c:\\c.doc"), 8);
}

TEST_F(LogInsertionTest, EveryAncestorIsChargedHoweverFarUp) {
  StartProcess(1, 50);
  for (std::uint64_t pid = 2; pid <= 50; ++pid) {
    StartChild(pid - 1, pid);
  }
  OpenAndRead(50, kDoc);
  EXPECT_EQ(Insert(At(Write(50, kDoc), 500)), 2);
  for (std::uint64_t pid = 1; pid <= 50; ++pid) {
    EXPECT_EQ(ScoreOf(pid), 2) << pid;
    EXPECT_EQ(ItemOf(pid)->ScoreTime, 500) << pid;
    ASSERT_NE(FileOf(pid, kDoc), nullptr) << pid;
    EXPECT_TRUE(FileOf(pid, kDoc)->penalized) << pid;
  }
}

TEST_F(LogInsertionTest, SiblingsAndChildrenAreNotCharged) {
  StartFamily();
  StartChild(1, 11);
  Overwrite(10, kDoc);
  EXPECT_EQ(ScoreOf(1), 2);
  EXPECT_EQ(ScoreOf(10), 2);
  EXPECT_EQ(ScoreOf(11), 1);
  EXPECT_EQ(ScoreOf(20), 1);
}

TEST_F(LogInsertionTest, ChargingStopsAtTheFirstMissingAncestor) {
  StartFamily();
  EntryOf(10)->parentKey = {77, 7};
  Overwrite(20, kDoc);
  EXPECT_EQ(ScoreOf(10), 2);
  EXPECT_EQ(ScoreOf(1), 1);
}

TEST_F(LogInsertionTest, AFileChargesAnAncestorOnceForAllItsDescendants) {
  StartFamily();
  StartChild(10, 21);
  Overwrite(20, kDoc);
  Overwrite(21, kDoc);
  EXPECT_EQ(ScoreOf(20), 2);
  EXPECT_EQ(ScoreOf(21), 2);
  EXPECT_EQ(ScoreOf(10), 2);
  EXPECT_EQ(ScoreOf(1), 2);
}

TEST_F(LogInsertionTest, AnIgnoredProcessStaysAtZeroAndItsFileIsMarked) {
  StartProcess(10);
  ZtUpdateScore(engine_, Handle(10), 0);
  EXPECT_EQ(Overwrite(10, kDoc), 0);
  EXPECT_EQ(ScoreOf(10), 0);
  EXPECT_TRUE(FileOf(10, kDoc)->penalized);
}

TEST_F(LogInsertionTest, TheProductWrapsAt32Bits) {
  StartProcess(10);
  ItemOf(10)->Score = 0x60000000;
  Track(10, kDoc, ZT_WRITE_SIMILAR);
  EXPECT_EQ(Insert(Delete(10, kDoc)), 0x40000000);  // Six times 0x60000000 is 0x2'40000000.
  EXPECT_EQ(ScoreOf(10), 0x40000000);
}

TEST_F(LogInsertionTest, AGrandparentsScoreMayWrapToZero) {
  StartFamily();
  ItemOf(1)->Score = INT32_MIN;
  EXPECT_EQ(Overwrite(20, kDoc), 2);
  EXPECT_EQ(ScoreOf(1), 0);
}

// Which pass the penalty and the path come from.

TEST_F(LogInsertionTest, APenaltyOfTheParentPassIsDroppedWhenTheProcessHasNoSuchFile) {
  StartFamily();
  Track(10, kDoc, ZT_READ_START);
  TraceCapture trace(0x2 | 0x4);
  trace.Take();
  EXPECT_EQ(Insert(Write(20, kDoc)), 0);
  const std::vector<std::string> messages = trace.TakeMessages();
  ASSERT_GE(messages.size(), 3U);
  EXPECT_EQ(*(messages.end() - 3), "ProcKey: (20, 200) Path: c:\\d\\a.doc Penalty: 2");
  EXPECT_EQ(*(messages.end() - 2), "Cannot find file in file context\n");
  EXPECT_EQ(FileOf(10, kDoc)->State, ZT_OVERWRITE);
  EXPECT_FALSE(FileOf(10, kDoc)->penalized);
  EXPECT_EQ(FileOf(20, kDoc), nullptr);
  for (const std::uint64_t pid : {1U, 10U, 20U}) {
    EXPECT_EQ(ScoreOf(pid), 1) << pid;
  }
}

TEST_F(LogInsertionTest, APenaltyOfTheParentPassIsChargedToTheProcessThatHasTheFile) {
  StartFamily();
  Track(10, kDoc, ZT_READ_START);
  Track(20, kDoc, ZT_OPEN_EXISTING);
  EXPECT_EQ(Insert(Write(20, kDoc)), 2);
  EXPECT_EQ(FileOf(20, kDoc)->State, ZT_OPEN_EXISTING);
  EXPECT_TRUE(FileOf(20, kDoc)->penalized);
  EXPECT_TRUE(FileOf(10, kDoc)->penalized);
  EXPECT_EQ(ScoreOf(20), 2);
  EXPECT_EQ(ScoreOf(10), 2);
  EXPECT_EQ(ScoreOf(1), 2);
}

// The process overwrites its own file (2); for its parent the same write is a copy of a deleted file (6).
TEST_F(LogInsertionTest, TheLargerPenaltyOfBothPassesIsCharged) {
  StartFamily();
  const std::wstring copy = kDoc + L".enc";
  Track(20, copy, ZT_READ_START);
  Track(20, kDoc, ZT_UNKNOWN);
  Track(10, kDoc, ZT_DELETE_ORG);
  EXPECT_EQ(Insert(Write(20, copy)), 6);
  EXPECT_TRUE(FileOf(20, kDoc)->penalized);
  EXPECT_FALSE(FileOf(20, copy)->penalized);
  EXPECT_EQ(ScoreOf(20), 6);
  EXPECT_EQ(ScoreOf(10), 6);
}

TEST_F(LogInsertionTest, TheLastCallbackGivesThePathAlsoWhenItReturnedZero) {
  StartFamily();
  Track(20, kDoc, ZT_READ_START);
  Track(10, kDoc, ZT_SECTION_SYNC).Path = MakePath(L"C:\\D\\First.doc");  // Its write is refused: no similar file was found.
  TraceCapture trace(0x2);
  trace.Take();
  EXPECT_EQ(Insert(Write(20, kDoc)), 0);
  const std::vector<std::string> messages = trace.TakeMessages();
  EXPECT_THAT(messages, Contains("ProcKey: (20, 200) Path: c:\\d\\first.doc Penalty: 2"));
  EXPECT_THAT(messages, Contains("Cannot find file in file context\n"));
  EXPECT_EQ(ScoreOf(20), 1);
}

TEST_F(LogInsertionTest, ARenamedCopyIsChargedUnderItsFirstName) {
  StartProcess(10);
  OpenAndRead(10, kDoc);
  Insert(Rename(10, kDoc, L"c:\\e\\b.bin"));
  EXPECT_EQ(Insert(Write(10, L"c:\\e\\b.bin")), 2);
  EXPECT_TRUE(FileOf(10, kDoc)->penalized);
  EXPECT_FALSE(FileOf(10, L"c:\\e\\b.bin")->penalized);
  EXPECT_EQ(Insert(Write(10, kDoc)), 0);
  EXPECT_EQ(ScoreOf(10), 2);
}

TEST_F(LogInsertionTest, ThePathIsLoweredBeforeItIsLookedUp) {
  StartProcess(10);
  EXPECT_EQ(Overwrite(10, L"C:\\Dir\\Report.DOC"), 2);
  EXPECT_TRUE(FileOf(10, L"c:\\dir\\report.doc")->penalized);
}

// Traces.

TEST_F(LogInsertionTest, APenalisedWriteIsTracedFromTheFirstLineToTheLast) {
  StartProcess(10);
  Insert(Open(10, L"C:\\D\\a.doc", 40));
  Insert(Read(10, L"C:\\D\\a.doc"));
  TraceCapture trace(0x2 | 0x4);
  trace.Take();
  Insert(At(Write(10, L"C:\\D\\a.doc", 0, L"30"), 500));
  const std::vector<TraceLine> lines = trace.Take();
  std::vector<std::string> messages(lines.size());
  std::transform(lines.begin(), lines.end(), messages.begin(),
                 [](const TraceLine& line) { return line.level + ": " + line.message; });
  EXPECT_THAT(
      messages,
      ElementsAre("debug: " + kSeparator,  //
                  "debug: [[ log: Time 500 Pid 10 Tid 0 path  behavior 0x004004 target_pid 0 target C:\\D\\a.doc|30 ]]",
                  "debug: File c:\\d\\a.doc needs to be restored",
                  "debug: PreWrite:: Offset: 0, Last offset: -1, Filesize: 40, Diff: 40, Name: c:\\d\\a.doc, Length: 30 (30)",
                  "debug: Next State from 2 with 0x004004",  //
                  "debug: Callback: ReadWrite",              //
                  "debug: ZT_OVERWRITE",                     //
                  "debug: Adding c:\\d\\a.doc to the quarantine list of pid 10",
                  "debug: " + kSeparator,  //
                  "debug: ProcKey: (10, 100) Path: c:\\d\\a.doc Penalty: 2",
                  "warning: |--- [SCORE INCREASED] PID:10 score: 2, TimeStamp: 500 ---|\n",
                  MatchesPattern("debug: Time past: [0-9]+ nanoseconds")));
}

TEST_F(LogInsertionTest, TheAncestorsChargesAreTracedFromTheParentUpwards) {
  StartFamily();
  OpenAndRead(20, kDoc);
  TraceCapture trace(0x2 | 0x4);
  trace.Take();
  Insert(At(Write(20, kDoc), 500));
  std::vector<std::string> messages = trace.TakeMessages();
  const auto charge = std::find_if(messages.begin(), messages.end(),
                                   [](const std::string& message) { return message.rfind("ProcKey: ", 0) == 0; });
  messages.erase(messages.begin(), charge);
  EXPECT_THAT(messages, ElementsAre("ProcKey: (20, 200) Path: c:\\d\\a.doc Penalty: 2",  //
                                    "Parent pid 10", "Parent Penalty 2",                 //
                                    "Parent pid 1", "Parent Penalty 2, new file added to proc 1",
                                    "|--- [SCORE INCREASED] PID:20 score: 2, TimeStamp: 500 ---|\n",
                                    MatchesPattern("Time past: [0-9]+ nanoseconds")));
}

TEST_F(LogInsertionTest, TheRiseOfAScoreIsAWarningAndNeedsTheWarningBitAlone) {
  StartProcess(10);
  OpenAndRead(10, kDoc);
  TraceCapture trace(0x4);
  trace.Take();
  Insert(At(Write(10, kDoc), -1));
  const std::vector<TraceLine> lines = trace.Take();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].level, "warning");
  EXPECT_EQ(lines[0].message, "|--- [SCORE INCREASED] PID:10 score: 2, TimeStamp: -1 ---|\n");
}

TEST_F(LogInsertionTest, WithoutTheWarningBitTheRiseOfAScoreIsNotTraced) {
  StartProcess(10);
  OpenAndRead(10, kDoc);
  TraceCapture trace(0x1 | 0x2);
  trace.Take();
  Insert(Write(10, kDoc));
  const std::vector<std::string> messages = trace.TakeMessages();
  EXPECT_THAT(messages, Contains("ZT_OVERWRITE"));
  EXPECT_THAT(messages, Not(Contains(HasSubstr("SCORE INCREASED"))));
}

TEST_F(LogInsertionTest, EveryCallEndsWithItsElapsedTime) {
  TraceCapture trace(0x2);
  trace.Take();
  Insert(ProcessExit(1));
  Insert(MakeEvent(0x8001, 1, L"x"));
  std::vector<std::string> last_lines;
  for (const std::string& message : trace.TakeMessages()) {
    if (message.rfind("Time past: ", 0) == 0) {
      last_lines.push_back(message);
    }
  }
  EXPECT_THAT(last_lines,
              ElementsAre(MatchesPattern("Time past: [0-9]+ nanoseconds"), MatchesPattern("Time past: [0-9]+ nanoseconds")));
}

/// Switches debug lines on or off while a call runs.
class FlagsChanger : public EngineObserver {
 public:
  explicit FlagsChanger(std::uint64_t flags) : flags_(flags) {}
  void OnStep(const StepReport&) override { TraceFlags = flags_; }
  void OnScore(const ScoreReport&) override {}
  void OnSimilarFile(const ZtProcKey&, std::wstring_view, std::wstring_view) override {}

 private:
  std::uint64_t flags_;
};

TEST_F(LogInsertionTest, TheElapsedTimeIsTracedWhereTheDebugBitIsSetDuringTheCall) {
  StartProcess(10);
  Insert(Open(10, kDoc));
  TraceCapture trace(0x1);
  FlagsChanger changer(TraceFlags | 0x2);
  SetEngineObserver(engine_, &changer);
  trace.Take();
  Insert(Read(10, kDoc));
  EXPECT_THAT(trace.TakeMessages().back(), MatchesPattern("Time past: [0-9]+ nanoseconds"));
}

TEST_F(LogInsertionTest, NothingIsTracedAfterTheDebugBitIsClearedDuringTheCall) {
  StartProcess(10);
  Insert(Open(10, kDoc));
  TraceCapture trace(0x2);
  FlagsChanger changer(TraceFlags & ~std::uint64_t{0x2});
  SetEngineObserver(engine_, &changer);
  trace.Take();
  Insert(Read(10, kDoc));
  EXPECT_EQ(trace.TakeMessages().back(), "ZT_READ_START");
}

TEST_F(LogInsertionTest, BothSeparatorsCarryTheirOwnStatementsNumber) {
  TraceCapture trace(0x2);
  trace.Take();
  Insert(ProcessExit(1));
  std::vector<std::int32_t> numbers;
  for (const TraceLine& line : trace.Take()) {
    if (line.message == kSeparator) {
      numbers.push_back(line.line);
    }
  }
  ASSERT_EQ(numbers.size(), 2U);
  EXPECT_LT(numbers[0], numbers[1]);
}

TEST_F(LogInsertionTest, ALocaleThatTheHostSetsDuringASeriesLosesNoPenalty) {
  StartProcess(10);
  OpenAndRead(10, L"C:\\\u00C4RZTE\\a.doc");
  const LocaleGuard locale;
  if (!locale.KnowsUmlauts()) {
    GTEST_SKIP() << "no locale of this system changes letters beyond A to Z";
  }
  EXPECT_EQ(Insert(Write(10, L"C:\\\u00C4RZTE\\a.doc")), 2);
}

TEST_F(LogInsertionTest, WithoutAnyBitNothingIsTraced) {
  StartFamily();
  TraceCapture trace(0);
  trace.Take();
  EXPECT_EQ(Overwrite(20, kDoc), 2);
  EXPECT_THAT(trace.Take(), IsEmpty());
}

}  // namespace
}  // namespace zt::testing
