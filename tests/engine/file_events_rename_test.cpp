// Renames: 0x4006, "source|destination".

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/engine/file_events_fixture.h"
#include "tests/support/state_dump.h"

namespace zt::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FileRenameTest : public FileEventsTest {
 protected:
  /// A record that a move into another folder may step.
  FileItem& TrackSimilar(const std::wstring& path) {
    FileItem& file = Track(path, ZT_WRITE_SIMILAR);
    file.ReadStarted = true;
    file.SimilarMark = true;
    return file;
  }
  ZtLong Move(std::wstring_view from, std::wstring_view to) { return Insert(Rename(kPid, from, to)); }
  std::vector<std::string> MessagesOfMove(std::wstring_view from, std::wstring_view to) {
    return MessagesOf(Rename(kPid, from, to));
  }
};

// Targets.

TEST_F(FileRenameTest, RenameWithoutADestinationIsIgnored) {
  Track(L"c:\\a.doc", ZT_SECTION_SYNC);
  AddPath(Process().QuarantineList, L"c:\\a.doc");
  const std::string before = DumpState(core());
  EXPECT_THAT(MessagesOf(MakeEvent(BehaviorRename, kPid, L"c:\\a.doc")), IsEmpty());
  EXPECT_EQ(DumpState(core()), before);
}

TEST_F(FileRenameTest, UntrackedSourceIsTracedAndQuarantined) {
  EXPECT_THAT(MessagesOfMove(L"C:\\D\\A.doc", L"C:\\Out\\B.doc"),
              ElementsAre("LB_PreSetInforamtionRename Src:c:\\d\\a.doc, Dst:c:\\out\\b.doc",
                          "c:\\d\\a.doc does not exist in the quarantine list",
                          "Adding c:\\out\\b.doc to the quarantine list of pid 10"));
  EXPECT_THAT(Process().files, IsEmpty());
  EXPECT_THAT(Quarantined(), ElementsAre(L"c:\\out\\b.doc"));
}

TEST_F(FileRenameTest, BareDestinationGetsTheSourcesFolderFirst) {
  Track(L"c:\\d\\a.doc", ZT_OPEN_EXISTING);
  EXPECT_THAT(MessagesOfMove(L"C:\\D\\A.doc", L"New"),
              ElementsAre("Renamed file name did not include directory, appending: c:\\d\\new",
                          "LB_PreSetInforamtionRename Src:c:\\d\\a.doc, Dst:c:\\d\\new",
                          "c:\\d\\a.doc does not exist in the quarantine list",
                          "Adding c:\\d\\new to the quarantine list of pid 10", "Next State from 1 with 0x004006"));
  EXPECT_TRUE(IsTracked(L"c:\\d\\new"));
  EXPECT_FALSE(IsTracked(L"new"));
  EXPECT_THAT(Quarantined(), ElementsAre(L"c:\\d\\new"));
}

TEST_F(FileRenameTest, BareDestinationOfABareSourceStaysBare) {
  EXPECT_THAT(MessagesOfMove(L"a.doc", L"new"),
              ElementsAre("Renamed file name did not include directory, appending: new",
                          "LB_PreSetInforamtionRename Src:a.doc, Dst:new", "a.doc does not exist in the quarantine list",
                          "Adding new to the quarantine list of pid 10"));
}

TEST_F(FileRenameTest, EmptyDestinationBecomesTheSourcesFolder) {
  Track(L"c:\\d\\a.doc", ZT_OPEN_EXISTING);
  Move(L"c:\\d\\a.doc", L"");
  EXPECT_THAT(Quarantined(), ElementsAre(L"c:\\d\\"));
  EXPECT_TRUE(IsTracked(L"c:\\d\\"));
}

TEST_F(FileRenameTest, TargetIsSplitAtTheFirstBar) {
  Move(L"c:\\a", L"c:\\b|c:\\c");
  EXPECT_THAT(Quarantined(), ElementsAre(L"c:\\b|c:\\c"));
}

// The quarantine list.

TEST_F(FileRenameTest, SourceLeavesTheQuarantineListAndTheDestinationEnters) {
  for (const wchar_t* const path : {L"c:\\1", L"c:\\a.doc", L"c:\\2"}) {
    AddPath(Process().QuarantineList, path);
  }
  EXPECT_THAT(
      MessagesOfMove(L"C:\\A.doc", L"c:\\out\\B.doc"),
      ElementsAre("LB_PreSetInforamtionRename Src:c:\\a.doc, Dst:c:\\out\\b.doc", "Removing c:\\a.doc from the quarantine list",
                  "Adding c:\\out\\b.doc to the quarantine list of pid 10"));
  EXPECT_THAT(Quarantined(), ElementsAre(L"c:\\1", L"c:\\2", L"c:\\out\\b.doc"));
}

TEST_F(FileRenameTest, DestinationThatIsQuarantinedKeepsItsPlace) {
  for (const wchar_t* const path : {L"c:\\out\\b.doc", L"c:\\2"}) {
    AddPath(Process().QuarantineList, path);
  }
  EXPECT_THAT(MessagesOfMove(L"c:\\a.doc", L"c:\\out\\b.doc"),
              Contains("c:\\out\\b.doc still exists in the quarantine list of pid 10"));
  EXPECT_THAT(Quarantined(), ElementsAre(L"c:\\out\\b.doc", L"c:\\2"));
}

TEST_F(FileRenameTest, FileRenamedOntoItselfMovesToTheEndOfTheQuarantineList) {
  for (const wchar_t* const path : {L"c:\\a.doc", L"c:\\2"}) {
    AddPath(Process().QuarantineList, path);
  }
  Move(L"c:\\a.doc", L"C:\\A.doc");
  EXPECT_THAT(Quarantined(), ElementsAre(L"c:\\2", L"c:\\a.doc"));
}

TEST_F(FileRenameTest, CreatedFilesListStays) {
  AddPath(Process().CreatedFilesList, L"c:\\a.doc");
  Move(L"c:\\a.doc", L"c:\\out\\b.doc");
  EXPECT_THAT(CreatedFiles(), ElementsAre(L"c:\\a.doc"));
}

// A tracked source.

TEST_F(FileRenameTest, DestinationBecomesACopyOfTheSource) {
  FileItem& source = Track(L"c:\\d\\a.doc", ZT_READ_START);
  source.Written = source.SimilarMark = source.Created = source.ReadStarted = source.penalized = true;
  source.FirstTime = 77;
  source.Context = 88;
  source.ReadInfo = 99;
  source.Path = MakePath(L"C:\\D\\A.doc");
  source.CreateInfo = 111;
  EXPECT_EQ(Move(L"C:\\D\\A.doc", L"C:\\Out\\B.doc"), 0);
  const FileItem& copy = File(L"c:\\out\\b.doc");
  EXPECT_EQ(Summary(copy), "2 Written Renamed SimilarMark Created ReadStarted penalized");
  EXPECT_EQ(copy.FirstTime, 77);
  EXPECT_EQ(copy.Context, 88u);
  EXPECT_EQ(copy.ReadInfo, 99u);
  EXPECT_EQ(copy.Path, L"C:\\D\\A.doc");
  EXPECT_EQ(copy.CreateInfo, 111u);
}

// The copy is made before the source is marked.
TEST_F(FileRenameTest, SourceIsMarkedAndStaysTracked) {
  Track(L"c:\\d\\a.doc", ZT_READ_START);
  EXPECT_THAT(MessagesOfMove(L"c:\\d\\a.doc", L"c:\\out\\b.doc"),
              ElementsAre("LB_PreSetInforamtionRename Src:c:\\d\\a.doc, Dst:c:\\out\\b.doc",
                          "c:\\d\\a.doc does not exist in the quarantine list",
                          "Adding c:\\out\\b.doc to the quarantine list of pid 10", "Next State from 2 with 0x004006"));
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "2 Similar");
  EXPECT_EQ(Summary(L"c:\\out\\b.doc"), "2 Renamed");
}

TEST_F(FileRenameTest, SourcesMarkFromEarlierIsCopied) {
  Track(L"c:\\d\\a.doc", ZT_READ_START).Similar = true;
  Move(L"c:\\d\\a.doc", L"c:\\out\\b.doc");
  EXPECT_EQ(Summary(L"c:\\out\\b.doc"), "2 Similar Renamed");
}

TEST_F(FileRenameTest, DestinationsOwnRecordIsReplaced) {
  Track(L"c:\\d\\a.doc", ZT_READ_START);
  // Found first, so that the search does not end at the destination.
  Track(L"c:\\out", ZT_OPEN_EXISTING);
  FileItem& destination = Track(L"c:\\out\\b.doc", ZT_OVERWRITE);
  destination.Written = destination.Similar = destination.penalized = true;
  Move(L"c:\\d\\a.doc", L"c:\\out\\b.doc");
  EXPECT_EQ(Summary(L"c:\\out\\b.doc"), "2 Renamed");
  EXPECT_EQ(File(L"c:\\out\\b.doc").Path, L"c:\\d\\a.doc");
}

TEST_F(FileRenameTest, SectionSynchronisedSourceIsPenalised) {
  Track(L"c:\\d\\a.doc", ZT_SECTION_SYNC);
  EXPECT_EQ(Move(L"c:\\d\\a.doc", L"c:\\out\\b.doc"), 2);
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "7 Written Similar penalized");
  EXPECT_EQ(Summary(L"c:\\out\\b.doc"), "3 Renamed") << "copied before the step";
}

TEST_F(FileRenameTest, DeletedSourceIsNoSimilarFile) {
  Track(L"c:\\d\\a.doc", ZT_DELETE_ORG);
  EXPECT_EQ(Move(L"c:\\d\\a.doc", L"c:\\out\\b.doc"), 0);
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "6 Similar");
}

// Moves of similar copies into one folder.

TEST_F(FileRenameTest, FirstMoveIntoAFolderIsRemembered) {
  TrackSimilar(L"c:\\a\\x.doc");
  EXPECT_THAT(MessagesOfMove(L"C:\\A\\X.doc", L"C:\\OUT\\X.doc"),
              ElementsAre("LB_PreSetInforamtionRename Src:c:\\a\\x.doc, Dst:c:\\out\\x.doc",
                          "c:\\a\\x.doc does not exist in the quarantine list",
                          "Adding c:\\out\\x.doc to the quarantine list of pid 10", "Next State from 5 with 0x004006",
                          "Callback: WriteSimilarRename", "New folder:c:\\out"));
  EXPECT_EQ(Process().PrevFolder, u"c:\\out");
  EXPECT_EQ(Summary(L"c:\\a\\x.doc"), "5 Similar SimilarMark ReadStarted");
}

TEST_F(FileRenameTest, SecondMoveIntoTheFolderIsPenalised) {
  TrackSimilar(L"c:\\a\\x.doc");
  TrackSimilar(L"c:\\a\\y.doc");
  EXPECT_EQ(Move(L"c:\\a\\x.doc", L"c:\\out\\x.doc"), 0);
  EXPECT_EQ(Move(L"c:\\a\\y.doc", L"C:\\Out\\y.doc"), 2);
  EXPECT_EQ(Summary(L"c:\\a\\x.doc"), "5 Similar SimilarMark ReadStarted");
  EXPECT_EQ(Summary(L"c:\\a\\y.doc"), "9 Similar SimilarMark ReadStarted penalized");
  EXPECT_EQ(Process().PrevFolder, u"c:\\out");
}

TEST_F(FileRenameTest, SecondMoveIntoTheFolderIsTraced) {
  TrackSimilar(L"c:\\a\\y.doc");
  Process().PrevFolder = u"c:\\out";
  EXPECT_THAT(
      MessagesOfMove(L"c:\\a\\y.doc", L"C:\\Out\\y.doc"),
      ElementsAre("LB_PreSetInforamtionRename Src:c:\\a\\y.doc, Dst:c:\\out\\y.doc",
                  "c:\\a\\y.doc does not exist in the quarantine list",
                  "Adding c:\\out\\y.doc to the quarantine list of pid 10", "Next State from 5 with 0x004006",
                  "Callback: WriteSimilarRename", "New folder:c:\\out", "Same folder as previous, ZT_WRITE_SIMILAR_SYNC"));
}

TEST_F(FileRenameTest, MoveIntoAnotherFolderReplacesTheRememberedOne) {
  TrackSimilar(L"c:\\a\\x.doc");
  Process().PrevFolder = u"c:\\ou";
  EXPECT_EQ(Move(L"c:\\a\\x.doc", L"c:\\out\\x.doc"), 0);
  EXPECT_EQ(Process().PrevFolder, u"c:\\out");
}

TEST_F(FileRenameTest, RememberedFolderBelongsToTheProcess) {
  StartProcess(20);
  ItemOf(20)->PrevFolder = u"c:\\out";
  TrackSimilar(L"c:\\a\\x.doc");
  EXPECT_EQ(Move(L"c:\\a\\x.doc", L"c:\\out\\x.doc"), 0);
}

TEST_F(FileRenameTest, RenameInsideItsFolderIsNoMove) {
  TrackSimilar(L"c:\\a\\x.doc");
  EXPECT_THAT(MessagesOfMove(L"C:\\a\\x.doc", L"C:\\a\\x.doc.enc"),
              ElementsAre("LB_PreSetInforamtionRename Src:c:\\a\\x.doc, Dst:c:\\a\\x.doc.enc",
                          "c:\\a\\x.doc does not exist in the quarantine list",
                          "Adding c:\\a\\x.doc.enc to the quarantine list of pid 10", "Next State from 5 with 0x004006",
                          "Callback: WriteSimilarRename"));
  EXPECT_EQ(Process().PrevFolder, u"");
}

// As many characters as the destination's folder has are compared: a move up, or into a folder whose name the source's begins
// with, is none.
TEST_F(FileRenameTest, MoveToAFolderThatTheSourceBeginsWithIsNone) {
  TrackSimilar(L"c:\\a\\sub\\x.doc");
  Move(L"c:\\a\\sub\\x.doc", L"c:\\a\\y.doc");
  EXPECT_EQ(Process().PrevFolder, u"");
  TrackSimilar(L"c:\\ab\\x.doc");
  Move(L"c:\\ab\\x.doc", L"c:\\a\\z.doc");
  EXPECT_EQ(Process().PrevFolder, u"");
  TrackSimilar(L"c:\\a\\q.doc");
  Move(L"c:\\a\\q.doc", L"c:\\ab\\r.doc");
  EXPECT_EQ(Process().PrevFolder, u"c:\\ab");
}

TEST_F(FileRenameTest, MoveOfAFileThatWasNotReadOrNotWrittenSimilarlyIsNone) {
  TrackSimilar(L"c:\\a\\x.doc").ReadStarted = false;
  TrackSimilar(L"c:\\a\\y.doc").SimilarMark = false;
  Move(L"c:\\a\\x.doc", L"c:\\out\\x.doc");
  Move(L"c:\\a\\y.doc", L"c:\\out\\y.doc");
  EXPECT_EQ(Process().PrevFolder, u"");
}

TEST_F(FileRenameTest, BareNamesHaveNoFolder) {
  TrackSimilar(L"x.doc");
  EXPECT_THAT(MessagesOfMove(L"x.doc", L"new"), Contains("Cannot find \\ in Dst:new"));
  EXPECT_EQ(Process().PrevFolder, u"");
}

// A similar file is found for the destination.

TEST_F(FileRenameTest, AnotherSimilarFileMovesOn) {
  Track(L"c:\\d\\b.doc", ZT_READ_START);
  EXPECT_THAT(MessagesOfMove(L"C:\\D\\Tmp", L"C:\\D\\B.doc.enc"),
              ElementsAre("LB_PreSetInforamtionRename Src:c:\\d\\tmp, Dst:c:\\d\\b.doc.enc",
                          "c:\\d\\tmp does not exist in the quarantine list",
                          "Adding c:\\d\\b.doc.enc to the quarantine list of pid 10",
                          "File c:\\d\\b.doc.enc is renamed to another similarly named flle c:\\d\\b.doc ZT_WRITE_SIMILAR",
                          "Next State from 2 with 0x004006"));
  EXPECT_EQ(Summary(L"c:\\d\\b.doc"), "5 Renamed");
  EXPECT_EQ(Process().files.size(), 1u);
}

TEST_F(FileRenameTest, DeletedSimilarFileIsPenalised) {
  Track(L"c:\\d\\b.doc", ZT_DELETE_ORG);
  EXPECT_EQ(Move(L"c:\\d\\tmp", L"c:\\d\\b.doc.enc"), 6);
  EXPECT_EQ(Summary(L"c:\\d\\b.doc"), "8 Written Similar Renamed penalized");
}

TEST_F(FileRenameTest, DeletedSimilarFileIsTraced) {
  Track(L"c:\\d\\b.doc", ZT_DELETE_ORG);
  EXPECT_THAT(MessagesOfMove(L"c:\\d\\tmp", L"c:\\d\\b.doc.enc"),
              ElementsAre("LB_PreSetInforamtionRename Src:c:\\d\\tmp, Dst:c:\\d\\b.doc.enc",
                          "c:\\d\\tmp does not exist in the quarantine list",
                          "Adding c:\\d\\b.doc.enc to the quarantine list of pid 10",
                          "File c:\\d\\b.doc.enc is renamed to another similarly named flle c:\\d\\b.doc ZT_WRITE_SIMILAR",
                          "Next State from 6 with 0x004006", "Callback: DeleteOrgRename",
                          "ZT_DELETE_ORG + Renamed + ZT_WRITE_SIMILAR"));
}

TEST_F(FileRenameTest, SectionSynchronisedSimilarFileIsNotPenalised) {
  Track(L"c:\\d\\b.doc", ZT_SECTION_SYNC);
  EXPECT_EQ(Move(L"c:\\d\\tmp", L"c:\\d\\b.doc.enc"), 0);
  EXPECT_EQ(Summary(L"c:\\d\\b.doc"), "5 Renamed");
}

TEST_F(FileRenameTest, SimilarFileInAStateThatNothingLeavesMovesOn) {
  for (const FileState state : {ZT_OVERWRITE, ZT_RENAME_SECTION_SYNC, ZT_WRITTEN_DELETE, ZT_WRITE_SIMILAR_SYNC, ZT_MAX}) {
    Track(L"c:\\d\\b.doc", state);
    EXPECT_EQ(Move(L"c:\\d\\tmp", L"c:\\d\\b.doc.enc"), 0);
    EXPECT_EQ(Summary(L"c:\\d\\b.doc"), "5 Renamed") << state;
  }
}

// Source, destination and the remembered folder are the source's affair.
TEST_F(FileRenameTest, StepOfASimilarFileSeesNoDestination) {
  TrackSimilar(L"c:\\d\\b.doc");
  EXPECT_THAT(
      MessagesOfMove(L"c:\\tmp", L"c:\\d\\b.doc.enc"),
      ElementsAre("LB_PreSetInforamtionRename Src:c:\\tmp, Dst:c:\\d\\b.doc.enc",
                  "c:\\tmp does not exist in the quarantine list", "Adding c:\\d\\b.doc.enc to the quarantine list of pid 10",
                  "File c:\\d\\b.doc.enc is renamed to another similarly named flle c:\\d\\b.doc ZT_WRITE_SIMILAR",
                  "Next State from 5 with 0x004006", "Callback: WriteSimilarRename", "Cannot find \\ in Dst:"));
  EXPECT_EQ(Summary(L"c:\\d\\b.doc"), "5 Renamed SimilarMark ReadStarted");
}

TEST_F(FileRenameTest, SearchLearnsTheDifferenceOfTheRename) {
  Track(L"c:\\d\\report.doc", ZT_READ_START);
  Move(L"c:\\d\\report.doc", L"c:\\d\\report.enc");
  EXPECT_EQ(Process().NameDiff, u".enc");
  EXPECT_EQ(Summary(L"c:\\d\\report.doc"), "2 Similar");
}

TEST_F(FileRenameTest, RenamedOntoADeletedFilesNameWithTheLearnedDifference) {
  Process().NameDiff = u".enc";
  Track(L"c:\\d\\report.doc", ZT_DELETE_ORG);
  EXPECT_EQ(Move(L"c:\\d\\tmp", L"c:\\d\\report.enc"), 6);
}

// The source itself is found.

TEST_F(FileRenameTest, SourceThatIsFoundIsOnlyMarkedAsRenamed) {
  Track(L"c:\\d\\a.doc", ZT_READ_START);
  EXPECT_THAT(MessagesOfMove(L"c:\\d\\a.doc", L"c:\\d\\a.doc.enc"),
              ElementsAre("LB_PreSetInforamtionRename Src:c:\\d\\a.doc, Dst:c:\\d\\a.doc.enc",
                          "c:\\d\\a.doc does not exist in the quarantine list",
                          "Adding c:\\d\\a.doc.enc to the quarantine list of pid 10", "Next State from 2 with 0x004006"));
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "2 Similar Renamed");
  EXPECT_EQ(Summary(L"c:\\d\\a.doc.enc"), "2 Renamed");
}

TEST_F(FileRenameTest, SourceThatIsFoundStepsAsNoSimilarFile) {
  Track(L"c:\\d\\a.doc", ZT_DELETE_ORG);
  EXPECT_EQ(Move(L"c:\\d\\a.doc", L"c:\\d\\a.doc.enc"), 0);
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "6 Similar Renamed");
}

// The destination itself is found.

TEST_F(FileRenameTest, DestinationOfAnUntrackedSourceEndsInTheLastState) {
  for (const FileState state : {ZT_UNKNOWN, ZT_READ_START, ZT_DELETE_ORG, ZT_WRITTEN_DELETE, ZT_MAX}) {
    Track(L"c:\\d\\b.doc", state);
    EXPECT_THAT(MessagesOfMove(L"c:\\tmp", L"C:\\D\\B.doc"),
                ElementsAre("LB_PreSetInforamtionRename Src:c:\\tmp, Dst:c:\\d\\b.doc",
                            "c:\\tmp does not exist in the quarantine list", ::testing::HasSubstr("c:\\d\\b.doc"),
                            "File renamed to another identically named flle: c:\\d\\b.doc ZT_MAX"))
        << "and it does not step";
    EXPECT_EQ(Summary(L"c:\\d\\b.doc"), "10 Renamed");
  }
}

TEST_F(FileRenameTest, DestinationIsReplacedByATrackedSourceWhichSteps) {
  Track(L"c:\\d\\b.doc", ZT_OVERWRITE).Written = true;
  Track(L"c:\\tmp", ZT_SECTION_SYNC);
  EXPECT_THAT(
      MessagesOfMove(L"c:\\tmp", L"c:\\d\\b.doc"),
      ElementsAre("LB_PreSetInforamtionRename Src:c:\\tmp, Dst:c:\\d\\b.doc", "c:\\tmp does not exist in the quarantine list",
                  "Adding c:\\d\\b.doc to the quarantine list of pid 10",
                  "File renamed to another identically named flle: c:\\d\\b.doc ZT_MAX", "Next State from 3 with 0x004006",
                  "Callback: SyncRename", "ZT_RENAME_SECTION_SYNC"));
  EXPECT_EQ(Summary(L"c:\\d\\b.doc"), "3 Renamed");
  EXPECT_EQ(File(L"c:\\d\\b.doc").Path, L"c:\\tmp");
  EXPECT_EQ(Summary(L"c:\\tmp"), "7 Written Similar penalized");
}

TEST_F(FileRenameTest, FileRenamedOntoItselfEndsInTheLastStateWithBothMarks) {
  Track(L"c:\\a.doc", ZT_READ_START);
  EXPECT_THAT(
      MessagesOfMove(L"c:\\a.doc", L"C:\\A.doc"),
      ElementsAre("LB_PreSetInforamtionRename Src:c:\\a.doc, Dst:c:\\a.doc", "c:\\a.doc does not exist in the quarantine list",
                  "Adding c:\\a.doc to the quarantine list of pid 10",
                  "File renamed to another identically named flle: c:\\a.doc ZT_MAX", "Next State from 10 with 0x004006"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "10 Similar Renamed");
  EXPECT_EQ(Process().files.size(), 1u);
}

// A similar file and the source both step.

TEST_F(FileRenameTest, LaterPenaltyAndPathWin) {
  Track(L"c:\\d\\b.doc", ZT_DELETE_ORG);
  Track(L"c:\\d\\s.tmp", ZT_SECTION_SYNC);
  EXPECT_EQ(Move(L"c:\\d\\s.tmp", L"c:\\d\\b.doc.enc"), 2);
  EXPECT_EQ(Summary(L"c:\\d\\b.doc"), "8 Written Similar Renamed");
  EXPECT_EQ(Summary(L"c:\\d\\s.tmp"), "7 Written Similar penalized");
  EXPECT_EQ(Summary(L"c:\\d\\b.doc.enc"), "3 Renamed");
}

TEST_F(FileRenameTest, LaterResultOfZeroWins) {
  Track(L"c:\\d\\b.doc", ZT_DELETE_ORG);
  Track(L"c:\\d\\s.tmp", ZT_DELETE_ORG);
  EXPECT_EQ(Move(L"c:\\d\\s.tmp", L"c:\\d\\b.doc.enc"), 0);
  EXPECT_EQ(ScoreOf(kPid), 1);
  EXPECT_EQ(Summary(L"c:\\d\\b.doc"), "8 Written Similar Renamed");
  EXPECT_EQ(Summary(L"c:\\d\\s.tmp"), "6 Similar");
}

TEST_F(FileRenameTest, EarlierPenaltyStandsWhereTheSourceHasNoTransition) {
  Track(L"c:\\d\\b.doc", ZT_DELETE_ORG);
  Track(L"c:\\d\\s.tmp", ZT_READ_START);
  EXPECT_EQ(Move(L"c:\\d\\s.tmp", L"c:\\d\\b.doc.enc"), 6);
  EXPECT_EQ(Summary(L"c:\\d\\b.doc"), "8 Written Similar Renamed penalized");
  EXPECT_EQ(Summary(L"c:\\d\\s.tmp"), "2 Similar");
}

TEST_F(FileRenameTest, BothStepsAreTracedInOrder) {
  Track(L"c:\\d\\b.doc", ZT_DELETE_ORG);
  TrackSimilar(L"c:\\s.tmp");
  EXPECT_THAT(
      MessagesOfMove(L"c:\\s.tmp", L"c:\\d\\b.doc.enc"),
      ElementsAre("LB_PreSetInforamtionRename Src:c:\\s.tmp, Dst:c:\\d\\b.doc.enc",
                  "c:\\s.tmp does not exist in the quarantine list", "Adding c:\\d\\b.doc.enc to the quarantine list of pid 10",
                  "File c:\\d\\b.doc.enc is renamed to another similarly named flle c:\\d\\b.doc ZT_WRITE_SIMILAR",
                  "Next State from 6 with 0x004006", "Callback: DeleteOrgRename", "ZT_DELETE_ORG + Renamed + ZT_WRITE_SIMILAR",
                  "Next State from 5 with 0x004006", "Callback: WriteSimilarRename", "New folder:c:\\d"));
  EXPECT_EQ(Process().PrevFolder, u"c:\\d");
}

}  // namespace
}  // namespace zt::testing
