#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "engine/final_state.h"
#include "engine/tracing.h"
#include "tests/support/engine_test.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint64_t kPid = 10;

class FinalStateTest : public EngineTest {
 protected:
  FinalStateTest() { StartProcess(kPid); }

  /// A file record that is a restore candidate.
  FileItem& AddCandidate(const std::wstring& key, const std::wstring& path) {
    FileItem& file = EnterFile(*ItemOf(kPid), key);
    file.Path = MakePath(path);
    file.Similar = true;
    return file;
  }
  FileItem& AddCandidate(const std::wstring& key) { return AddCandidate(key, key); }

  unsigned char Query(std::uint64_t pid = kPid) { return ZtGetFinalStateFileByPid(engine_, Handle(pid), files_, paths_); }
  std::vector<std::wstring> QueriedKeys(std::uint64_t pid = kPid) {
    files_.clear();
    Query(pid);
    std::vector<std::wstring> keys;
    std::transform(files_.begin(), files_.end(), std::back_inserter(keys), [](const auto& file) { return file.first; });
    return keys;
  }
  std::vector<TraceLine> TracesOfQuery(std::uint64_t flags, std::uint64_t pid = kPid) {
    TraceCapture trace(flags);
    trace.Take();
    Query(pid);
    return trace.Take();
  }

  std::map<std::wstring, ZT_FILE_ITEM_PUBLIC> files_;
  std::vector<std::wstring> paths_;
};

// What is reported.

TEST_F(FinalStateTest, ProcessWithoutFilesYieldsNothing) {
  EXPECT_EQ(Query(), 1);
  EXPECT_THAT(files_, IsEmpty());
  EXPECT_THAT(paths_, IsEmpty());
}

TEST_F(FinalStateTest, PublicItemCarriesTheEngineThePathAndTheContext) {
  FileItem& file = AddCandidate(L"c:\\a.doc", L"C:\\A.Doc");
  file.Context = 0xFEDCBA9876543210;
  file.State = 4;
  EXPECT_EQ(Query(), 1);
  ASSERT_EQ(files_.size(), 1u);
  const ZT_FILE_ITEM_PUBLIC& item = files_.at(L"c:\\a.doc");
  EXPECT_EQ(item.EngineId, 7u);
  EXPECT_EQ(item.Path, L"C:\\A.Doc");
  EXPECT_EQ(item.Restore, 1u);
  EXPECT_EQ(item.Context, 0xFEDCBA9876543210u);
}

TEST_F(FinalStateTest, RemainderOfThePublicItemIsZero) {
  AddCandidate(L"c:\\a.doc");
  Query();
  const ZT_FILE_ITEM_PUBLIC& item = files_.at(L"c:\\a.doc");
  EXPECT_EQ(std::size(item.Reserved), 512u);
  EXPECT_TRUE(std::all_of(std::begin(item.Reserved), std::end(item.Reserved), [](unsigned char byte) { return byte == 0; }));
}

TEST_F(FinalStateTest, RestoreIsTrueInStatesThreeAndFourOnly) {
  constexpr std::array<std::uint32_t, 11> kExpected = {0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0};
  for (std::uint32_t state = 0; state < kExpected.size(); ++state) {
    AddCandidate(L"c:\\a.doc").State = static_cast<std::uint8_t>(state);
    Query();
    EXPECT_EQ(files_.at(L"c:\\a.doc").Restore, kExpected.at(state)) << "state " << state;
  }
}

TEST_F(FinalStateTest, FileThatIsNotSimilarIsNotReported) {
  FileItem& file = AddCandidate(L"c:\\a.doc");
  file.Similar = false;
  file.Written = file.Renamed = file.SimilarMark = file.Created = file.ReadStarted = file.penalized = true;
  file.State = 4;
  EXPECT_THAT(QueriedKeys(), IsEmpty());
}

TEST_F(FinalStateTest, EveryCandidateIsReportedUnderItsKey) {
  AddCandidate(L"c:\\b.doc", L"C:\\B.doc");
  AddCandidate(L"c:\\a.doc", L"C:\\A.doc");
  AddCandidate(L"c:\\c.doc", L"C:\\C.doc").Similar = false;
  EXPECT_THAT(QueriedKeys(), ElementsAre(L"c:\\a.doc", L"c:\\b.doc"));
}

TEST_F(FinalStateTest, PathSharedByTwoKeysIsReportedForTheFirst) {
  AddCandidate(L"c:\\b.doc", L"C:\\Shared.doc");
  AddCandidate(L"c:\\a.doc", L"C:\\Shared.doc");
  EXPECT_THAT(QueriedKeys(), ElementsAre(L"c:\\a.doc"));
}

TEST_F(FinalStateTest, PathsOfDifferentLetterCaseAreBothReported) {
  AddCandidate(L"c:\\a.doc", L"C:\\Shared.doc");
  AddCandidate(L"c:\\b.doc", L"C:\\SHARED.doc");
  EXPECT_THAT(QueriedKeys(), ElementsAre(L"c:\\a.doc", L"c:\\b.doc"));
}

TEST_F(FinalStateTest, PathOfAFileThatIsNoCandidateIsStillFree) {
  AddCandidate(L"c:\\a.doc", L"C:\\Shared.doc").Similar = false;
  AddCandidate(L"c:\\b.doc", L"C:\\Shared.doc");
  EXPECT_THAT(QueriedKeys(), ElementsAre(L"c:\\b.doc"));
}

TEST_F(FinalStateTest, EmptyPathIsReportedOnce) {
  AddCandidate(L"c:\\a.doc", L"");
  AddCandidate(L"c:\\b.doc", L"");
  EXPECT_THAT(QueriedKeys(), ElementsAre(L"c:\\a.doc"));
  EXPECT_EQ(files_.at(L"c:\\a.doc").Path, L"");
}

TEST_F(FinalStateTest, NewestProcessOfAReusedIdIsMeant) {
  AddCandidate(L"c:\\old.doc");
  StartProcess(kPid, 500);
  AddCandidate(L"c:\\new.doc");
  EXPECT_THAT(QueriedKeys(), ElementsAre(L"c:\\new.doc"));
}

TEST_F(FinalStateTest, FilesOfRelativesAreNotReported) {
  StartChild(kPid, 20);
  EnterFile(*ItemOf(20), L"c:\\child.doc").Similar = true;
  AddPath(ItemOf(20)->QuarantineList, L"c:\\child.txt");
  EXPECT_THAT(QueriedKeys(), IsEmpty());
  EXPECT_THAT(paths_, IsEmpty());
}

// The outputs.

TEST_F(FinalStateTest, EntriesOfOtherKeysAreKept) {
  AddCandidate(L"c:\\a.doc");
  files_[L"c:\\other.doc"].Context = 5;
  Query();
  EXPECT_EQ(files_.size(), 2u);
  EXPECT_EQ(files_.at(L"c:\\other.doc").Context, 5u);
}

TEST_F(FinalStateTest, EntryOfTheSameKeyIsOverwritten) {
  AddCandidate(L"c:\\a.doc", L"C:\\A.doc").State = 8;
  ZT_FILE_ITEM_PUBLIC old;
  old.EngineId = 99;
  old.Path = L"old";
  old.Restore = 1;
  old.Context = 5;
  old.Reserved[511] = 1;
  files_[L"c:\\a.doc"] = old;
  Query();
  ASSERT_EQ(files_.size(), 1u);
  const ZT_FILE_ITEM_PUBLIC& item = files_.at(L"c:\\a.doc");
  EXPECT_EQ(item.EngineId, 7u);
  EXPECT_EQ(item.Path, L"C:\\A.doc");
  EXPECT_EQ(item.Restore, 0u);
  EXPECT_EQ(item.Context, 0u);
  EXPECT_EQ(item.Reserved[511], 0);
}

TEST_F(FinalStateTest, EntryOfTheSameKeyIsKeptWhenTheFileIsNotReported) {
  AddCandidate(L"c:\\a.doc").Similar = false;
  files_[L"c:\\a.doc"].Context = 5;
  Query();
  EXPECT_EQ(files_.at(L"c:\\a.doc").Context, 5u);
}

TEST_F(FinalStateTest, QuarantinedPathsStandInFrontInTheirOrder) {
  AddPath(ItemOf(kPid)->QuarantineList, L"c:\\z");
  AddPath(ItemOf(kPid)->QuarantineList, L"c:\\a");
  AddPath(ItemOf(kPid)->CreatedFilesList, L"c:\\created");
  paths_ = {L"first", L"second"};
  Query();
  EXPECT_THAT(paths_, ElementsAre(L"c:\\z", L"c:\\a", L"first", L"second"));
}

TEST_F(FinalStateTest, QueryChangesNothing) {
  AddPath(ItemOf(kPid)->QuarantineList, L"c:\\z");
  AddCandidate(L"c:\\a.doc");
  Query();
  Query();
  EXPECT_THAT(paths_, ElementsAre(L"c:\\z", L"c:\\z"));
  EXPECT_THAT(ItemOf(kPid)->QuarantineList.Paths(), ElementsAre(L"c:\\z"));
  EXPECT_TRUE(FileOf(kPid, L"c:\\a.doc")->Similar);
  EXPECT_EQ(ScoreOf(kPid), 1);
}

// Excluded images.

TEST_F(FinalStateTest, ImageOfASuspiciousProcessIsNotReported) {
  ItemOf(kPid)->ImagePath = L"C:\\Bad.exe";
  ItemOf(kPid)->Score = 2;
  AddCandidate(L"c:\\bad.exe", L"C:\\Bad.exe");
  AddCandidate(L"c:\\a.doc");
  EXPECT_THAT(QueriedKeys(), ElementsAre(L"c:\\a.doc"));
}

TEST_F(FinalStateTest, ImageOfAProcessWithScoreOneOrZeroIsReported) {
  ItemOf(kPid)->ImagePath = L"C:\\Good.exe";
  AddCandidate(L"c:\\good.exe", L"C:\\Good.exe");
  for (const std::int32_t score : {1, 0}) {
    ItemOf(kPid)->Score = score;
    EXPECT_THAT(QueriedKeys(), ElementsAre(L"c:\\good.exe")) << score;
  }
}

TEST_F(FinalStateTest, NegativeScoreCountsAsAGreatOne) {
  ItemOf(kPid)->ImagePath = L"C:\\Bad.exe";
  ItemOf(kPid)->Score = -1;
  AddCandidate(L"c:\\bad.exe", L"C:\\Bad.exe");
  EXPECT_THAT(QueriedKeys(), IsEmpty());
}

TEST_F(FinalStateTest, ImagesAreComparedWithPathsExactly) {
  ItemOf(kPid)->ImagePath = L"C:\\Bad.exe";
  ItemOf(kPid)->Score = 2;
  AddCandidate(L"c:\\bad.exe", L"c:\\bad.exe");
  EXPECT_THAT(QueriedKeys(), ElementsAre(L"c:\\bad.exe"));
}

TEST_F(FinalStateTest, KeyOfAnImageDoesNotExcludeAnotherPath) {
  ItemOf(kPid)->ImagePath = L"c:\\bad.exe";
  ItemOf(kPid)->Score = 2;
  AddCandidate(L"c:\\bad.exe", L"c:\\first name.exe");
  EXPECT_THAT(QueriedKeys(), ElementsAre(L"c:\\bad.exe"));
}

TEST_F(FinalStateTest, EmptyImageExcludesTheEmptyPath) {
  ItemOf(kPid)->ImagePath = L"";
  ItemOf(kPid)->Score = 2;
  AddCandidate(L"c:\\a.doc", L"");
  EXPECT_THAT(QueriedKeys(), IsEmpty());
}

/// Six generations, 1 to 6, each with the image "C:\gN.exe"; the youngest has changed them all, and "C:\uncle.exe", too. That
/// is the image of 7, another child of 1; 8, "C:\cousin.exe", is another child of 2.
class FamilyFinalStateTest : public FinalStateTest {
 protected:
  FamilyFinalStateTest() {
    StartProcess(1, 100, L"C:\\g1.exe");
    for (std::uint64_t pid = 2; pid <= 6; ++pid) {
      StartChild(pid - 1, pid, 200, L"C:\\g" + std::to_wstring(pid) + L".exe");
    }
    StartChild(1, 7, 200, L"C:\\uncle.exe");
    StartChild(2, 8, 200, L"C:\\cousin.exe");
    for (const wchar_t* const name : {L"g1", L"g2", L"g3", L"g4", L"g5", L"g6", L"uncle", L"cousin"}) {
      FileItem& file = EnterFile(*ItemOf(6), name);
      file.Path = MakePath(L"C:\\" + std::wstring(name) + L".exe");
      file.Similar = true;
    }
    for (std::uint64_t pid = 1; pid <= 8; ++pid) {
      ItemOf(pid)->Score = 2;
    }
  }
};

TEST_F(FamilyFinalStateTest, FamilyReachesFourLinksUpAndDownAllBranches) {
  EXPECT_THAT(QueriedKeys(6), ElementsAre(L"g1", L"uncle"));
}

TEST_F(FamilyFinalStateTest, DescendantsBelongToTheFamily) {
  core().ScoreWalkLimit = 0;
  ItemOf(5)->files = std::move(ItemOf(6)->files);
  EXPECT_THAT(QueriedKeys(5), ElementsAre(L"cousin", L"g1", L"g2", L"g3", L"g4", L"uncle"));
}

TEST_F(FamilyFinalStateTest, LimitOfZeroMakesTheProcessItsOwnRoot) {
  core().ScoreWalkLimit = 0;
  EXPECT_THAT(QueriedKeys(6), ElementsAre(L"cousin", L"g1", L"g2", L"g3", L"g4", L"g5", L"uncle"));
}

TEST_F(FamilyFinalStateTest, ClimbEndsWhereAParentIsNotInTheTree) {
  EntryOf(4)->parentKey = {3, 12345};
  EXPECT_THAT(QueriedKeys(6), ElementsAre(L"cousin", L"g1", L"g2", L"g3", L"uncle"));
}

TEST_F(FamilyFinalStateTest, OnlySuspiciousMembersExcludeTheirImages) {
  ItemOf(3)->Score = 1;
  ItemOf(8)->Score = 0;
  EXPECT_THAT(QueriedKeys(6), ElementsAre(L"cousin", L"g1", L"g3", L"uncle"));
}

TEST_F(FamilyFinalStateTest, MemberListedTwiceIsVisitedOnce) {
  ItemOf(6)->files = {};
  EntryOf(5)->children.emplace_back(ZtProcKey{6, 200});
  core().ScoreWalkLimit = 1;
  EXPECT_THAT(TracesOfQuery(kTraceDebug, 6), ElementsAre(TraceLine{1283, "debug", "ZtGetFinalStateFileByPid:: Pid:6 Time:200"},
                                                         TraceLine{1296, "debug", "Not restoring C:\\g5.exe"},
                                                         TraceLine{1296, "debug", "Not restoring C:\\g6.exe"}));
}

TEST_F(FamilyFinalStateTest, CycleOfParentsEnds) {
  EntryOf(1)->parentKey = {6, 200};
  EntryOf(6)->children.emplace_back(ZtProcKey{1, 100});
  EXPECT_THAT(QueriedKeys(6), IsEmpty()) << "everybody descends from everybody";
}

// Unknown processes.

TEST_F(FinalStateTest, UnknownIdLeavesTheOutputsUntouched) {
  files_[L"c:\\other.doc"];
  paths_ = {L"first"};
  EXPECT_EQ(Query(99), 1);
  EXPECT_EQ(files_.size(), 1u);
  EXPECT_THAT(paths_, ElementsAre(L"first"));
}

TEST_F(FinalStateTest, UnknownIdIsNotRemembered) {
  Query(99);
  EXPECT_EQ(core().FindStartTime(99), nullptr);
}

TEST_F(FinalStateTest, UnknownIdIsTracedWithTimeZeroAndAWarning) {
  EXPECT_THAT(TracesOfQuery(kTraceDebug | kTraceWarning, 99),
              ElementsAre(TraceLine{1283, "debug", "ZtGetFinalStateFileByPid:: Pid:99 Time:0"},
                          TraceLine{1321, "warning", "99 does not exist in the tree"}));
}

TEST_F(FinalStateTest, RemovedProcessIsTracedWithItsStartTime) {
  EntryOf(kPid)->LiveCount = 0;
  ZtResetScore(engine_, 0, 0);
  EXPECT_THAT(TracesOfQuery(kTraceDebug | kTraceWarning),
              ElementsAre(TraceLine{1283, "debug", "ZtGetFinalStateFileByPid:: Pid:10 Time:100"},
                          TraceLine{1321, "warning", "10 does not exist in the tree"}));
}

TEST_F(FinalStateTest, WarningHasABitOfItsOwn) {
  EXPECT_THAT(TracesOfQuery(kTraceWarning, 99), ElementsAre(TraceLine{1321, "warning", "99 does not exist in the tree"}));
  EXPECT_THAT(TracesOfQuery(kTraceDebug | kTraceInfo, 99),
              ElementsAre(TraceLine{1283, "debug", "ZtGetFinalStateFileByPid:: Pid:99 Time:0"}));
}

TEST_F(FinalStateTest, KnownProcessIsNoWarning) { EXPECT_THAT(TracesOfQuery(kTraceWarning), IsEmpty()); }

// Traces.

TEST_F(FinalStateTest, QueryIsTracedLineByLine) {
  ItemOf(kPid)->ImagePath = L"C:\\Bad.exe";
  ItemOf(kPid)->Score = 2;
  AddCandidate(L"c:\\a.doc", L"C:\\A.doc");
  AddCandidate(L"c:\\b.doc", L"C:\\A.doc");
  AddCandidate(L"c:\\bad.exe", L"C:\\Bad.exe");
  AddCandidate(L"c:\\c.doc", L"C:\\C.doc").Similar = false;
  EXPECT_THAT(TracesOfQuery(kTraceDebug), ElementsAre(TraceLine{1283, "debug", "ZtGetFinalStateFileByPid:: Pid:10 Time:100"},
                                                      TraceLine{1296, "debug", "Not restoring C:\\Bad.exe"},
                                                      TraceLine{1313, "debug", "C:\\A.doc will get restored"},
                                                      TraceLine{1316, "debug", "C:\\A.doc will not get restored"},
                                                      TraceLine{1316, "debug", "C:\\Bad.exe will not get restored"},
                                                      TraceLine{1316, "debug", "C:\\C.doc will not get restored"}));
}

TEST_F(FinalStateTest, EmptyPathIsTracedAsNothing) {
  AddCandidate(L"c:\\a.doc", L"");
  EXPECT_THAT(TracesOfQuery(kTraceDebug), ElementsAre(TraceLine{1283, "debug", "ZtGetFinalStateFileByPid:: Pid:10 Time:100"},
                                                      TraceLine{1313, "debug", " will get restored"}));
}

TEST(PathSetTest, EachPathIsTakenInOnceAndLetterCaseCounts) {
  const PathText path = MakePath(L"C:\\d\\a.doc");
  const PathText same = MakePath(L"C:\\d\\a.doc");
  PathSet paths;
  EXPECT_TRUE(paths.Add(path));
  EXPECT_FALSE(paths.Add(path));
  EXPECT_FALSE(paths.Add(same));
  const PathText none;
  EXPECT_TRUE(paths.Add(none));
  EXPECT_FALSE(paths.Add(PathText()));
}

// Every letter case of one path, which a watched program may use by turns: no two have one hash.
TEST(PathSetTest, ManyCasesOfOnePathFindRoom) {
  std::vector<PathText> cases;
  for (unsigned bits = 0; bits < 1024; ++bits) {
    std::wstring path = L"abcdefghij";
    for (unsigned letter = 0; letter < 10; ++letter) {
      path[letter] = static_cast<wchar_t>((bits >> letter & 1) != 0 ? path[letter] - L'a' + L'A' : path[letter]);
    }
    cases.push_back(MakePath(path));
  }
  PathSet paths;
  for (const PathText& path : cases) {
    EXPECT_TRUE(paths.Add(path));
  }
  for (const PathText& path : cases) {
    EXPECT_FALSE(paths.Add(path));
  }
}

}  // namespace
}  // namespace zt::testing
