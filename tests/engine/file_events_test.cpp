// Reads, deletes, size changes, section synchronisations and codes that do nothing; what a step hands on to the score.

#include "engine/file_events.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/engine/file_events_fixture.h"
#include "tests/support/state_dump.h"

namespace zt::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

LOG_ITEM DeleteAlt(std::uint64_t pid, std::wstring_view path) { return MakeEvent(BehaviorDeleteAlt, pid, path); }

// Events that name no tracked file.

TEST_F(FileEventsTest, UnknownFileIsIgnored) {
  const std::string before = DumpState(core());
  for (const std::uint32_t behavior : {0x4003u, 0x4005u, 0x4007u, 0x4008u, 0x4009u, 0x400Au, 0x400Bu}) {
    EXPECT_THAT(MessagesOf(MakeEvent(behavior, kPid, L"c:\\a.doc", 1)), IsEmpty()) << std::hex << behavior;
  }
  EXPECT_EQ(DumpState(core()), before);
}

TEST_F(FileEventsTest, TrackedFileIsLookedUpByTheWholePath) {
  Track(L"c:\\a.doc", ZT_OPEN_EXISTING);
  EXPECT_THAT(MessagesOf(Read(kPid, L"c:\\a.do")), IsEmpty());
  EXPECT_THAT(MessagesOf(Read(kPid, L"c:\\a.doc ")), IsEmpty());
  EXPECT_EQ(Summary(L"c:\\a.doc"), "1");
}

TEST_F(FileEventsTest, CodesWithoutMeaningChangeNothing) {
  for (std::uint32_t state = ZT_UNKNOWN; state <= ZT_MAX; ++state) {
    Track(L"c:\\a.doc", static_cast<FileState>(state)).Created = true;
    const std::string before = DumpState(core());
    for (const std::uint32_t behavior :
         {0u, 0x4000u, 0x4009u, 0x400Au, 0x400Cu, 0x5000u, 0x7FFFu, 0x8000u, 0x8001u, 0xC001u, 0xC002u, 0x14003u}) {
      EXPECT_THAT(MessagesOf(MakeEvent(behavior, kPid, L"c:\\a.doc", 1)), IsEmpty()) << std::hex << behavior;
    }
    EXPECT_EQ(DumpState(core()), before);
  }
}

// Reads.

TEST_F(FileEventsTest, ReadStepsAnOpenedFile) {
  Track(L"c:\\a.doc", ZT_OPEN_EXISTING);
  EXPECT_EQ(Insert(Read(kPid, L"C:\\A.doc", 0xFEDCBA9876543210)), 0);
  EXPECT_EQ(Summary(L"c:\\a.doc"), "2 ReadStarted");
  EXPECT_EQ(File(L"c:\\a.doc").ReadInfo, 0xFEDCBA9876543210u);
}

TEST_F(FileEventsTest, ReadIsTraced) {
  Track(L"c:\\a.doc", ZT_OPEN_EXISTING);
  EXPECT_THAT(MessagesOf(Read(kPid, L"C:\\A.doc")),
              ElementsAre("Next State from 1 with 0x004003", "Callback: OpenExistingRead", "ZT_READ_START"));
}

TEST_F(FileEventsTest, LaterReadDoesNotMoveTheSize) {
  Track(L"c:\\a.doc", ZT_OPEN_EXISTING);
  Insert(Read(kPid, L"c:\\a.doc", 100));
  EXPECT_THAT(MessagesOf(Read(kPid, L"c:\\a.doc", 200)), ElementsAre("Next State from 2 with 0x004003"));
  EXPECT_EQ(File(L"c:\\a.doc").ReadInfo, 100u);
}

// Deletes.

TEST_F(FileEventsTest, DeleteMarksAndSteps) {
  Track(L"c:\\a.doc", ZT_READ_START);
  EXPECT_THAT(MessagesOf(Delete(kPid, L"C:\\A.doc")),
              ElementsAre("Next State from 2 with 0x004005", "Callback: ReadDelete", "ZT_DELETE_ORG"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "6 Similar");
  EXPECT_THAT(Quarantined(), IsEmpty());
}

TEST_F(FileEventsTest, DeleteMarksWhereNoTransitionIs) {
  Track(L"c:\\a.doc", ZT_OPEN_EXISTING);
  EXPECT_THAT(MessagesOf(Delete(kPid, L"c:\\a.doc")), ElementsAre("Next State from 1 with 0x004005"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "1 Similar");
}

TEST_F(FileEventsTest, SecondDeleteCodeCountsForACreatedFile) {
  Track(L"c:\\a.doc", ZT_READ_START).Created = true;
  EXPECT_THAT(MessagesOf(DeleteAlt(kPid, L"C:\\A.doc")),
              ElementsAre("Next State from 2 with 0x00400b", "Callback: ReadDelete", "ZT_DELETE_ORG"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "6 Similar Created");
}

TEST_F(FileEventsTest, SecondDeleteCodeIsIgnoredForAFileThatIsNotCreated) {
  Track(L"c:\\a.doc", ZT_READ_START);
  EXPECT_THAT(MessagesOf(DeleteAlt(kPid, L"c:\\a.doc")), IsEmpty());
  EXPECT_EQ(Summary(L"c:\\a.doc"), "2");
}

TEST_F(FileEventsTest, DeleteAfterASimilarCopyIsPenalised) {
  Track(L"c:\\a.doc", ZT_WRITE_SIMILAR);
  EXPECT_EQ(Insert(Delete(kPid, L"c:\\a.doc")), 6);
  EXPECT_EQ(Summary(L"c:\\a.doc"), "8 Written Similar penalized");
}

TEST_F(FileEventsTest, SecondDeleteCodeAfterASimilarCopyIsPenalised) {
  Track(L"c:\\a.doc", ZT_WRITE_SIMILAR).Created = true;
  EXPECT_EQ(Insert(DeleteAlt(kPid, L"c:\\a.doc")), 6);
  EXPECT_EQ(Summary(L"c:\\a.doc"), "8 Written Similar Created penalized");
}

// Size changes.

TEST_F(FileEventsTest, SizeChangeMarksWithoutAStep) {
  Track(L"c:\\a.doc", ZT_READ_START);
  EXPECT_THAT(MessagesOf(SizeChange(kPid, L"c:\\a.doc")),
              ElementsAre("File size of c:\\a.doc has been modified, will need to be restored"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "2 Similar");
  EXPECT_THAT(Quarantined(), IsEmpty());
}

TEST_F(FileEventsTest, SizeChangeFindsAnyLetterCase) {
  Track(L"c:\\a.doc", ZT_OVERWRITE);
  EXPECT_EQ(Insert(SizeChange(kPid, L"C:\\A.DOC")), 0);
  EXPECT_EQ(Summary(L"c:\\a.doc"), "4 Similar");
}

// Section synchronisations.

TEST_F(FileEventsTest, SectionSyncStepsAFile) {
  Track(L"c:\\a.doc", ZT_OPEN_EXISTING);
  EXPECT_THAT(MessagesOf(SectionSync(kPid, L"C:\\A.doc")),
              ElementsAre("Next State from 1 with 0x004008", "Callback: OpenReadSync", "LB_PreSectionSync ZT_READ_START"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "3");
  EXPECT_THAT(Quarantined(), IsEmpty());
}

TEST_F(FileEventsTest, SectionSyncOfARenamedFileIsPenalisedAndQuarantined) {
  Track(L"c:\\a.doc", ZT_READ_START).Renamed = true;
  EXPECT_EQ(Insert(SectionSync(kPid, L"C:\\A.doc")), 2);
  EXPECT_EQ(Summary(L"c:\\a.doc"), "7 Written Similar Renamed penalized");
  EXPECT_THAT(Quarantined(), ElementsAre(L"c:\\a.doc"));
}

TEST_F(FileEventsTest, SectionSyncOfARenamedFileIsTraced) {
  Track(L"c:\\a.doc", ZT_READ_START).Renamed = true;
  EXPECT_THAT(MessagesOf(SectionSync(kPid, L"C:\\A.doc")),
              ElementsAre("Next State from 2 with 0x004008", "Callback: OpenReadSync", "LB_PreSectionSync ZT_READ_START",
                          "ZT_RENAME_SECTION_SYNC", "Adding c:\\a.doc to the quarantine list of pid 10"));
}

// What a step hands on.

TEST_F(FileEventsTest, PenaltyIsChargedUnderTheLowerCasePathOfTheRecord) {
  Track(L"c:\\a.doc", ZT_WRITE_SIMILAR).Path = MakePath(L"C:\\A.Doc");
  LOG_ITEM log = Delete(kPid, L"C:\\a.DOC");
  log.Time = 4711;
  EXPECT_EQ(Insert(log), 6);
  EXPECT_EQ(ScoreOf(kPid), 6);
  EXPECT_EQ(Process().ScoreTime, 4711);
}

TEST_F(FileEventsTest, SecondPenaltyForAFileIsDropped) {
  Track(L"c:\\a.doc", ZT_WRITE_SIMILAR).penalized = true;
  EXPECT_THAT(MessagesOf(Delete(kPid, L"c:\\a.doc")), Contains("File already penalized\n"));
  EXPECT_EQ(ScoreOf(kPid), 1);
  EXPECT_EQ(File(L"c:\\a.doc").State, ZT_WRITTEN_DELETE);
}

// A renamed copy keeps the path under which its first name was opened, and that record is charged.
TEST_F(FileEventsTest, RenamedCopyIsChargedUnderItsFirstName) {
  Insert(Open(kPid, L"C:\\D\\A.doc"));
  Insert(Rename(kPid, L"C:\\D\\A.doc", L"C:\\Out\\B.doc"));
  EXPECT_EQ(Insert(SectionSync(kPid, L"C:\\Out\\B.doc")), 2);
  EXPECT_EQ(Summary(L"c:\\out\\b.doc"), "7 Written Similar Renamed");
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "1 Similar penalized");
}

// The child's penalty names "c:\a.doc"; the callback of the parent's pass then names a file that the child does not track.
TEST_F(FileEventsTest, CallbackOfTheParentsPassGivesThePathEvenWhenItReturnsZero) {
  Track(L"c:\\a.doc", ZT_READ_START).Path = MakePath(L"c:\\other.doc");
  StartChild(kPid, 20);
  FileItem& file = EnterFile(*ItemOf(20), L"c:\\a.doc");
  file.State = ZT_WRITE_SIMILAR;
  file.Path = MakePath(L"c:\\a.doc");
  EXPECT_THAT(MessagesOf(Delete(20, L"c:\\a.doc")), Contains("Cannot find file in file context\n"));
  EXPECT_EQ(ScoreOf(20), 1);
  EXPECT_EQ(Summary(file), "8 Written Similar");
  EXPECT_EQ(Summary(L"c:\\a.doc"), "6 Similar");
}

TEST_F(FileEventsTest, PassWithoutACallbackLeavesThePath) {
  Track(L"c:\\a.doc", ZT_OPEN_EXISTING).Path = MakePath(L"c:\\other.doc");
  StartChild(kPid, 20);
  FileItem& file = EnterFile(*ItemOf(20), L"c:\\a.doc");
  file.State = ZT_WRITE_SIMILAR;
  file.Path = MakePath(L"c:\\a.doc");
  EXPECT_EQ(Insert(Delete(20, L"c:\\a.doc")), 6);
  EXPECT_EQ(ScoreOf(20), 6);
  EXPECT_EQ(Summary(file), "8 Written Similar penalized");
}

TEST_F(FileEventsTest, ParentsPassKeepsTheParentsOwnRecordsAndLists) {
  StartChild(kPid, 20);
  Insert(Open(20, L"c:\\a.doc"));
  Insert(CreateFresh(20, L"c:\\new.txt"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "1");
  EXPECT_EQ(Summary(*FileOf(20, L"c:\\a.doc")), "1");
  EXPECT_THAT(Quarantined(), ElementsAre(L"c:\\new.txt"));
  EXPECT_THAT(ItemOf(20)->QuarantineList.Paths(), ElementsAre(L"c:\\new.txt"));
}

// Whole stories.

TEST_F(FileEventsTest, OverwritingAFileThatWasReadDoublesTheScore) {
  Insert(Open(kPid, L"C:\\D\\A.doc", 1000));
  Insert(Read(kPid, L"C:\\D\\A.doc", 1000));
  EXPECT_EQ(Insert(Write(kPid, L"C:\\D\\A.doc")), 2);
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "4 Written Similar SimilarMark ReadStarted penalized");
}

TEST_F(FileEventsTest, CopyAppendedByAnExtensionAndDeletedOriginalMultiplyBySix) {
  Insert(Open(kPid, L"C:\\D\\A.doc", 1000));
  Insert(Read(kPid, L"C:\\D\\A.doc", 1000));
  Insert(CreateFresh(kPid, L"C:\\D\\A.doc.enc"));
  EXPECT_EQ(Insert(Write(kPid, L"C:\\D\\A.doc.enc")), 0);
  EXPECT_EQ(Insert(Delete(kPid, L"C:\\D\\A.doc")), 6);
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "8 Written Similar ReadStarted penalized");
}

TEST_F(FileEventsTest, DeletedOriginalAndThenACopyMultiplyBySix) {
  Insert(Open(kPid, L"C:\\D\\A.doc", 1000));
  Insert(Read(kPid, L"C:\\D\\A.doc", 1000));
  EXPECT_EQ(Insert(Delete(kPid, L"C:\\D\\A.doc")), 0);
  Insert(CreateFresh(kPid, L"C:\\D\\A.doc.enc"));
  EXPECT_EQ(Insert(Write(kPid, L"C:\\D\\A.doc.enc")), 6);
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "8 Written Similar ReadStarted penalized");
}

}  // namespace
}  // namespace zt::testing
