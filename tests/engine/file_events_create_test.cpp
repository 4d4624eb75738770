// Creates and opens: 0x4001 and 0x4002.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/engine/file_events_fixture.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FileCreateTest : public FileEventsTest {
 protected:
  static LOG_ITEM CreateNew(std::wstring_view path, std::uint64_t target_pid) {
    return MakeEvent(BehaviorCreateNew, kPid, path, target_pid);
  }
};

TEST_F(FileCreateTest, OpenOfAnExistingFileFillsARecord) {
  LOG_ITEM open = Open(kPid, L"C:\\D\\A.Doc", 0x3'0000'0005);
  open.Time = 77;
  open.Context = 0xFEDCBA9876543210;
  EXPECT_EQ(Insert(open), 0);
  ASSERT_EQ(Process().files.size(), 1u);
  const FileItem& file = File(L"c:\\d\\a.doc");
  EXPECT_EQ(Summary(file), "1");
  EXPECT_EQ(file.FirstTime, 77);
  EXPECT_EQ(file.Context, 0xFEDCBA9876543210u);
  EXPECT_EQ(file.Path, L"C:\\D\\A.Doc");
  EXPECT_EQ(file.CreateInfo, 5u);
  EXPECT_EQ(file.ReadInfo, 0u);
  EXPECT_THAT(Quarantined(), IsEmpty());
  EXPECT_THAT(CreatedFiles(), IsEmpty());
}

TEST_F(FileCreateTest, OpenOfAnExistingFileIsTraced) {
  EXPECT_THAT(MessagesOf(Open(kPid, L"C:\\D\\A.Doc")),
              ElementsAre("Next State from 0 with 0x004001", "Callback: UnknownCreate", "ZT_OPEN_EXISTING"));
}

TEST_F(FileCreateTest, MarkOfAnExistingFileHas64Bits) {
  Insert(Open(kPid, L"c:\\a.doc", 0x1'0000'0000));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "1");
  EXPECT_EQ(File(L"c:\\a.doc").CreateInfo, 0u);
}

TEST_F(FileCreateTest, FreshFileIsListedAndNotTracked) {
  EXPECT_EQ(Insert(CreateFresh(kPid, L"C:\\D\\New.txt")), 0);
  EXPECT_THAT(Process().files, IsEmpty());
  EXPECT_THAT(CreatedFiles(), ElementsAre(L"c:\\d\\new.txt"));
  EXPECT_THAT(Quarantined(), ElementsAre(L"c:\\d\\new.txt"));
}

TEST_F(FileCreateTest, FreshFileIsTraced) {
  EXPECT_THAT(
      MessagesOf(CreateFresh(kPid, L"C:\\D\\New.txt")),
      ElementsAre("Adding c:\\d\\new.txt to the created files list", "Adding c:\\d\\new.txt to the quarantine list of pid 10"));
}

TEST_F(FileCreateTest, FreshFileIsListedOnce) {
  Insert(CreateFresh(kPid, L"c:\\new.txt"));
  EXPECT_THAT(MessagesOf(CreateFresh(kPid, L"C:\\NEW.TXT")),
              ElementsAre("c:\\new.txt still exists in the created files list",
                          "c:\\new.txt still exists in the quarantine list of pid 10"));
  EXPECT_THAT(CreatedFiles(), ElementsAre(L"c:\\new.txt"));
  EXPECT_THAT(Quarantined(), ElementsAre(L"c:\\new.txt"));
}

TEST_F(FileCreateTest, OpenOfAFileThatTheProcessMadeIsNotTracked) {
  Insert(CreateFresh(kPid, L"c:\\new.txt"));
  EXPECT_THAT(MessagesOf(Open(kPid, L"C:\\New.txt")), IsEmpty());
  EXPECT_THAT(MessagesOf(CreateNew(L"C:\\New.txt", 1)), IsEmpty());
  EXPECT_THAT(Process().files, IsEmpty());
}

TEST_F(FileCreateTest, OpenOfATrackedFileStepsItAgain) {
  Insert(Open(kPid, L"C:\\A.doc", 5));
  EXPECT_THAT(MessagesOf(Open(kPid, L"c:\\A.DOC", 6)), ElementsAre("Next State from 1 with 0x004001"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "1");
  EXPECT_EQ(File(L"c:\\a.doc").Path, L"C:\\A.doc");
  EXPECT_EQ(File(L"c:\\a.doc").CreateInfo, 5u);
  EXPECT_EQ(Process().files.size(), 1u);
}

// The list of made files is asked for unknown paths only.
TEST_F(FileCreateTest, TrackedFileStepsEvenWhenItIsListedAsMade) {
  Insert(CreateFresh(kPid, L"c:\\a.doc"));
  Track(L"c:\\a.doc", ZT_UNKNOWN);
  Insert(Open(kPid, L"c:\\a.doc"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "1");
}

TEST_F(FileCreateTest, FreshFileUnderATrackedNameIsNotListed) {
  Track(L"c:\\a.doc", ZT_READ_START);
  EXPECT_THAT(MessagesOf(CreateFresh(kPid, L"c:\\a.doc")), ElementsAre("Next State from 2 with 0x004001"));
  EXPECT_THAT(CreatedFiles(), IsEmpty());
  EXPECT_THAT(Quarantined(), IsEmpty());
}

TEST_F(FileCreateTest, DeletedFileIsMadeAnew) {
  Track(L"c:\\a.doc", ZT_DELETE_ORG);
  EXPECT_THAT(MessagesOf(CreateFresh(kPid, L"c:\\a.doc")),
              ElementsAre("Next State from 6 with 0x004001", "Callback: DeletedCreate",
                          "ZT_READ_START: Found creating already deleted file with identical name"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "2");
}

TEST_F(FileCreateTest, DeletedFileThatIsOpenedStaysDeleted) {
  Track(L"c:\\a.doc", ZT_DELETE_ORG);
  EXPECT_THAT(MessagesOf(Open(kPid, L"c:\\a.doc")), ElementsAre("Next State from 6 with 0x004001", "Callback: DeletedCreate"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "6");
}

TEST_F(FileCreateTest, EmptyRecordStaysEmptyWhenAFreshFileIsMade) {
  EnterFile(Process(), L"c:\\a.doc");
  EXPECT_THAT(MessagesOf(CreateFresh(kPid, L"C:\\A.doc")),
              ElementsAre("Next State from 0 with 0x004001", "Callback: UnknownCreate"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "0");
  EXPECT_EQ(File(L"c:\\a.doc").Path, L"");
}

TEST_F(FileCreateTest, SecondCodeMakesAnEmptyRecordOfAnExistingFile) {
  LOG_ITEM create = CreateNew(L"C:\\A.doc", 5);
  create.Time = 77;
  create.Context = 9;
  EXPECT_THAT(MessagesOf(create), ElementsAre("Next State from 0 with 0x004002"));
  const FileItem& file = File(L"c:\\a.doc");
  EXPECT_EQ(Summary(file), "0");
  EXPECT_EQ(file.Path, L"");
  EXPECT_EQ(file.FirstTime, 0);
  EXPECT_EQ(file.Context, 0u);
  EXPECT_EQ(file.CreateInfo, 0u);
}

TEST_F(FileCreateTest, SecondCodeMarksATrackedFileAsCreated) {
  Track(L"c:\\a.doc", ZT_READ_START);
  EXPECT_THAT(MessagesOf(CreateNew(L"C:\\A.doc", 5)), ElementsAre("Next State from 2 with 0x004002"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "2 Created");
}

TEST_F(FileCreateTest, SecondCodeMarksATrackedFileThatIsMadeAnew) {
  Track(L"c:\\a.doc", ZT_DELETE_ORG);
  EXPECT_THAT(MessagesOf(CreateNew(L"C:\\A.doc", 0)), ElementsAre("Next State from 6 with 0x004002"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "6 Created");
  EXPECT_THAT(CreatedFiles(), IsEmpty());
}

TEST_F(FileCreateTest, SecondCodeListsAFreshFile) {
  EXPECT_THAT(MessagesOf(CreateNew(L"C:\\New.txt", 0)), ElementsAre("Adding c:\\new.txt to the created files list",
                                                                    "Adding c:\\new.txt to the quarantine list of pid 10"));
  EXPECT_THAT(Process().files, IsEmpty());
}

TEST_F(FileCreateTest, FillingKeepsTheMarkOfTheSecondCode) {
  Insert(CreateNew(L"C:\\A.doc", 5));
  Insert(CreateNew(L"C:\\A.doc", 5));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "0 Created");
  Insert(Open(kPid, L"C:\\A.doc", 8));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "1 Created");
  EXPECT_EQ(File(L"c:\\a.doc").CreateInfo, 8u);
}

TEST_F(FileCreateTest, EmptyRecordOfTheSecondCodeIsFilledByAnOpen) {
  Insert(CreateNew(L"C:\\A.doc", 5));
  Insert(Open(kPid, L"C:\\a.DOC", 8));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "1");
  EXPECT_EQ(File(L"c:\\a.doc").Path, L"C:\\a.DOC");
}

TEST_F(FileCreateTest, LettersOutsideAToZAreNotFolded) {
  Insert(Open(kPid, L"C:\\\u00C4.doc"));
  EXPECT_TRUE(IsTracked(L"c:\\\u00C4.doc"));
  EXPECT_FALSE(IsTracked(L"c:\\\u00E4.doc"));
}

TEST_F(FileCreateTest, BarIsAnOrdinaryCharacterHere) {
  Insert(Open(kPid, L"c:\\a|b"));
  EXPECT_TRUE(IsTracked(L"c:\\a|b"));
}

TEST_F(FileCreateTest, ProcessesTrackSeparately) {
  StartProcess(20);
  Insert(CreateFresh(20, L"c:\\a.doc"));
  Insert(Open(kPid, L"c:\\a.doc"));
  EXPECT_TRUE(IsTracked(L"c:\\a.doc"));
  EXPECT_EQ(FileOf(20, L"c:\\a.doc"), nullptr);
}

}  // namespace
}  // namespace zt::testing
