// The state machine as events drive it: from the record of a file through its states to the score.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "engine/transition_table.h"
#include "tests/support/engine_test.h"
#include "tests/support/state_dump.h"

namespace zt::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsSupersetOf;

const std::wstring kDoc = L"c:\\d\\a.docx";

class StateMachineTest : public EngineTest {
 protected:
  StateMachineTest() { StartProcess(10); }

  std::uint32_t StateOf(const std::wstring& key) {
    const FileItem* file = FileOf(10, key);
    return file == nullptr ? 0xFFFFFFFF : file->State;
  }
  ZtLong DeleteAlt(const std::wstring& path) { return Insert(MakeEvent(BehaviorDeleteAlt, 10, path)); }
};

// Ways into each state.

TEST_F(StateMachineTest, OverwritingAReadFileIsPenalisedByTwo) {
  EXPECT_EQ(Insert(Open(10, kDoc)), 0);
  EXPECT_EQ(StateOf(kDoc), ZT_OPEN_EXISTING);
  EXPECT_EQ(Insert(Read(10, kDoc, 777)), 0);
  EXPECT_EQ(StateOf(kDoc), ZT_READ_START);
  EXPECT_EQ(FileOf(10, kDoc)->ReadInfo, 777U);
  EXPECT_EQ(Insert(Write(10, kDoc)), 2);
  EXPECT_EQ(StateOf(kDoc), ZT_OVERWRITE);
  EXPECT_TRUE(FileOf(10, kDoc)->Written);
  EXPECT_EQ(ScoreOf(10), 2);
}

TEST_F(StateMachineTest, DeletingAReadFileIsNotPenalised) {
  OpenAndRead(10, kDoc);
  EXPECT_EQ(Insert(Delete(10, kDoc)), 0);
  EXPECT_EQ(StateOf(kDoc), ZT_DELETE_ORG);
  EXPECT_EQ(ScoreOf(10), 1);
}

TEST_F(StateMachineTest, ADeletedFileMadeAnewIsReadAgain) {
  OpenAndRead(10, kDoc);
  Insert(Delete(10, kDoc));
  EXPECT_EQ(Insert(Open(10, kDoc)), 0);
  EXPECT_EQ(StateOf(kDoc), ZT_DELETE_ORG);
  EXPECT_EQ(Insert(CreateFresh(10, kDoc)), 0);
  EXPECT_EQ(StateOf(kDoc), ZT_READ_START);
  EXPECT_EQ(Insert(Write(10, kDoc)), 2);
}

TEST_F(StateMachineTest, AMappedFileThatIsRenamedIsPenalisedByTwo) {
  OpenAndRead(10, kDoc);
  EXPECT_EQ(Insert(SectionSync(10, kDoc)), 0);
  EXPECT_EQ(StateOf(kDoc), ZT_SECTION_SYNC);
  EXPECT_EQ(Insert(Rename(10, kDoc, L"c:\\e\\b.bin")), 2);
  EXPECT_EQ(StateOf(kDoc), ZT_RENAME_SECTION_SYNC);
  EXPECT_TRUE(FileOf(10, kDoc)->Written);
}

TEST_F(StateMachineTest, AFileMappedWithoutAReadReachesTheSectionState) {
  Insert(Open(10, kDoc));
  EXPECT_EQ(Insert(SectionSync(10, kDoc)), 0);
  EXPECT_EQ(StateOf(kDoc), ZT_SECTION_SYNC);
}

TEST_F(StateMachineTest, AMappedFileIsNotPenalisedByAWriteToItself) {
  Insert(Open(10, kDoc));
  Insert(SectionSync(10, kDoc));
  EXPECT_EQ(Insert(Write(10, kDoc)), 0);
  EXPECT_EQ(StateOf(kDoc), ZT_SECTION_SYNC);
}

TEST_F(StateMachineTest, MappingARenamedFilePenalisesByTwoAndQuarantinesIt) {
  Track(10, kDoc, ZT_READ_START).Renamed = true;
  EXPECT_EQ(Insert(SectionSync(10, kDoc)), 2);
  EXPECT_EQ(StateOf(kDoc), ZT_RENAME_SECTION_SYNC);
  EXPECT_TRUE(FileOf(10, kDoc)->Written && FileOf(10, kDoc)->Similar);
  EXPECT_THAT(ItemOf(10)->QuarantineList.Paths(), ElementsAre(kDoc));
}

TEST_F(StateMachineTest, ACopyByRenameIsMarkedRenamedForALaterMapping) {
  Insert(Open(10, kDoc));
  Insert(Rename(10, kDoc, L"c:\\e\\b.bin"));
  EXPECT_EQ(Insert(SectionSync(10, L"c:\\e\\b.bin")), 2);
  EXPECT_EQ(StateOf(L"c:\\e\\b.bin"), ZT_RENAME_SECTION_SYNC);
  EXPECT_EQ(StateOf(kDoc), ZT_OPEN_EXISTING);
}

TEST_F(StateMachineTest, DeletingAFileAfterItsSimilarCopyIsPenalisedBySix) {
  for (const std::uint32_t code : {BehaviorDelete, BehaviorDeleteAlt}) {
    const std::wstring path = L"c:\\f" + std::to_wstring(code) + L"\\a.docx";
    Track(10, path, ZT_WRITE_SIMILAR).Created = true;
    ItemOf(10)->Score = 1;
    EXPECT_EQ(Insert(MakeEvent(code, 10, path)), 6);
    EXPECT_EQ(StateOf(path), ZT_WRITTEN_DELETE);
    EXPECT_TRUE(FileOf(10, path)->Written);
  }
}

// A similar file steps from the state that it had before its move to ZT_WRITE_SIMILAR.

class SimilarWriteTest : public StateMachineTest {
 protected:
  /// Writes a copy with something appended to the name of the tracked file.
  ZtLong WriteCopy() { return Insert(Write(10, kDoc + L".locked")); }
  ZtLong RenameOntoCopy() { return Insert(Rename(10, L"c:\\tmp\\1.bin", kDoc + L".locked")); }
};

TEST_F(SimilarWriteTest, ACopyOfADeletedFileIsPenalisedBySix) {
  OpenAndRead(10, kDoc);
  Insert(Delete(10, kDoc));
  TraceCapture trace(0x2);
  trace.Take();
  EXPECT_EQ(WriteCopy(), 6);
  EXPECT_THAT(trace.TakeMessages(), IsSupersetOf({"ZT_WRITE_SIMILAR", "Next State from 6 with 0x004004",
                                                  "Callback: DeleteWrite", "ZT_DELETE_ORG + ZT_WRITE_SIMILAR"}));
  EXPECT_EQ(StateOf(kDoc), ZT_WRITTEN_DELETE);
  EXPECT_TRUE(FileOf(10, kDoc)->Written && FileOf(10, kDoc)->Similar);
  EXPECT_EQ(ScoreOf(10), 6);
}

TEST_F(SimilarWriteTest, ACopyOfAMappedFileIsPenalisedByTwo) {
  Insert(Open(10, kDoc));
  Insert(SectionSync(10, kDoc));
  EXPECT_EQ(WriteCopy(), 2);
  EXPECT_EQ(StateOf(kDoc), ZT_OVERWRITE);
  EXPECT_TRUE(FileOf(10, kDoc)->Written && FileOf(10, kDoc)->Similar);
}

TEST_F(SimilarWriteTest, ACopyOfAReadFileIsPenalisedOnceTheOriginalIsDeleted) {
  OpenAndRead(10, kDoc);
  TraceCapture trace(0x2);
  trace.Take();
  EXPECT_EQ(WriteCopy(), 0);
  EXPECT_THAT(trace.TakeMessages(), IsSupersetOf({"Next State from 2 with 0x004004", "Callback: ReadWrite"}));
  EXPECT_EQ(StateOf(kDoc), ZT_WRITE_SIMILAR);
  EXPECT_FALSE(FileOf(10, kDoc)->Written);
  EXPECT_EQ(Insert(Delete(10, kDoc)), 6);
  EXPECT_EQ(StateOf(kDoc), ZT_WRITTEN_DELETE);
}

TEST_F(SimilarWriteTest, ACopyOfAFileWithoutATransitionOnlyMovesIt) {
  for (const std::uint8_t state :
       std::initializer_list<std::uint8_t>{ZT_UNKNOWN, ZT_OPEN_EXISTING, ZT_OVERWRITE, ZT_WRITE_SIMILAR, ZT_RENAME_SECTION_SYNC,
                                           ZT_WRITTEN_DELETE, ZT_WRITE_SIMILAR_SYNC, ZT_MAX}) {
    Track(10, kDoc, state);
    TraceCapture trace(0x2);
    trace.Take();
    EXPECT_EQ(WriteCopy(), 0) << state;
    EXPECT_THAT(trace.TakeMessages(), Contains("Next State from " + std::to_string(state) + " with 0x004004"));
    EXPECT_EQ(StateOf(kDoc), ZT_WRITE_SIMILAR) << state;
    EXPECT_EQ(ScoreOf(10), 1) << state;
  }
}

TEST_F(SimilarWriteTest, ADeletedNameThatIsRenamedOntoIsPenalisedBySix) {
  OpenAndRead(10, kDoc);
  Insert(Delete(10, kDoc));
  EXPECT_EQ(RenameOntoCopy(), 6);
  EXPECT_EQ(StateOf(kDoc), ZT_WRITTEN_DELETE);
  EXPECT_TRUE(FileOf(10, kDoc)->Written && FileOf(10, kDoc)->Similar && FileOf(10, kDoc)->Renamed);
  EXPECT_EQ(ScoreOf(10), 6);
}

TEST_F(SimilarWriteTest, AMappedFileWhoseCopyIsRenamedOntoStaysSimilar) {
  Track(10, kDoc, ZT_SECTION_SYNC);
  EXPECT_EQ(RenameOntoCopy(), 0);
  EXPECT_EQ(StateOf(kDoc), ZT_WRITE_SIMILAR);
  EXPECT_FALSE(FileOf(10, kDoc)->Written);
}

TEST_F(SimilarWriteTest, AFileThatWasSimilarAlreadyHasNoFolderToCompare) {
  FileItem& file = Track(10, kDoc, ZT_WRITE_SIMILAR);
  file.ReadStarted = file.SimilarMark = true;
  TraceCapture trace(0x2);
  trace.Take();
  EXPECT_EQ(RenameOntoCopy(), 0);
  EXPECT_THAT(trace.TakeMessages(), IsSupersetOf({"Callback: WriteSimilarRename", "Cannot find \\ in Dst:"}));
  EXPECT_EQ(StateOf(kDoc), ZT_WRITE_SIMILAR);
  EXPECT_EQ(ItemOf(10)->PrevFolder, u"");
}

// Similar files moved into one folder.

class SimilarMoveTest : public StateMachineTest {
 protected:
  void TrackSimilar(const std::wstring& key) {
    FileItem& file = Track(10, key, ZT_WRITE_SIMILAR);
    file.ReadStarted = file.SimilarMark = true;
  }
};

TEST_F(SimilarMoveTest, TheSecondMoveIntoOneFolderIsPenalisedByTwo) {
  TrackSimilar(L"c:\\d\\one.docx");
  TrackSimilar(L"c:\\d\\two.docx");
  TraceCapture trace(0x2);
  trace.Take();
  EXPECT_EQ(Insert(Rename(10, L"C:\\D\\one.docx", L"C:\\Out\\1.bin")), 0);
  EXPECT_THAT(trace.TakeMessages(), Contains("New folder:c:\\out"));
  EXPECT_EQ(ItemOf(10)->PrevFolder, u"c:\\out");
  EXPECT_EQ(StateOf(L"c:\\d\\one.docx"), ZT_WRITE_SIMILAR);

  EXPECT_EQ(Insert(Rename(10, L"C:\\D\\two.docx", L"C:\\OUT\\2.bin")), 2);
  EXPECT_THAT(trace.TakeMessages(), IsSupersetOf({"New folder:c:\\out", "Same folder as previous, ZT_WRITE_SIMILAR_SYNC"}));
  EXPECT_EQ(StateOf(L"c:\\d\\two.docx"), ZT_WRITE_SIMILAR_SYNC);
  EXPECT_EQ(ScoreOf(10), 2);
}

TEST_F(SimilarMoveTest, TheFoldersOfTwoProcessesAreKeptApart) {
  StartProcess(11);
  TrackSimilar(kDoc);
  ItemOf(11)->PrevFolder = u"c:\\out";
  EXPECT_EQ(Insert(Rename(10, kDoc, L"c:\\out\\1.bin")), 0);
}

TEST_F(SimilarMoveTest, ARenameWithinTheFolderArmsNothing) {
  TrackSimilar(kDoc);
  EXPECT_EQ(Insert(Rename(10, kDoc, L"c:\\d\\zzz")), 0);
  EXPECT_EQ(ItemOf(10)->PrevFolder, u"");
  EXPECT_EQ(StateOf(kDoc), ZT_WRITE_SIMILAR);
}

// What does not step.

TEST_F(StateMachineTest, ACodeWithoutARowLeavesTheRecordUntouched) {
  Track(10, kDoc, ZT_UNKNOWN);
  const std::string before = DumpState(core());
  EXPECT_EQ(Insert(Read(10, kDoc)), 0);
  EXPECT_EQ(Insert(SectionSync(10, kDoc)), 0);
  EXPECT_EQ(DumpState(core()), before);
}

TEST_F(StateMachineTest, AWriteInTheFirstStateYieldsNoPenalty) {
  Track(10, kDoc, ZT_UNKNOWN);
  EXPECT_EQ(Insert(Write(10, kDoc)), 0);
  EXPECT_EQ(StateOf(kDoc), ZT_UNKNOWN);
  EXPECT_FALSE(FileOf(10, kDoc)->Written);
}

TEST_F(StateMachineTest, AFreshCreateOfAFileInTheFirstStateLeavesItUnnamed) {
  Track(10, kDoc, ZT_UNKNOWN).Path = PathText();
  EXPECT_EQ(Insert(CreateFresh(10, kDoc)), 0);
  EXPECT_EQ(StateOf(kDoc), ZT_UNKNOWN);
  EXPECT_EQ(FileOf(10, kDoc)->Path, L"");
}

TEST_F(StateMachineTest, TheSecondCreateCodeMakesARecordThatTheFirstThenFills) {
  Insert(MakeEvent(BehaviorCreateNew, 10, L"C:\\D\\A.docx", 5));
  EXPECT_EQ(StateOf(kDoc), ZT_UNKNOWN);
  EXPECT_EQ(FileOf(10, kDoc)->Path, L"");
  EXPECT_FALSE(FileOf(10, kDoc)->Created);
  Insert(Open(10, L"C:\\D\\A.docx", 5));
  EXPECT_EQ(StateOf(kDoc), ZT_OPEN_EXISTING);
  EXPECT_EQ(FileOf(10, kDoc)->Path, L"C:\\D\\A.docx");
  Insert(MakeEvent(BehaviorCreateNew, 10, L"C:\\D\\A.docx", 5));
  EXPECT_TRUE(FileOf(10, kDoc)->Created);
  EXPECT_EQ(StateOf(kDoc), ZT_OPEN_EXISTING);
}

TEST_F(StateMachineTest, TerminalStatesIgnoreEveryEventOnTheFile) {
  for (const std::uint8_t state : std::initializer_list<std::uint8_t>{ZT_OVERWRITE, ZT_RENAME_SECTION_SYNC, ZT_WRITTEN_DELETE,
                                                                      ZT_WRITE_SIMILAR_SYNC, ZT_MAX}) {
    FileItem& file = Track(10, kDoc, state);
    file.Created = file.Renamed = file.ReadStarted = file.SimilarMark = true;
    EXPECT_EQ(Insert(Open(10, kDoc)), 0);
    EXPECT_EQ(Insert(CreateFresh(10, kDoc)), 0);
    EXPECT_EQ(Insert(MakeEvent(BehaviorCreateNew, 10, kDoc, 1)), 0);
    EXPECT_EQ(Insert(Read(10, kDoc)), 0);
    EXPECT_EQ(Insert(Write(10, kDoc)), 0);
    EXPECT_EQ(Insert(SizeChange(10, kDoc)), 0);
    EXPECT_EQ(Insert(SectionSync(10, kDoc)), 0);
    EXPECT_EQ(Insert(Delete(10, kDoc)), 0);
    EXPECT_EQ(DeleteAlt(kDoc), 0);
    EXPECT_EQ(Insert(Rename(10, kDoc, L"c:\\e\\b.bin")), 0);
    EXPECT_EQ(StateOf(kDoc), state);
    EXPECT_EQ(ScoreOf(10), 1);
  }
}

TEST_F(StateMachineTest, BothDeleteCodesGiveTheSameStateAndResultFromEveryState) {
  for (std::uint8_t state = 0; state <= 10; ++state) {
    const std::wstring first = L"c:\\f" + std::to_wstring(state) + L"\\first";
    const std::wstring second = L"c:\\f" + std::to_wstring(state) + L"\\second";
    Track(10, first, state).Created = true;
    Track(10, second, state).Created = true;
    ItemOf(10)->Score = 1;
    const ZtLong result = Insert(Delete(10, first));
    ItemOf(10)->Score = 1;
    EXPECT_EQ(DeleteAlt(second), result) << state;
    EXPECT_EQ(StateOf(second), StateOf(first)) << state;
    EXPECT_EQ(result, state == ZT_WRITE_SIMILAR ? 6 : 0) << state;
  }
}

}  // namespace
}  // namespace zt::testing
