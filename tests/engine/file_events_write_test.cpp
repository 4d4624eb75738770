// Pre-writes: 0x4004, "path|length" with the offset in TargetPid.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "engine/file_events.h"
#include "tests/engine/file_events_fixture.h"
#include "tests/support/state_dump.h"

namespace zt::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint32_t kNoWrite = 0xFFFFFFFF;

// The length's text.

struct LengthRow {
  int line;
  std::u16string_view text;
  std::int32_t length;
};

TEST(ParseLengthTest, ReadsDecimalTextAsTheCLibraryDoes) {
  constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
  const LengthRow rows[] = {
      {__LINE__, u"100", 100},
      {__LINE__, u"0", 0},
      {__LINE__, u"0100", 100},
      {__LINE__, u"  42", 42},
      {__LINE__, u"\t\n\v\f\r 42", 42},
      {__LINE__, u"+7", 7},
      {__LINE__, u" +7", 7},
      {__LINE__, u"-5", -5},
      {__LINE__, u"-0", 0},
      // Stops at what is no digit.
      {__LINE__, u"12abc", 12},
      {__LINE__, u"12 34", 12},
      {__LINE__, u"12|34", 12},
      {__LINE__, u"12.9", 12},
      {__LINE__, u"0x10", 0},
      // No digits.
      {__LINE__, u"", 0},
      {__LINE__, u" ", 0},
      {__LINE__, u"abc", 0},
      {__LINE__, u"-", 0},
      {__LINE__, u"+-5", 0},
      {__LINE__, u"- 5", 0},
      {__LINE__, u"\uFF11\uFF12", 0},
      // The bounds and beyond.
      {__LINE__, u"2147483647", kMax},
      {__LINE__, u"2147483648", kMax},
      {__LINE__, u"4294967295", kMax},
      {__LINE__, u"4294967301", kMax},
      {__LINE__, u"18446744073709551621", kMax},
      {__LINE__, u"99999999999999999999999999999999", kMax},
      {__LINE__, u"-2147483648", kMin},
      {__LINE__, u"-2147483649", kMin},
      {__LINE__, u"-99999999999999999999999999999999", kMin},
      {__LINE__, u"00000000000000000000000000000000007", 7},
  };
  for (const LengthRow& row : rows) {
    EXPECT_EQ(ParseLength(row.text), row.length) << "line " << row.line;
  }
}

// Targets.

TEST_F(FileEventsTest, WriteWithoutALengthIsIgnored) {
  Track(L"c:\\a.doc", ZT_READ_START);
  const std::string before = DumpState(core());
  EXPECT_THAT(MessagesOf(MakeEvent(BehaviorWrite, kPid, L"c:\\a.doc")), IsEmpty());
  EXPECT_EQ(DumpState(core()), before);
}

TEST_F(FileEventsTest, WriteIsSplitAtTheFirstBar) {
  EXPECT_THAT(
      MessagesOf(MakeEvent(BehaviorWrite, kPid, L"C:\\A.doc|12AB|34", 5)),
      ElementsAre("PreWrite:: Offset: 5, Last offset: -1, Filesize: -1, Diff: 0, Name: c:\\a.doc, Length: 12 (12ab|34)"));
  EXPECT_EQ(Process().LastWriteLength, 12u);
}

TEST_F(FileEventsTest, WriteMayNameNothing) {
  EXPECT_THAT(MessagesOf(MakeEvent(BehaviorWrite, kPid, L"|", 5)),
              ElementsAre("PreWrite:: Offset: 5, Last offset: -1, Filesize: -1, Diff: 0, Name: , Length: 0 ()"));
}

/// The tracked file "c:\a.doc" of 1000 bytes, read up to 500, after a write of which nothing recurs at offset 100 and
/// length 64.
class FileWriteTest : public FileEventsTest {
 protected:
  FileWriteTest() {
    FileItem& file = Track(L"c:\\a.doc", ZT_READ_START);
    file.CreateInfo = 1000;
    file.ReadInfo = 500;
    Remember(1, 2, 3);
  }

  void Remember(std::uint32_t length, std::uint32_t offset, std::uint32_t difference) {
    Process().LastWriteLength = length;
    Process().LastWriteOffset = offset;
    Process().LastWriteDiff = difference;
  }
  void ExpectRemembered(std::uint32_t length, std::uint32_t offset, std::uint32_t difference) {
    EXPECT_EQ(Process().LastWriteLength, length);
    EXPECT_EQ(Process().LastWriteOffset, offset);
    EXPECT_EQ(Process().LastWriteDiff, difference);
  }
  /// Whether a write to the tracked file makes a step.
  bool Steps(std::uint64_t offset, std::wstring_view length = L"64") {
    File(L"c:\\a.doc").State = ZT_READ_START;
    Insert(Write(kPid, L"c:\\a.doc", offset, length));
    return File(L"c:\\a.doc").State == ZT_OVERWRITE;
  }
};

// What a tracked file undergoes in any case.

TEST_F(FileWriteTest, TrackedFileIsMarkedAndQuarantinedWithoutAStep) {
  EXPECT_EQ(Insert(Write(kPid, L"C:\\A.doc", 100, L"64")), 0);
  EXPECT_EQ(Summary(L"c:\\a.doc"), "2 Similar SimilarMark");
  EXPECT_THAT(Quarantined(), ElementsAre(L"c:\\a.doc"));
}

TEST_F(FileWriteTest, WriteThatMakesNoStepIsTraced) {
  EXPECT_THAT(MessagesOf(Write(kPid, L"C:\\A.doc", 100, L"64")),
              ElementsAre("File c:\\a.doc needs to be restored",
                          "PreWrite:: Offset: 100, Last offset: 2, Filesize: 1000, Diff: 900, Name: c:\\a.doc, Length: 64 (64)",
                          "Adding c:\\a.doc to the quarantine list of pid 10"));
}

TEST_F(FileWriteTest, WriteThatMakesAStepIsTraced) {
  EXPECT_THAT(
      MessagesOf(Write(kPid, L"C:\\A.doc", 0, L" 64x")),
      ElementsAre("File c:\\a.doc needs to be restored",
                  "PreWrite:: Offset: 0, Last offset: 2, Filesize: 1000, Diff: 1000, Name: c:\\a.doc, Length: 64 ( 64x)",
                  "Next State from 2 with 0x004004", "Callback: ReadWrite", "ZT_OVERWRITE",
                  "Adding c:\\a.doc to the quarantine list of pid 10"));
}

TEST_F(FileWriteTest, StepOfATrackedFileIsNoSimilarOne) {
  EXPECT_EQ(Insert(Write(kPid, L"C:\\A.doc", 0)), 2);
  EXPECT_EQ(Summary(L"c:\\a.doc"), "4 Written Similar SimilarMark penalized");
}

// A section-synchronised file steps on writes of similar copies only.
TEST_F(FileWriteTest, SectionSynchronisedFileDoesNotStepOnItsOwnWrite) {
  File(L"c:\\a.doc").State = ZT_SECTION_SYNC;
  EXPECT_EQ(Insert(Write(kPid, L"C:\\A.doc", 0)), 0);
  EXPECT_EQ(File(L"c:\\a.doc").State, ZT_SECTION_SYNC);
}

TEST_F(FileWriteTest, TrackedFileIsNotSearchedFor) {
  Track(L"c:\\a", ZT_DELETE_ORG);
  Insert(Write(kPid, L"c:\\a.doc", 0));
  EXPECT_EQ(Summary(L"c:\\a"), "6");
  EXPECT_EQ(Process().NameDiff, u"");
}

// When a write is considered.

TEST_F(FileWriteTest, NothingRecurring) { EXPECT_FALSE(Steps(100)); }

TEST_F(FileWriteTest, LengthOfTheLastWriteRecurs) {
  Remember(64, 2, 3);
  EXPECT_TRUE(Steps(100));
}

TEST_F(FileWriteTest, LengthsAreComparedAsNumbers) {
  Remember(64, 2, 3);
  EXPECT_TRUE(Steps(100, L"+064 bytes"));
}

TEST_F(FileWriteTest, NegativeLengthEqualsItsUnsignedForm) {
  Remember(kNoWrite, 2, 3);
  EXPECT_TRUE(Steps(100, L"-1"));
}

TEST_F(FileWriteTest, OffsetIsZero) { EXPECT_TRUE(Steps(0)); }

TEST_F(FileWriteTest, OffsetOfWhichOnlyTheLowHalfIsZeroIsNotZero) { EXPECT_FALSE(Steps(0x1'0000'0000)); }

TEST_F(FileWriteTest, OffsetIsTheSizeThatWasRead) {
  File(L"c:\\a.doc").ReadInfo = 100;
  EXPECT_TRUE(Steps(100));
}

TEST_F(FileWriteTest, SizeThatWasReadHas64Bits) {
  File(L"c:\\a.doc").ReadInfo = 0x5'0000'0064;
  EXPECT_FALSE(Steps(0x64));
  Remember(1, 2, 3);
  EXPECT_FALSE(Steps(0x4'0000'0064));
  Remember(1, 2, 3);
  EXPECT_TRUE(Steps(0x5'0000'0064));
}

TEST_F(FileWriteTest, DifferenceOfTheLastWriteRecurs) {
  Remember(1, 2, 900);
  EXPECT_TRUE(Steps(100));
}

TEST_F(FileWriteTest, DifferenceOfZeroRecurs) {
  Remember(1, 2, 0);
  EXPECT_TRUE(Steps(2000)) << "beyond the file's end";
}

TEST_F(FileWriteTest, OffsetOfTheLastWriteRecurs) {
  Remember(1, 100, 3);
  EXPECT_TRUE(Steps(100));
}

TEST_F(FileWriteTest, LowHalfOfTheLastOffsetRecurs) {
  Remember(1, 100, 3);
  EXPECT_TRUE(Steps(0x7'0000'0064));
}

TEST_F(FileWriteTest, SecondEqualWriteIsConsidered) {
  EXPECT_FALSE(Steps(100));
  EXPECT_TRUE(Steps(100));
}

// Difference and memory.

TEST_F(FileWriteTest, WriteInsideTheFileIsRemembered) {
  Insert(Write(kPid, L"c:\\a.doc", 999, L"64"));
  ExpectRemembered(64, 999, 1);
}

TEST_F(FileWriteTest, WriteAtTheEndUpdatesTheLengthOnly) {
  Insert(Write(kPid, L"c:\\a.doc", 1000, L"64"));
  ExpectRemembered(64, 2, 3);
}

TEST_F(FileWriteTest, WriteThatIsConsideredIsRememberedToo) {
  Insert(Write(kPid, L"c:\\a.doc", 0, L"64"));
  ExpectRemembered(64, 0, 1000);
}

TEST_F(FileWriteTest, LowHalfOfTheOffsetIsRemembered) {
  Insert(Write(kPid, L"c:\\a.doc", 0x9'0000'0064, L"64"));
  ExpectRemembered(64, 100, 900);
}

TEST_F(FileWriteTest, NegativeLengthIsRememberedAsUnsigned) {
  Insert(Write(kPid, L"c:\\a.doc", 100, L"-5"));
  ExpectRemembered(0xFFFFFFFB, 100, 900);
}

TEST_F(FileWriteTest, OffsetIsTracedByItsLowHalf) {
  EXPECT_THAT(MessagesOf(Write(kPid, L"c:\\a.doc", 0x9'FFFF'FFFE, L"-5")),
              Contains("PreWrite:: Offset: -2, Last offset: 2, Filesize: 1000, Diff: 1002, Name: c:\\a.doc, Length: -5 (-5)"));
  ExpectRemembered(0xFFFFFFFB, 0xFFFFFFFE, 1002);
}

// 0x80000000 - 1 wraps to the greatest positive number; the size is negative, so no offset from 0 up is below it.
TEST_F(FileWriteTest, DifferenceOfAGreatSizeWraps) {
  File(L"c:\\a.doc").CreateInfo = 0x80000000;
  EXPECT_THAT(
      MessagesOf(Write(kPid, L"c:\\a.doc", 1, L"64")),
      Contains(
          "PreWrite:: Offset: 1, Last offset: 2, Filesize: -2147483648, Diff: 2147483647, Name: c:\\a.doc, Length: 64 (64)"));
  ExpectRemembered(64, 2, 3);
}

// 0x7FFFFFFF - 0x80000000 wraps to -1, which is not positive; the offset is negative and so below the size.
TEST_F(FileWriteTest, DifferenceOfAGreatOffsetWraps) {
  File(L"c:\\a.doc").CreateInfo = 0x7FFFFFFF;
  Insert(Write(kPid, L"c:\\a.doc", 0x80000000, L"64"));
  ExpectRemembered(64, 0x80000000, 0);
}

TEST_F(FileWriteTest, SizeWithAllBitsSetIsLikeAnUnknownOne) {
  File(L"c:\\a.doc").CreateInfo = 0xFFFFFFFF;
  Insert(Write(kPid, L"c:\\a.doc", 100, L"64"));
  ExpectRemembered(64, 2, 3);
}

// Files that are not tracked.

TEST_F(FileWriteTest, UnknownFileWithNothingRecurringUpdatesTheLengthOnly) {
  EXPECT_THAT(MessagesOf(Write(kPid, L"c:\\new.bin", 5, L"64")),
              ElementsAre("PreWrite:: Offset: 5, Last offset: 2, Filesize: -1, Diff: 0, Name: c:\\new.bin, Length: 64 (64)"));
  ExpectRemembered(64, 2, 3);
  EXPECT_FALSE(IsTracked(L"c:\\new.bin"));
  EXPECT_THAT(Quarantined(), IsEmpty());
}

TEST_F(FileWriteTest, UnknownFileWithNothingRecurringIsNotSearchedFor) {
  Insert(Write(kPid, L"c:\\a.doc.enc", 5, L"64"));
  EXPECT_EQ(Summary(L"c:\\a.doc"), "2");
}

TEST_F(FileWriteTest, UnknownFileIsNeitherTrackedNorQuarantinedWhenConsidered) {
  EXPECT_THAT(MessagesOf(Write(kPid, L"d:\\new.bin", 0, L"64")),
              ElementsAre("PreWrite:: Offset: 0, Last offset: 2, Filesize: -1, Diff: 0, Name: d:\\new.bin, Length: 64 (64)"));
  EXPECT_FALSE(IsTracked(L"d:\\new.bin"));
  EXPECT_THAT(Quarantined(), IsEmpty());
  ExpectRemembered(64, 2, 3);
}

// Signed, an offset of 2^31 or more is below the unknown size -1 unless it is -1 itself.
TEST_F(FileWriteTest, UnknownFileUpdatesTheMemoryFromOffsetsOf2To31On) {
  Insert(Write(kPid, L"c:\\new.bin", 0x7FFFFFFF, L"64"));
  ExpectRemembered(64, 2, 3);
  Insert(Write(kPid, L"c:\\new.bin", 0x80000000, L"65"));
  ExpectRemembered(65, 0x80000000, 0x7FFFFFFF);
  Insert(Write(kPid, L"c:\\new.bin", 0xFFFFFFFE, L"66"));
  ExpectRemembered(66, 0xFFFFFFFE, 1);
  Insert(Write(kPid, L"c:\\new.bin", 0xFFFFFFFF, L"67"));
  ExpectRemembered(67, 0xFFFFFFFE, 1);
}

/// The process writes to "c:\d\a.doc.enc", which appends to the tracked "c:\d\a.doc".
class FileCopyWriteTest : public FileEventsTest {
 protected:
  LOG_ITEM WriteCopy() { return Write(kPid, L"C:\\D\\A.doc.enc"); }
};

TEST_F(FileCopyWriteTest, FileThatWasReadMovesOnWithoutAPenalty) {
  Track(L"c:\\d\\a.doc", ZT_READ_START);
  EXPECT_EQ(Insert(WriteCopy()), 0);
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "5");
  EXPECT_FALSE(IsTracked(L"c:\\d\\a.doc.enc"));
  EXPECT_THAT(Quarantined(), IsEmpty());
}

TEST_F(FileCopyWriteTest, StepIsAskedForWithTheStateBefore) {
  Track(L"c:\\d\\a.doc", ZT_READ_START);
  EXPECT_THAT(
      MessagesOf(WriteCopy()),
      ElementsAre("PreWrite:: Offset: 0, Last offset: -1, Filesize: -1, Diff: 0, Name: c:\\d\\a.doc.enc, Length: 100 (100)",
                  "ZT_WRITE_SIMILAR", "Next State from 2 with 0x004004", "Callback: ReadWrite"));
}

TEST_F(FileCopyWriteTest, DeletedOriginalIsPenalised) {
  Track(L"c:\\d\\a.doc", ZT_DELETE_ORG);
  EXPECT_EQ(Insert(WriteCopy()), 6);
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "8 Written Similar penalized");
}

TEST_F(FileCopyWriteTest, DeletedOriginalIsTraced) {
  Track(L"c:\\d\\a.doc", ZT_DELETE_ORG);
  EXPECT_THAT(
      MessagesOf(WriteCopy()),
      ElementsAre("PreWrite:: Offset: 0, Last offset: -1, Filesize: -1, Diff: 0, Name: c:\\d\\a.doc.enc, Length: 100 (100)",
                  "ZT_WRITE_SIMILAR", "Next State from 6 with 0x004004", "Callback: DeleteWrite",
                  "ZT_DELETE_ORG + ZT_WRITE_SIMILAR"));
}

TEST_F(FileCopyWriteTest, SectionSynchronisedOriginalIsPenalised) {
  Track(L"c:\\d\\a.doc", ZT_SECTION_SYNC);
  EXPECT_EQ(Insert(WriteCopy()), 2);
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "4 Written Similar penalized");
}

// The move is made from every state, also from those that no transition leaves.
TEST_F(FileCopyWriteTest, OriginalInAnyOtherStateMovesOnWithoutACallback) {
  for (const FileState state : {ZT_UNKNOWN, ZT_OPEN_EXISTING, ZT_OVERWRITE, ZT_WRITE_SIMILAR, ZT_RENAME_SECTION_SYNC,
                                ZT_WRITTEN_DELETE, ZT_WRITE_SIMILAR_SYNC, ZT_MAX}) {
    Track(L"c:\\d\\a.doc", state);
    EXPECT_THAT(MessagesOf(WriteCopy()), ElementsAre(::testing::StartsWith("PreWrite:: "), "ZT_WRITE_SIMILAR",
                                                     "Next State from " + std::to_string(state) + " with 0x004004"));
    EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "5");
  }
}

TEST_F(FileCopyWriteTest, CopyIsRecognisedByTheDifferenceOfAnEarlierOne) {
  Track(L"c:\\d\\one.doc", ZT_DELETE_ORG);
  Track(L"c:\\d\\two.doc", ZT_DELETE_ORG);
  EXPECT_EQ(Insert(Write(kPid, L"c:\\d\\one.enc")), 0);
  EXPECT_EQ(Process().NameDiff, u".enc");
  EXPECT_EQ(Insert(Write(kPid, L"c:\\d\\two.enc")), 6);
  EXPECT_EQ(Summary(L"c:\\d\\one.doc"), "6");
  EXPECT_EQ(Summary(L"c:\\d\\two.doc"), "8 Written Similar penalized");
}

TEST_F(FileCopyWriteTest, EachReasonLeadsToASearch) {
  Process().LastWriteLength = 64;
  Track(L"c:\\d\\a.doc", ZT_READ_START);
  Insert(Write(kPid, L"c:\\d\\a.doc.enc", 5, L"64"));
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "5") << "length";
  Track(L"c:\\d\\a.doc", ZT_READ_START);
  Process().LastWriteDiff = 0;
  Insert(Write(kPid, L"c:\\d\\a.doc.enc", 5, L"65"));
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "5") << "difference";
  Track(L"c:\\d\\a.doc", ZT_READ_START);
  Process().LastWriteDiff = 3;
  Process().LastWriteOffset = 5;
  Insert(Write(kPid, L"c:\\d\\a.doc.enc", 5, L"66"));
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "5") << "offset";
}

TEST_F(FileCopyWriteTest, OriginalIsPenalisedUnderItsOwnPath) {
  Track(L"c:\\d\\a.doc", ZT_DELETE_ORG).Path = MakePath(L"C:\\First\\Name.doc");
  Track(L"c:\\first\\name.doc", ZT_OPEN_EXISTING);
  EXPECT_EQ(Insert(WriteCopy()), 6);
  EXPECT_EQ(Summary(L"c:\\d\\a.doc"), "8 Written Similar");
  EXPECT_EQ(Summary(L"c:\\first\\name.doc"), "1 penalized");
}

}  // namespace
}  // namespace zt::testing
