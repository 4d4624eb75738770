// Process creation and exit, and the frame around every event.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/engine_test.h"
#include "tests/support/state_dump.h"

namespace zt::testing {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;
using ::testing::StartsWith;

const std::string kSeparator(106, '=');

// The messages of one event, without the line of the elapsed time that closes them.
std::vector<std::string> EventMessages(TraceCapture& trace) {
  std::vector<std::string> messages = trace.TakeMessages();
  EXPECT_THAT(messages, Not(IsEmpty()));
  if (!messages.empty()) {
    EXPECT_THAT(messages.back(), StartsWith("Time past: "));
    messages.pop_back();
  }
  return messages;
}

class ProcessEventsTest : public EngineTest {
 protected:
  std::uint32_t LiveOf(std::uint64_t pid) { return EntryOf(pid)->LiveCount; }
};

// Creation.

TEST_F(ProcessEventsTest, AProcessOfAnUnknownCreatorIsEnteredWithoutALink) {
  EXPECT_EQ(Insert(ProcessCreate(5, 10, 100, L"C:\\App.exe")), 0);
  ASSERT_EQ(core().Tree.size(), 1U);
  const ProcessTree::Entry* entry = core().Tree.Find({10, 100});
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->key, (ZtProcKey{10, 100}));
  EXPECT_EQ(entry->parentKey, (ZtProcKey{0, 0}));
  EXPECT_THAT(entry->children, IsEmpty());
  EXPECT_EQ(entry->LiveCount, 1U);
  EXPECT_EQ(entry->Exited, 0);
  EXPECT_THAT(core().StartTimes, ElementsAre(Pair(10U, 100)));
}

TEST_F(ProcessEventsTest, ANewProcessBeginsWithTheScoreOneAndNothingElse) {
  StartProcess(10, 100, L"C:\\App.exe");
  const ProcessItem* item = ItemOf(10);
  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->Exiting, 0U);
  EXPECT_EQ(item->Score, 1);
  EXPECT_EQ(item->LastWriteLength, 0xFFFFFFFF);
  EXPECT_EQ(item->LastWriteOffset, 0xFFFFFFFF);
  EXPECT_EQ(item->LastWriteDiff, 0xFFFFFFFF);
  EXPECT_EQ(item->Pid, 10U);
  EXPECT_EQ(item->ScoreTime, 0);
  EXPECT_THAT(item->files, IsEmpty());
  EXPECT_TRUE(item->QuarantineList.empty() && item->CreatedFilesList.empty());
  EXPECT_EQ(item->NameDiff + item->PrevFolder, u"");
  EXPECT_EQ(item->ImagePath, L"C:\\App.exe");
}

TEST_F(ProcessEventsTest, AChildIsLinkedToTheNewestProcessOfItsCreator) {
  StartProcess(1, 50);
  StartProcess(1, 60);
  StartChild(1, 10, 200);
  EXPECT_EQ(EntryOf(10)->parentKey, (ZtProcKey{1, 60}));
  EXPECT_THAT(core().Tree.Find({1, 60})->children, ElementsAre(ZtProcKey{10, 200}));
  EXPECT_THAT(core().Tree.Find({1, 50})->children, IsEmpty());
}

TEST_F(ProcessEventsTest, ChildrenAreListedInOrderOfCreation) {
  StartProcess(1, 50);
  StartChild(1, 30, 300);
  StartChild(1, 10, 400);
  StartChild(1, 20, 100);
  EXPECT_THAT(EntryOf(1)->children, ElementsAre(ZtProcKey{30, 300}, ZtProcKey{10, 400}, ZtProcKey{20, 100}));
}

TEST_F(ProcessEventsTest, EachCreationRaisesTheLiveCountsOfAllAncestors) {
  StartProcess(1, 50);
  StartChild(1, 2);
  StartChild(2, 3);
  StartChild(2, 4);
  EXPECT_EQ(LiveOf(1), 4U);
  EXPECT_EQ(LiveOf(2), 3U);
  EXPECT_EQ(LiveOf(3), 1U);
  EXPECT_EQ(LiveOf(4), 1U);
}

TEST_F(ProcessEventsTest, TheCreatorsLineIsScoredWithoutEffect) {
  StartProcess(1, 50);
  ItemOf(1)->Score = 5;
  EXPECT_EQ(Insert(ProcessCreate(1, 10, 200, L"C:\\bcrypt.dll")), 0);
  EXPECT_EQ(ScoreOf(1), 5);
  EXPECT_EQ(ScoreOf(10), 1);
}

TEST_F(ProcessEventsTest, TheImagePathLosesItsDevicePrefixAndKeepsItsLetterCase) {
  StartProcess(10, 100, L"\\??\\C:\\Windows\\NotePad.EXE");
  EXPECT_EQ(ItemOf(10)->ImagePath, L"C:\\Windows\\NotePad.EXE");
  StartProcess(11, 100, L"\\??\\c:\\windows\\notepad.exe");
  EXPECT_EQ(ItemOf(11)->ImagePath, L"c:\\windows\\notepad.exe");
}

TEST_F(ProcessEventsTest, OnlyOneLeadingDevicePrefixIsRemoved) {
  StartProcess(10, 100, L"\\??\\\\??\\C:\\a.exe");
  EXPECT_EQ(ItemOf(10)->ImagePath, L"\\??\\C:\\a.exe");
  StartProcess(11, 100, L"C:\\??\\a.exe");
  EXPECT_EQ(ItemOf(11)->ImagePath, L"C:\\??\\a.exe");
  StartProcess(12, 100, L"\\\\?\\C:\\a.exe");
  EXPECT_EQ(ItemOf(12)->ImagePath, L"\\\\?\\C:\\a.exe");
  StartProcess(13, 100, L"\\??");
  EXPECT_EQ(ItemOf(13)->ImagePath, L"\\??");
}

TEST_F(ProcessEventsTest, ATargetOfThePrefixAloneYieldsAnEmptyImagePath) {
  StartProcess(10, 100, L"\\??\\");
  ASSERT_NE(ItemOf(10), nullptr);
  EXPECT_EQ(ItemOf(10)->ImagePath, L"");
}

TEST_F(ProcessEventsTest, AnImagePathMayFillTheWholeTarget) {
  const std::wstring image = L"C:\\" + std::wstring(521, L'X');
  StartProcess(10, 100, image);
  EXPECT_EQ(ItemOf(10)->ImagePath, image);
}

TEST_F(ProcessEventsTest, ACreationWithoutATargetEntersNothing) {
  EXPECT_EQ(Insert(ProcessCreate(5, 10, 100, L"")), 0);
  EXPECT_EQ(DumpState(core()), "");
}

TEST_F(ProcessEventsTest, AReusedIdMeansTheNewProcessAndTheOldOneStays) {
  StartProcess(10, 100);
  Overwrite(10, L"c:\\a.doc");
  StartProcess(10, 200);
  EXPECT_EQ(core().StartTimes[10], 200);
  EXPECT_EQ(Overwrite(10, L"c:\\b.doc"), 2);
  ASSERT_EQ(core().Tree.size(), 2U);
  EXPECT_FALSE(HasFile(core().Tree.Find({10, 100})->Item, L"c:\\b.doc"));
  EXPECT_EQ(core().Tree.Find({10, 100})->Item.Score, 2);
  EXPECT_TRUE(HasFile(core().Tree.Find({10, 200})->Item, L"c:\\b.doc"));
}

TEST_F(ProcessEventsTest, ALaterEventWithAnEarlierStartTimeStillNamesTheNewestProcess) {
  StartProcess(10, 200);
  StartProcess(10, 100);
  EXPECT_EQ(core().StartTimes[10], 100);
}

TEST_F(ProcessEventsTest, TheSameCreationTwiceLeavesOneEntryAndTwoLinks) {
  StartProcess(1, 50);
  StartChild(1, 10, 200, L"C:\\first.exe");
  ItemOf(10)->Score = 9;
  StartChild(1, 10, 200, L"C:\\second.exe");
  EXPECT_EQ(core().Tree.size(), 2U);
  EXPECT_EQ(ItemOf(10)->ImagePath, L"C:\\second.exe");
  EXPECT_EQ(ScoreOf(10), 1);
  EXPECT_THAT(EntryOf(1)->children, ElementsAre(ZtProcKey{10, 200}, ZtProcKey{10, 200}));
  EXPECT_EQ(LiveOf(1), 3U);
  EXPECT_EQ(LiveOf(10), 1U);
}

TEST_F(ProcessEventsTest, AProcessCreatedAgainKeepsItsChildrenAndItsExitedFlag) {
  StartProcess(1, 50);
  StartChild(1, 10, 200);
  StartChild(10, 20, 300);
  Insert(ProcessExit(10));
  StartChild(1, 10, 200);
  EXPECT_THAT(EntryOf(10)->children, ElementsAre(ZtProcKey{20, 300}));
  EXPECT_EQ(EntryOf(10)->Exited, 1);
  EXPECT_EQ(ItemOf(10)->Exiting, 0U);
  EXPECT_EQ(LiveOf(10), 1U);
}

TEST_F(ProcessEventsTest, AProcessCreatedAgainByAStrangerKeepsItsParent) {
  StartProcess(1, 50);
  StartChild(1, 10, 200);
  Insert(ProcessCreate(99, 10, 200, L"C:\\again.exe"));
  EXPECT_EQ(EntryOf(10)->parentKey, (ZtProcKey{1, 50}));
  EXPECT_EQ(ItemOf(10)->ImagePath, L"C:\\again.exe");
  EXPECT_EQ(LiveOf(1), 2U);
}

// Cycles.

TEST_F(ProcessEventsTest, AKnownProcessThatCreatesItselfBecomesItsOwnParent) {
  StartProcess(10, 100);
  EXPECT_EQ(Insert(ProcessCreate(10, 10, 100)), 0);
  EXPECT_EQ(EntryOf(10)->parentKey, (ZtProcKey{10, 100}));
  EXPECT_THAT(EntryOf(10)->children, ElementsAre(ZtProcKey{10, 100}));
  EXPECT_EQ(LiveOf(10), 1U);
  EXPECT_EQ(Overwrite(10, L"c:\\a.doc"), 2);
  Insert(ProcessExit(10));
  EXPECT_EQ(LiveOf(10), 0U);
}

// Its id has no start time yet, so its key is (10, 100) by the event's own time: the key that the event enters.
TEST_F(ProcessEventsTest, AnUnknownProcessThatCreatesItselfIsEnteredWithoutALink) {
  TraceCapture trace(0x2);
  trace.Take();
  Insert(ProcessCreate(10, 10, 100));
  EXPECT_THAT(trace.TakeMessages(), Not(Contains("Process not found in tree")));
  EXPECT_EQ(EntryOf(10)->parentKey, (ZtProcKey{0, 0}));
  EXPECT_THAT(EntryOf(10)->children, IsEmpty());
  EXPECT_EQ(LiveOf(10), 1U);
}

TEST_F(ProcessEventsTest, CreatorsOfEachOtherEndEveryClimb) {
  StartProcess(1, 100);
  StartChild(1, 2, 200);
  Insert(ProcessCreate(2, 1, 100));
  EXPECT_EQ(LiveOf(1), 1U);
  EXPECT_EQ(LiveOf(2), 2U);
  EXPECT_EQ(Overwrite(1, L"c:\\a.doc"), 2);
  EXPECT_EQ(ScoreOf(1), 2);
  EXPECT_EQ(ScoreOf(2), 2);
  Insert(ProcessExit(1));
  EXPECT_EQ(LiveOf(1), 0U);
  EXPECT_EQ(LiveOf(2), 1U);
}

TEST_F(ProcessEventsTest, ACycleOfThreeIsChargedOnceEach) {
  StartProcess(1, 100);
  StartChild(1, 2, 200);
  StartChild(2, 3, 200);
  Insert(ProcessCreate(3, 1, 100));
  EXPECT_EQ(LiveOf(1), 1U);
  EXPECT_EQ(LiveOf(2), 3U);
  EXPECT_EQ(LiveOf(3), 2U);
  EXPECT_EQ(Overwrite(2, L"c:\\a.doc"), 2);
  EXPECT_EQ(ScoreOf(1), 2);
  EXPECT_EQ(ScoreOf(2), 2);
  EXPECT_EQ(ScoreOf(3), 2);
}

// Exit.

TEST_F(ProcessEventsTest, AnExitMarksTheProcessAndLowersTheCountsAboveIt) {
  StartProcess(1, 50);
  StartChild(1, 2);
  StartChild(2, 3);
  EXPECT_EQ(Insert(ProcessExit(2)), 0);
  EXPECT_EQ(EntryOf(2)->Exited, 1);
  EXPECT_EQ(ItemOf(2)->Exiting, 1U);
  EXPECT_EQ(LiveOf(1), 2U);
  EXPECT_EQ(LiveOf(2), 1U);
  EXPECT_EQ(LiveOf(3), 1U);
  EXPECT_EQ(EntryOf(1)->Exited, 0);
  EXPECT_EQ(EntryOf(3)->Exited, 0);
}

TEST_F(ProcessEventsTest, ASecondExitChangesNothing) {
  StartProcess(1, 50);
  StartChild(1, 2);
  Insert(ProcessExit(2));
  EntryOf(2)->Exited = 0;  // As a collection leaves it.
  const std::string before = DumpState(core());
  Insert(ProcessExit(2));
  EXPECT_EQ(DumpState(core()), before);
}

TEST_F(ProcessEventsTest, AnExitOfAnUnknownProcessChangesNothing) {
  StartProcess(1, 50);
  const std::string before = DumpState(core());
  EXPECT_EQ(Insert(ProcessExit(99)), 0);
  EXPECT_EQ(DumpState(core()), before);
}

TEST_F(ProcessEventsTest, AnExitCodeWithATargetIsNoExit) {
  StartProcess(10, 100);
  const std::string before = DumpState(core());
  TraceCapture trace(0x2);
  trace.Take();
  EXPECT_EQ(Insert(MakeEvent(BehaviorProcessExit, 10, L"C:\\bcrypt.dll")), 0);
  EXPECT_EQ(DumpState(core()), before);
  EXPECT_THAT(trace.TakeMessages(), Not(Contains("Process is exiting")));
}

TEST_F(ProcessEventsTest, AnExitedProcessKeepsItsRecordsAndIsStillFed) {
  StartProcess(10, 100);
  OpenAndRead(10, L"c:\\a.doc");
  Insert(ProcessExit(10));
  EXPECT_EQ(Insert(Write(10, L"c:\\a.doc")), 2);
}

// 2 is collected before 3, since 3 exited later; 3 then names a parent that is gone.
TEST_F(ProcessEventsTest, CountsChangeOnlyUpToTheFirstMissingAncestor) {
  StartProcess(1, 50);
  StartChild(1, 2);
  StartChild(2, 3);
  Insert(ProcessExit(2));
  core().Tree.CollectExited();
  Insert(ProcessExit(3));
  core().Tree.CollectExited();
  ASSERT_EQ(EntryOf(2), nullptr);
  ASSERT_NE(EntryOf(3), nullptr);
  EXPECT_EQ(LiveOf(1), 1U);

  StartChild(3, 4);
  EXPECT_EQ(LiveOf(4), 1U);
  EXPECT_EQ(LiveOf(3), 1U);
  EXPECT_EQ(LiveOf(1), 1U);
  Insert(ProcessExit(4));
  EXPECT_EQ(LiveOf(4), 0U);
  EXPECT_EQ(LiveOf(3), 0U);
  EXPECT_EQ(LiveOf(1), 1U);
}

TEST_F(ProcessEventsTest, ExitsOfAWholeFamilyBringItsCountToZero) {
  StartProcess(1, 50);
  StartChild(1, 2);
  StartChild(1, 3);
  StartChild(3, 4);
  for (const std::uint64_t pid : {3U, 1U, 4U, 2U}) {
    Insert(ProcessExit(pid));
  }
  for (const std::uint64_t pid : {1U, 2U, 3U, 4U}) {
    EXPECT_EQ(LiveOf(pid), 0U) << pid;
  }
}

// Lines of a known and of an unknown process.

TEST_F(ProcessEventsTest, ALoadOfAWatchedLibraryIsScored) {
  StartProcess(10, 100);
  EXPECT_EQ(Insert(ModuleLoad(10, L"C:\\Windows\\System32\\bcrypt.dll")), 0);
  EXPECT_EQ(ScoreOf(10), 2);
}

TEST_F(ProcessEventsTest, ALoadIsScoredForTheProcessAloneAndNotForItsParent) {
  StartProcess(1, 50);
  StartChild(1, 10);
  Insert(ModuleLoad(10, L"C:\\bcrypt.dll"));
  EXPECT_EQ(ScoreOf(10), 2);
  EXPECT_EQ(ScoreOf(1), 1);
}

TEST_F(ProcessEventsTest, AnEventWithoutATargetIsNotScored) {
  StartProcess(10, 100);
  const std::string before = DumpState(core());
  for (const std::uint32_t code : {BehaviorModuleLoad, BehaviorProcessCreate, BehaviorCreate, BehaviorCreateNew, BehaviorRead,
                                   BehaviorWrite, BehaviorDelete, BehaviorRename, BehaviorSizeChange, BehaviorSectionSync}) {
    EXPECT_EQ(Insert(MakeEvent(code, 10, L"", 77)), 0) << code;
    EXPECT_EQ(DumpState(core()), before) << code;
  }
}

TEST_F(ProcessEventsTest, AFileEventOfAnUnknownProcessChangesNothing) {
  EXPECT_EQ(Overwrite(10, L"c:\\a.doc"), 0);
  EXPECT_EQ(DumpState(core()), "");
}

// Trace lines.

TEST_F(ProcessEventsTest, ACreationByAStrangerIsTraced) {
  TraceCapture trace(0x2);
  trace.Take();
  Insert(ProcessCreate(5, 10, 100, L"\\??\\C:\\App.exe"));
  EXPECT_THAT(
      EventMessages(trace),
      ElementsAre(kSeparator, "[[ log: Time 100 Pid 5 Tid 0 path  behavior 0x00c003 target_pid 10 target \\??\\C:\\App.exe ]]",
                  "PID:5 add new PID:10 100", "ProcCreate: ParentKey(5, 100) ChildKey(10, 100)", "Process not found in tree",
                  kSeparator));
}

TEST_F(ProcessEventsTest, ACreationByAKnownProcessIsTraced) {
  StartProcess(5, 50);
  TraceCapture trace(0x2);
  trace.Take();
  Insert(ProcessCreate(5, 10, 100, L"C:\\App.exe"));
  EXPECT_THAT(
      EventMessages(trace),
      ElementsAre(kSeparator, "[[ log: Time 100 Pid 5 Tid 0 path  behavior 0x00c003 target_pid 10 target C:\\App.exe ]]",
                  "PID:5 add new PID:10 100", "ProcCreate: ParentKey(5, 50) ChildKey(10, 100)", kSeparator));
}

TEST_F(ProcessEventsTest, AnExitIsTracedWhetherOrNotItCounts) {
  StartProcess(10, 100);
  TraceCapture trace(0x2);
  for (int i = 0; i < 2; ++i) {
    trace.Take();
    Insert(ProcessExit(10));
    EXPECT_THAT(EventMessages(trace),
                ElementsAre(kSeparator, "[[ log: Time 0 Pid 10 Tid 0 path  behavior 0x00c002 target_pid 0 target  ]]",
                            "No target string found", "Process is exiting", kSeparator));
  }
}

TEST_F(ProcessEventsTest, AnExitOfAnUnknownProcessIsTracedToo) {
  TraceCapture trace(0x2);
  trace.Take();
  Insert(ProcessExit(99));
  EXPECT_THAT(EventMessages(trace), ElementsAre("Unable to find timestamp for PID 99", kSeparator,
                                                "[[ log: Time 0 Pid 99 Tid 0 path  behavior 0x00c002 target_pid 0 target  ]]",
                                                "No target string found", "Process is exiting", kSeparator));
}

TEST_F(ProcessEventsTest, AnEmptyTargetEndsEachPassAtOnce) {
  StartProcess(1, 50);
  StartChild(1, 10);
  TraceCapture trace(0x2);
  trace.Take();
  Insert(MakeEvent(BehaviorRead, 10, L""));
  const std::string record = "log: Time 0 Pid 10 Tid 0 path  behavior 0x004003 target_pid 0 target ";
  EXPECT_THAT(EventMessages(trace), ElementsAre(kSeparator, "[[ " + record + " ]]", "No target string found", kSeparator,  //
                                                kSeparator, record, "No target string found", kSeparator));
}

TEST_F(ProcessEventsTest, AnEventOfAnUnknownProcessIsTracedWithItsId) {
  TraceCapture trace(0x2);
  trace.Take();
  Insert(At(Open(99, L"C:\\a.doc"), 500));
  EXPECT_THAT(EventMessages(trace),
              ElementsAre("Unable to find timestamp for PID 99", kSeparator,
                          "[[ log: Time 500 Pid 99 Tid 0 path  behavior 0x004001 target_pid 1 target C:\\a.doc ]]",
                          "Process not found in tree", kSeparator));
}

TEST_F(ProcessEventsTest, TheRecordIsTracedFieldByField) {
  StartProcess(10, 100);
  LOG_ITEM log = MakeEvent(0xC0FF, 10, L"C:\\A \x20AC.doc", 0xFFFFFFFF80000001, -7);
  log.Tid = 0x1FFFFFFFF;
  const std::string path = "acting.exe";
  std::copy(path.begin(), path.end(), std::begin(log.Path));
  TraceCapture trace(0x2);
  trace.Take();
  Insert(log);
  EXPECT_THAT(EventMessages(trace),
              Contains("[[ log: Time -7 Pid 10 Tid -1 path acting.exe behavior 0x00c0ff target_pid -2147483647 "
                       "target C:\\A \xE2\x82\xAC.doc ]]"));
}

TEST_F(ProcessEventsTest, UnterminatedTextsAreTracedUpToTheirEnds) {
  StartProcess(10, 100);
  LOG_ITEM log = MakeEvent(0x40414243, 10, std::wstring(524, L't'));
  log.Context = 0x0041004100410041;
  std::fill(std::begin(log.Path), std::end(log.Path), 'p');
  TraceCapture trace(0x2);
  trace.Take();
  Insert(log);
  EXPECT_THAT(EventMessages(trace), Contains("[[ log: Time 0 Pid 10 Tid 0 path " + std::string(36, 'p') +
                                             " behavior 0x40414243 target_pid 0 target " + std::string(524, 't') + " ]]"));
}

TEST_F(ProcessEventsTest, AllLinesAreDebugLines) {
  StartProcess(10, 100);
  TraceCapture trace(0x7);
  trace.Take();
  Insert(ProcessCreate(10, 20, 200));
  Insert(ProcessExit(20));
  Insert(Open(99, L"C:\\a.doc"));
  EXPECT_THAT(trace.Take(), Each(Field(&TraceLine::level, "debug")));
}

TEST_F(ProcessEventsTest, WithoutTheDebugBitNothingIsWritten) {
  TraceCapture trace(0x1 | 0x4);
  trace.Take();
  Insert(ProcessCreate(10, 20, 200));
  Insert(ProcessExit(20));
  Insert(Open(99, L"C:\\a.doc"));
  EXPECT_THAT(trace.Take(), IsEmpty());
}

}  // namespace
}  // namespace zt::testing
