// The model by itself, on cases worked out by hand. (That it agrees with the engine is another matter: side_by_side_test.cpp.)

#include "tests/model/model_engine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/model/model_similar.h"
#include "tests/model/model_tree.h"
#include "tests/support/events.h"

namespace zt::model {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zt::testing::CreateFresh;
using zt::testing::Delete;
using zt::testing::MakeEvent;
using zt::testing::ModuleLoad;
using zt::testing::Open;
using zt::testing::ProcessCreate;
using zt::testing::ProcessExit;
using zt::testing::Read;
using zt::testing::Rename;
using zt::testing::SectionSync;
using zt::testing::Write;

class ModelTest : public ::testing::Test {
 protected:
  std::int32_t Insert(const LOG_ITEM& log) { return model_.InsertLog(&log); }
  std::vector<std::string> Messages() {
    std::vector<std::string> messages;
    for (const ModelLine& line : model_.trace().Take()) {
      messages.push_back(line.message);
    }
    return messages;
  }
  const FileItem& File(std::uint64_t pid, const std::wstring& key) { return model_.Find(pid)->item.files.at(key); }
  std::int32_t Score(std::uint64_t pid) { return model_.Find(pid)->item.score; }
  /// Process 10, and its child 20.
  void StartParentAndChild() {
    Insert(ProcessCreate(0, 10, 100));
    Insert(ProcessCreate(10, 20, 200));
  }

  ModelEngine model_{7, 0x7};
};

TEST_F(ModelTest, InitTracesFifteenRowsAndInit) {
  const std::vector<std::string> messages = Messages();
  ASSERT_EQ(messages.size(), 16U);
  EXPECT_EQ(messages.front(), "Adding Transition from state 0 with input 0x004001");
  EXPECT_EQ(messages[14], "Adding Transition from state 5 with input 0x004006");
  EXPECT_EQ(messages.back(), "init\n");
}

TEST_F(ModelTest, OverwritingAReadFileDoublesTheScoresOfProcessAndAncestors) {
  StartParentAndChild();
  EXPECT_EQ(Insert(Open(20, L"C:\\d\\A.doc")), 0);
  EXPECT_EQ(Insert(Read(20, L"C:\\d\\a.doc")), 0);
  EXPECT_EQ(Insert(Write(20, L"C:\\d\\a.doc")), 2);
  EXPECT_EQ(Score(20), 2);
  // The parent saw the same events and has its own record of the file; it is charged for it as an ancestor.
  EXPECT_EQ(Score(10), 2);
  EXPECT_EQ(File(20, L"c:\\d\\a.doc").state, 4U);
  EXPECT_EQ(File(10, L"c:\\d\\a.doc").state, 4U);
  EXPECT_EQ(File(20, L"c:\\d\\a.doc").path, L"C:\\d\\A.doc");
}

TEST_F(ModelTest, DeletedOriginalCountsSixWhenASimilarCopyIsWritten) {
  Insert(ProcessCreate(0, 10, 100));
  Insert(Open(10, L"C:\\d\\a.doc"));
  Insert(Read(10, L"C:\\d\\a.doc"));
  EXPECT_EQ(Insert(Delete(10, L"C:\\d\\a.doc")), 0);
  EXPECT_EQ(Insert(Write(10, L"C:\\d\\a.doc.locked")), 6);
  EXPECT_EQ(File(10, L"c:\\d\\a.doc").state, 8U);
}

TEST_F(ModelTest, SimilarFileWhoseGuardFailsStaysInTheWriteSimilarState) {
  Insert(ProcessCreate(0, 10, 100));
  Insert(Open(10, L"C:\\d\\a.doc"));
  Insert(Read(10, L"C:\\d\\a.doc"));
  Messages();
  EXPECT_EQ(Insert(Write(10, L"C:\\d\\a.doc.locked")), 0);
  EXPECT_EQ(File(10, L"c:\\d\\a.doc").state, 5U);
  EXPECT_THAT(Messages(), Contains("Next State from 2 with 0x004004"));
  EXPECT_EQ(Insert(Delete(10, L"C:\\d\\a.doc")), 6);
}

TEST_F(ModelTest, SecondPenaltyForAFileIsNotCharged) {
  Insert(ProcessCreate(0, 10, 100));
  Insert(Open(10, L"C:\\d\\a.doc"));
  Insert(Read(10, L"C:\\d\\a.doc"));
  Insert(Rename(10, L"C:\\d\\a.doc", L"C:\\o\\z.txt"));
  EXPECT_EQ(Insert(Write(10, L"C:\\d\\a.doc")), 2);
  Messages();
  EXPECT_EQ(Insert(Write(10, L"C:\\o\\z.txt")), 0);
  EXPECT_THAT(Messages(), Contains("File already penalized\n"));
  EXPECT_EQ(Score(10), 2);
}

TEST_F(ModelTest, PenaltyForAFileOfTheParentAloneIsDropped) {
  StartParentAndChild();
  Insert(Open(10, L"C:\\d\\a.doc"));
  Insert(Read(10, L"C:\\d\\a.doc"));
  Messages();
  EXPECT_EQ(Insert(Write(20, L"C:\\d\\a.doc")), 0);
  EXPECT_THAT(Messages(), Contains("Cannot find file in file context\n"));
  EXPECT_EQ(Score(10), 1);
  EXPECT_EQ(File(10, L"c:\\d\\a.doc").state, 4U);
}

TEST_F(ModelTest, ScoreAboveTheSignedRangeIsClampedOnTheWayOut) {
  Insert(ProcessCreate(0, 10, 100));
  model_.UpdateScore(10, 0x40000003);
  Insert(Open(10, L"C:\\d\\a.doc"));
  Insert(Read(10, L"C:\\d\\a.doc"));
  EXPECT_EQ(Insert(Write(10, L"C:\\d\\a.doc")), 0x7FFFFFFF);
  EXPECT_EQ(Score(10), 0x7FFFFFFF);
}

TEST_F(ModelTest, SyncOfARenamedCopyCountsTwo) {
  Insert(ProcessCreate(0, 10, 100));
  Insert(Open(10, L"C:\\d\\a.doc"));
  Insert(Rename(10, L"C:\\d\\a.doc", L"C:\\o\\z.txt"));
  Messages();
  // The copy is charged under its first name.
  EXPECT_EQ(Insert(SectionSync(10, L"C:\\o\\z.txt")), 2);
  EXPECT_THAT(Messages(), Contains("ProcKey: (10, 100) Path: c:\\d\\a.doc Penalty: 2"));
  EXPECT_EQ(File(10, L"c:\\o\\z.txt").state, 7U);
  EXPECT_TRUE(File(10, L"c:\\d\\a.doc").penalized);
}

TEST_F(ModelTest, SecondMoveIntoTheSameFolderFires) {
  Insert(ProcessCreate(0, 10, 100));
  for (const std::wstring name : {L"a.doc", L"b.doc"}) {
    Insert(Open(10, L"C:\\d\\" + name));
    Insert(Write(10, L"C:\\d\\" + name));
    Insert(Read(10, L"C:\\d\\" + name));
    Insert(Write(10, L"C:\\d\\" + name + L".enc"));
    Messages();
    EXPECT_EQ(Insert(Rename(10, L"C:\\d\\" + name, L"C:\\out\\" + name)), name == L"a.doc" ? 0 : 2);
    EXPECT_THAT(Messages(), Contains("New folder:c:\\out"));
  }
  EXPECT_EQ(File(10, L"c:\\d\\a.doc").state, 5U);
  EXPECT_EQ(File(10, L"c:\\d\\b.doc").state, 9U);
}

TEST_F(ModelTest, UnknownFileAtAnOffsetAndWithANewLengthOnlyChangesTheLength) {
  Insert(ProcessCreate(0, 10, 100));
  Messages();
  Insert(Write(10, L"C:\\d\\a.doc", 5, L"100"));
  EXPECT_THAT(Messages(),
              Contains("PreWrite:: Offset: 5, Last offset: -1, Filesize: -1, Diff: 0, Name: c:\\d\\a.doc, Length: 100 (100)"));
  EXPECT_EQ(model_.Find(10)->item.last_length, 100U);
  EXPECT_EQ(model_.Find(10)->item.last_offset, 0xFFFFFFFF);
}

TEST_F(ModelTest, UnknownFileAtAnOffsetThatReadsAsNegativeChangesTheOffset) {
  Insert(ProcessCreate(0, 10, 100));
  Insert(Write(10, L"C:\\d\\a.doc", 0x80000000, L"100"));
  EXPECT_EQ(model_.Find(10)->item.last_offset, 0x80000000);
  // -1 less the lowest number is the highest.
  EXPECT_EQ(model_.Find(10)->item.last_diff, 0x7FFFFFFFU);
}

TEST_F(ModelTest, CreatedFileIsListedAndOpeningItAgainMakesNoRecord) {
  Insert(ProcessCreate(0, 10, 100));
  Insert(CreateFresh(10, L"C:\\d\\New.doc"));
  Insert(Open(10, L"C:\\d\\new.doc"));
  const ProcessItem& process = model_.Find(10)->item;
  EXPECT_THAT(process.created_files_list, ElementsAre(L"c:\\d\\new.doc"));
  EXPECT_THAT(process.quarantine_list, ElementsAre(L"c:\\d\\new.doc"));
  EXPECT_THAT(process.files, IsEmpty());
}

TEST_F(ModelTest, BareDestinationGetsTheSourcesFolder) {
  Insert(ProcessCreate(0, 10, 100));
  Insert(Open(10, L"C:\\d\\a.doc"));
  Messages();
  Insert(Rename(10, L"C:\\d\\a.doc", L"B.doc"));
  EXPECT_THAT(Messages(), Contains("Renamed file name did not include directory, appending: c:\\d\\b.doc"));
  EXPECT_TRUE(File(10, L"c:\\d\\b.doc").renamed);
  EXPECT_FALSE(File(10, L"c:\\d\\b.doc").similar);
  EXPECT_TRUE(File(10, L"c:\\d\\a.doc").similar);
}

TEST_F(ModelTest, SameCreationTwiceLeavesOneEntryAndTwoChildren) {
  StartParentAndChild();
  Insert(ProcessCreate(10, 20, 200));
  EXPECT_THAT(model_.Find(10)->children, ElementsAre(Key(20, 200), Key(20, 200)));
  EXPECT_EQ(model_.Find(10)->live_count, 3U);
  EXPECT_EQ(model_.Find(20)->live_count, 1U);
}

TEST_F(ModelTest, ProcessThatCreatesItselfIsItsOwnParentOnce) {
  Insert(ProcessCreate(0, 10, 100));
  Insert(ProcessCreate(10, 10, 100));
  EXPECT_EQ(model_.Find(10)->parent_key, Key(10, 100));
  EXPECT_EQ(model_.Find(10)->live_count, 1U);
  EXPECT_THAT(model_.GetProcTree(10), IsEmpty());
}

TEST_F(ModelTest, FinishedFamilyIsErasedOnTheSecondReset) {
  StartParentAndChild();
  Insert(ProcessExit(20));
  EXPECT_EQ(model_.Find(10)->live_count, 1U);
  model_.ResetScore(300, 1000);
  EXPECT_NE(model_.Find(20), nullptr);
  model_.ResetScore(300, 1000);
  EXPECT_EQ(model_.Find(20), nullptr);
  EXPECT_THAT(model_.Find(10)->children, IsEmpty());
}

TEST_F(ModelTest, SixthGenerationStartsFromItsFourthAncestor) {
  for (std::uint64_t pid = 1; pid <= 6; ++pid) {
    Insert(ProcessCreate(pid - 1, pid, 100));
    model_.UpdateScore(pid, 2);
  }
  EXPECT_THAT(model_.GetProcTree(6), ElementsAre(2, 3, 4, 5, 6));
}

TEST_F(ModelTest, ScoreResetIsStrictAboutTheAge) {
  Insert(ProcessCreate(0, 10, 100));
  model_.UpdateScore(10, 7);
  model_.ResetScore(10009999, 1000);
  EXPECT_EQ(Score(10), 7);
  Messages();
  model_.ResetScore(10010000, 1000);
  EXPECT_EQ(Score(10), 1);
  EXPECT_THAT(Messages(), Contains("GC: reset 10 7 to 1\n"));
}

TEST_F(ModelTest, FinalStateNamesAPathOnceAndNoSuspiciousImage) {
  Insert(ProcessCreate(0, 10, 100, L"C:\\d\\b.doc"));
  LOG_ITEM open = Open(10, L"C:\\d\\a.doc");
  open.Context = 99;
  Insert(open);
  Insert(Open(10, L"C:\\d\\b.doc"));
  Insert(Read(10, L"C:\\d\\a.doc"));
  Insert(Delete(10, L"C:\\d\\b.doc"));
  Insert(Write(10, L"C:\\d\\a.doc"));
  std::map<std::wstring, ZT_FILE_ITEM_PUBLIC> files;
  std::vector<std::wstring> paths = {L"before"};
  EXPECT_EQ(model_.GetFinalStateFileByPid(10, files, paths), 1);
  ASSERT_EQ(files.size(), 1U);
  const ZT_FILE_ITEM_PUBLIC& item = files.at(L"c:\\d\\a.doc");
  EXPECT_EQ(item.EngineId, 7U);
  EXPECT_EQ(item.Path, L"C:\\d\\a.doc");
  EXPECT_EQ(item.Restore, 1U);
  EXPECT_EQ(item.Context, 99U);
  EXPECT_THAT(paths, ElementsAre(L"c:\\d\\a.doc", L"before"));
}

TEST_F(ModelTest, WatchedModuleCountsOnlyInItsSpelling) {
  const LOG_ITEM right = ModuleLoad(10, L"C:\\Windows\\System32\\bcrypt.dll");
  const LOG_ITEM wrong = ModuleLoad(10, L"C:\\Windows\\System32\\BCrypt.dll");
  EXPECT_EQ(ModelEngine::CalculateSingleLineScore(&right, 5), 6);
  EXPECT_EQ(ModelEngine::CalculateSingleLineScore(&wrong, 5), 5);
  EXPECT_EQ(ModelEngine::CalculateSingleLineScore(&right, 0), 0);
  EXPECT_EQ(ModelEngine::CalculateSingleLineScore(nullptr, 5), 0);
  EXPECT_EQ(ModelEngine::CalculateSingleLineScore(&right, std::numeric_limits<std::int32_t>::max()),
            std::numeric_limits<std::int32_t>::min());
}

TEST_F(ModelTest, TargetWithoutTerminatorEndsWithTheRecord) {
  const LOG_ITEM log = MakeEvent(BehaviorRead, 10, std::wstring(600, L'a'));
  EXPECT_EQ(TargetOf(log), std::wstring(524, L'a'));
}

/// Searches for one target among entries without flags.
struct Search {
  std::wstring name_diff;
  ModelTrace trace{0x7};

  std::wstring operator()(const std::vector<std::wstring>& keys, const std::wstring& target) {
    FileMap files;
    for (const std::wstring& key : keys) {
      files[key] = FileItem();
    }
    const auto found = SearchSimilarFile(name_diff, files, target, trace);
    return found == files.end() ? L"nothing" : found->first;
  }
};

TEST(ModelSearchTest, AppendedTextMatchesAtOnce) {
  Search search;
  EXPECT_EQ(search({L"C:\\d\\a.docx"}, L"C:\\d\\a.docx.locked"), L"C:\\d\\a.docx");
  EXPECT_EQ(search.name_diff, L"");
}

TEST(ModelSearchTest, PrefixIsLearnedAndThenMatches) {
  Search search;
  EXPECT_EQ(search({L"C:\\d\\a.docx"}, L"C:\\d\\x_a.docx"), L"nothing");
  EXPECT_EQ(search.name_diff, L"x_");
  EXPECT_EQ(search({L"C:\\d\\b.docx"}, L"C:\\d\\x_b.docx"), L"C:\\d\\b.docx");
}

TEST(ModelSearchTest, CommonExtensionIsNoExcuse) {
  Search search;
  EXPECT_EQ(search({L"C:\\d\\report.docx"}, L"C:\\d\\report.pdf"), L"nothing");
  EXPECT_EQ(search.name_diff, L".pdf");
  EXPECT_EQ(search({L"C:\\d\\other.docx"}, L"C:\\d\\other.pdf"), L"C:\\d\\other.docx");
}

TEST(ModelSearchTest, ExtensionForTheDotIsLearnedAndThenMatches) {
  Search search;
  EXPECT_EQ(search({L"C:\\d\\ab.doc"}, L"C:\\d\\ab_doc.enc"), L"nothing");
  EXPECT_EQ(search.name_diff, L".enc");
  EXPECT_EQ(search({L"C:\\d\\cd.doc"}, L"C:\\d\\cd_doc.enc"), L"C:\\d\\cd.doc");
}

TEST(ModelSearchTest, GrownStemIsLearnedAndThenMatches) {
  Search search;
  EXPECT_EQ(search({L"C:\\d\\report.docx"}, L"C:\\d\\report_v2.docx"), L"nothing");
  EXPECT_EQ(search.name_diff, L"_v2");
  EXPECT_EQ(search({L"C:\\d\\b.docx"}, L"C:\\d\\b_v2.docx"), L"C:\\d\\b.docx");
}

TEST(ModelSearchTest, DifferenceLearnedFromOneEntryMatchesALaterOneOfTheSameWalk) {
  Search search;
  EXPECT_EQ(search({L"C:\\d\\ab.doc", L"C:\\d\\ab.txt"}, L"C:\\d\\ab.enc"), L"C:\\d\\ab.txt");
  EXPECT_EQ(search.name_diff, L".enc");
}

TEST(ModelSearchTest, LastDifferenceOfAWalkIsKept) {
  Search search;
  EXPECT_EQ(search({L"C:\\d\\a", L"C:\\d\\b"}, L"C:\\d\\qab"), L"nothing");
  EXPECT_EQ(search.name_diff, L"qa");
}

TEST(ModelSearchTest, EntriesOfOtherFoldersAreLeftAlone) {
  Search search;
  EXPECT_EQ(search({L"C:\\D\\a.docx"}, L"C:\\d\\x_a.docx"), L"nothing");
  EXPECT_EQ(search.name_diff, L"");
}

TEST(ModelTextTest, NumbersAreReadAsTheCLibraryReadsThem) {
  EXPECT_EQ(ReadNumber(L""), 0);
  EXPECT_EQ(ReadNumber(L"abc"), 0);
  EXPECT_EQ(ReadNumber(L" +12x"), 12);
  EXPECT_EQ(ReadNumber(L"\t-5"), -5);
  EXPECT_EQ(ReadNumber(L"--4"), 0);
  EXPECT_EQ(ReadNumber(L"+ 3"), 0);
  EXPECT_EQ(ReadNumber(L"2147483647"), 0x7FFFFFFF);
  EXPECT_EQ(ReadNumber(L"99999999999"), 0x7FFFFFFF);
  EXPECT_EQ(ReadNumber(L"-2147483648"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(ReadNumber(L"-99999999999999999999999"), std::numeric_limits<std::int32_t>::min());
}

TEST(ModelTextTest, FileNameFollowsTheLastSeparatorThatSomethingFollows) {
  EXPECT_EQ(FileNameOf(L"C:\\d\\a.doc"), L"a.doc");
  EXPECT_EQ(FileNameOf(L"C:/d/a.doc"), L"a.doc");
  EXPECT_EQ(FileNameOf(L"C:a.doc"), L"a.doc");
  EXPECT_EQ(FileNameOf(L"C:\\d\\"), L"d\\");
  EXPECT_EQ(FileNameOf(L"a"), L"a");
}

TEST(ModelTextTest, HexCountsItsPrefixInTheWidth) {
  EXPECT_EQ(Hex8(0x4001), "0x004001");
  EXPECT_EQ(Hex8(0), "0x000000");
  EXPECT_EQ(Hex8(0x80004004), "0x80004004");
}

TEST(ModelTextTest, WideTextBecomesUtf8) {
  EXPECT_EQ(Utf8(L"a\xE9"), "a\xC3\xA9");
  EXPECT_EQ(Utf8(L"\x20AC"), "\xE2\x82\xAC");
  EXPECT_EQ(Utf8({wchar_t{0xD83D}, wchar_t{0xDE00}}), "\xF0\x9F\x98\x80");
  EXPECT_EQ(Utf8({wchar_t{0xDE00}, wchar_t{0xD83D}}), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(Utf8({L'a', L'\0', L'b'}), "a");
}

TEST(ModelTreeTest, CircleOfParentsIsWalkedOnce) {
  Tree tree;
  InsertChild(tree, {0, 0}, {1, 5}, ProcessItem());
  InsertChild(tree, {1, 5}, {2, 5}, ProcessItem());
  InsertChild(tree, {2, 5}, {1, 5}, ProcessItem());
  EXPECT_THAT(WalkUp(tree, {1, 5}), ElementsAre(Key(1, 5), Key(2, 5)));
  EXPECT_THAT(CollectFamily(tree, {2, 5}), ElementsAre(Key(2, 5), Key(1, 5)));
}

}  // namespace
}  // namespace zt::model
