#include "engine/similar_candidates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "engine/tracing.h"
#include "tests/support/records.h"
#include "tests/support/trace_capture.h"

namespace zt::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::SizeIs;

class SimilarCandidatesTest : public ::testing::Test {
 protected:
  void Add(std::wstring_view path) { files_.FindOrAdd(OwnedPath(path).name()); }
  /// The stem "a" with `count` extensions of one to three digits.
  void AddGroup(std::size_t count) {
    for (std::size_t number = 0; number < count; ++number) {
      Add(L"c:\\d\\a." + std::to_wstring(number));
    }
  }

  std::vector<std::wstring> Of(std::wstring_view target) {
    OwnedPath path(target);
    SimilarCandidates candidates(path.name(), TargetName(path.name()), files_);
    std::vector<std::wstring> keys;
    for (auto next = candidates.Next(); next.file != nullptr; next = candidates.Next()) {
      keys.push_back(Widen(next.file->key.Lower()));
    }
    return keys;
  }
  std::wstring SmallestIn(std::wstring_view target) {
    OwnedPath path(target);
    const TrackedFile* const found = SmallestKeyIn(path.name(), files_);
    return found == nullptr ? L"(none)" : Widen(found->key.Lower());
  }

  FileTable files_;
};

TEST_F(SimilarCandidatesTest, AnEmptyTableHasNone) {
  EXPECT_THAT(Of(L"c:\\d\\a.doc"), IsEmpty());
  EXPECT_EQ(SmallestIn(L"c:\\d\\a.doc"), L"(none)");
}

// A stem that occurs in the name is not enough: the whole name, the target's extension, or one of two lengths makes it matter.
TEST_F(SimilarCandidatesTest, FilesOfTheFolderThatCanMatterComeInOrder) {
  for (const wchar_t* path :
       {L"c:\\d\\report.enc", L"c:\\d\\port.txt", L"c:\\d\\rep", L"c:\\d\\ort.doc", L"c:\\d\\unrelated.doc", L"c:\\e\\rep",
        L"c:\\d\\e\\rep", L"c:\\d\\xreport.doc", L"c:\\d\\po.enc", L"c:\\d\\t.enc"}) {
    Add(path);
  }
  EXPECT_THAT(Of(L"c:\\d\\xreport.enc"),
              ElementsAre(L"c:\\d\\ort.doc",        // As long as "xreport".
                          L"c:\\d\\po.enc",         // The target's extension, after a part of its stem.
                          L"c:\\d\\rep",            // The whole name occurs.
                          L"c:\\d\\report.enc",     // Likewise.
                          L"c:\\d\\t.enc",          // Likewise.
                          L"c:\\d\\xreport.doc"));  // The stem is as long as the target's.
}

TEST_F(SimilarCandidatesTest, AStemThatOccursTwiceGivesItsFilesOnce) {
  Add(L"c:\\d\\ab.doc");
  EXPECT_THAT(Of(L"c:\\d\\ababab.doc"), ElementsAre(L"c:\\d\\ab.doc"));
}

TEST_F(SimilarCandidatesTest, ATargetWithoutAFolderIsItsOwnFolder) {
  Add(L"abc\\abc.x");
  Add(L"abc");
  EXPECT_THAT(Of(L"abc"), ElementsAre(L"abc\\abc.x"));
}

TEST_F(SimilarCandidatesTest, AnEmptyStemOccursEverywhere) {
  Add(L"c:\\d\\.profile");
  EXPECT_THAT(Of(L"c:\\d\\x.profile"), ElementsAre(L"c:\\d\\.profile"));
  EXPECT_THAT(Of(L"c:\\d\\x"), IsEmpty());
  const TraceCapture trace(kTraceDebug);
  EXPECT_THAT(Of(L"c:\\d\\x"), ElementsAre(L"c:\\d\\.profile"));
}

TEST_F(SimilarCandidatesTest, OfALargeGroupOnlyFewAreTaken) {
  AddGroup(1000);
  Add(L"c:\\d\\a");
  Add(L"c:\\d\\a.enc");
  const std::vector<std::wstring> found = Of(L"c:\\d\\xax.17.enc");
  // The stem alone and the target's own extension; names as long as "xax.17" with an extension that occurs: none.
  EXPECT_THAT(found, ElementsAre(L"c:\\d\\a", L"c:\\d\\a.enc"));
  // A whole name that occurs.
  EXPECT_THAT(Of(L"c:\\d\\xa.17.enc"), IsSupersetOf({L"c:\\d\\a.17", L"c:\\d\\a.1"}));
  // Names as long as the target's stem, whose extension occurs.
  EXPECT_THAT(Of(L"c:\\d\\55ab.enc"), Contains(L"c:\\d\\a.55"));
}

TEST_F(SimilarCandidatesTest, AGroupWhoseStemIsAsLongAsTheTargetsIsTakenAsAWhole) {
  AddGroup(100);
  EXPECT_THAT(Of(L"c:\\d\\a.enc"), SizeIs(100));
}

TEST_F(SimilarCandidatesTest, EveryFileHasALineWhileDebugLinesAreTraced) {
  AddGroup(100);
  const TraceCapture trace(kTraceDebug);
  EXPECT_THAT(Of(L"c:\\d\\xax.enc"), SizeIs(100));
}

TEST_F(SimilarCandidatesTest, ComeInTheOrderOfKeysFromSeveralGroups) {
  AddGroup(20);
  for (int number = 0; number < 20; ++number) {
    Add(L"c:\\d\\a.1." + std::to_wstring(number));
    Add(L"c:\\d\\." + std::to_wstring(number));
  }
  const TraceCapture trace(kTraceDebug);
  const std::vector<std::wstring> found = Of(L"c:\\d\\a.1.enc");
  EXPECT_THAT(found, SizeIs(60));
  EXPECT_TRUE(std::is_sorted(found.begin(), found.end()));
}

TEST_F(SimilarCandidatesTest, TheSmallestKeyInATargetIsFoundAtEveryPlace) {
  Add(L"report");
  Add(L"docx");
  Add(L"x");
  EXPECT_EQ(SmallestIn(L"c:\\d\\report.docx"), L"docx");
  EXPECT_EQ(SmallestIn(L"c:\\d\\report.doc"), L"report");
  EXPECT_EQ(SmallestIn(L"c:\\d\\xxl"), L"x");
  EXPECT_EQ(SmallestIn(L"c:\\d\\a"), L"(none)");
  Add(L"c:\\d\\report.docx");
  EXPECT_EQ(SmallestIn(L"c:\\d\\report.docx"), L"c:\\d\\report.docx");
  Add(L"");
  EXPECT_EQ(SmallestIn(L"c:\\d\\a"), L"");
}

TEST_F(SimilarCandidatesTest, OfKeysAtOnePlaceTheShortestIsTheSmallest) {
  Add(L"c:\\d\\report.docx");
  Add(L"c:\\d\\report");
  EXPECT_EQ(SmallestIn(L"c:\\d\\report.docx.enc"), L"c:\\d\\report");
}

}  // namespace
}  // namespace zt::testing
