#include "engine/similar_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/paths.h"
#include "engine/suspicious_extensions.h"
#include "engine/tracing.h"
#include "tests/support/engine_test.h"

namespace zt::testing {
namespace {

using namespace std::string_view_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Key = std::optional<std::wstring>;
const Key kNone;

/// A process with files, and what it has learned. Each search is made by the export, which walks the map, and, where the keys
/// are such as the engine has (lower-case, without zero units), by the engine's own search of a table; both have to agree.
class SimilarFileTest : public EngineTest {
 protected:
  SimilarFileTest() : typed_(std::static_pointer_cast<_ZtEngineCore>(engine_)) {}

  void AddFiles(const std::vector<std::wstring>& keys) {
    for (const std::wstring& key : keys) {
      process_.files.try_emplace(key);
      has_engine_keys_ = has_engine_keys_ && std::all_of(key.begin(), key.end(), [](wchar_t unit) {
                           return unit != L'\0' && !IsUpper(static_cast<char16_t>(unit));
                         });
      table_.FindOrAdd(OwnedPath(key).name());
    }
  }
  void Learn(std::wstring_view difference) {
    process_.NameDiff = difference;
    table_name_diff_ = ToUnits(difference);
  }
  [[nodiscard]] const std::wstring& Learned() const { return process_.NameDiff; }

  /// The key that is found, or none.
  Key Search(std::wstring_view target) {
    const Key exported = SearchMap(target);
    if (has_engine_keys_ && typed_ != nullptr && typed_->Lock.IsInitialised()) {
      EXPECT_EQ(SearchTable(target), exported);
      EXPECT_EQ(Widen(table_name_diff_), process_.NameDiff);
    }
    return exported;
  }
  std::vector<TraceLine> TracesOf(std::wstring_view target) {
    TraceCapture trace(kTraceDebug);
    SearchMap(target);
    std::vector<TraceLine> lines = trace.Take();
    if (has_engine_keys_) {
      SearchTable(target);
      EXPECT_EQ(trace.Take(), lines);
    }
    return lines;
  }

  std::shared_ptr<_ZtEngineCore> typed_;
  ZT_PID_ITEM process_;

 private:
  Key SearchMap(std::wstring_view target) {
    const auto found = ZtSearchSimilarFile(typed_, process_, process_.files, std::wstring(target));
    return found == process_.files.end() ? kNone : Key(found->first);
  }
  Key SearchTable(std::wstring_view target) {
    const TrackedFile* const found = SearchSimilarFile(table_name_diff_, table_, OwnedPath(target).name());
    return found == nullptr ? kNone : Key(Widen(found->key.Lower()));
  }

  FileTable table_;
  std::u16string table_name_diff_;
  bool has_engine_keys_ = true;
};

TEST_F(SimilarFileTest, NothingIsFoundAmongNoFiles) {
  Learn(L".enc");
  EXPECT_EQ(Search(L"c:\\d\\a.enc"), kNone);
  EXPECT_EQ(Learned(), L".enc");
}

TEST_F(SimilarFileTest, OtherMembersOfTheProcessAndTheFilesStay) {
  AddFiles({L"c:\\d\\a.docx"});
  Search(L"c:\\d\\x_a.docx");
  EXPECT_EQ(process_.files.size(), 1u);
  EXPECT_EQ(process_.files.at(L"c:\\d\\a.docx").State, 0u);
  EXPECT_FALSE(process_.files.at(L"c:\\d\\a.docx").Similar);
  EXPECT_THAT(process_.QuarantineList, IsEmpty());
}

TEST_F(SimilarFileTest, ResultIsAPositionInTheFilesGiven) {
  ZtFileMap other;
  other.try_emplace(L"c:\\d\\a.docx");
  const auto found = ZtSearchSimilarFile(typed_, process_, other, L"c:\\d\\a.docx.enc");
  EXPECT_EQ(found, other.begin());
}

// The whole path contained.

TEST_F(SimilarFileTest, PathWithSomethingAppendedIsFoundWhateverWasLearned) {
  AddFiles({L"c:\\d\\a.docx"});
  for (const std::wstring_view learned : {L""sv, L".locked"sv, L"other"sv}) {
    Learn(learned);
    EXPECT_EQ(Search(L"c:\\d\\a.docx.locked"), L"c:\\d\\a.docx");
    EXPECT_EQ(Learned(), learned);
  }
}

TEST_F(SimilarFileTest, PathItselfIsFound) {
  AddFiles({L"c:\\d\\a.docx"});
  EXPECT_EQ(Search(L"c:\\d\\a.docx"), L"c:\\d\\a.docx");
}

TEST_F(SimilarFileTest, PathContainedAnywhereIsFoundAcrossFolders) {
  AddFiles({L"c:\\d\\a.docx"});
  EXPECT_EQ(Search(L"\\\\?\\c:\\d\\a.docx"), L"c:\\d\\a.docx");
  EXPECT_EQ(Search(L"c:\\d\\a.docx\\sub\\new.txt"), L"c:\\d\\a.docx");
}

TEST_F(SimilarFileTest, EmptyKeyIsContainedInEveryTarget) {
  AddFiles({L"", L"c:\\d\\a.docx"});
  EXPECT_EQ(Search(L"c:\\d\\a.docx"), L"");
}

TEST_F(SimilarFileTest, ContainedPathIsNotTraced) {
  AddFiles({L"c:\\d\\a.docx"});
  EXPECT_THAT(TracesOf(L"c:\\d\\a.docx.locked"), IsEmpty());
}

// Folders.

TEST_F(SimilarFileTest, FileOfAnotherFolderTeachesNothing) {
  AddFiles({L"c:\\e\\a.docx", L"c:\\d\\sub\\a.docx", L"c:\\a.docx"});
  EXPECT_THAT(TracesOf(L"c:\\d\\x_a.docx"), IsEmpty());
  EXPECT_EQ(Learned(), L"");
}

TEST_F(SimilarFileTest, FileOfAnotherFolderIsNotFoundByTheLearnedDifference) {
  AddFiles({L"c:\\e\\a.docx"});
  Learn(L"x_");
  EXPECT_EQ(Search(L"c:\\d\\x_a.docx"), kNone);
}

TEST_F(SimilarFileTest, FoldersOfDifferentLetterCaseDiffer) {
  AddFiles({L"C:\\D\\a.docx"});
  Learn(L"x_");
  EXPECT_EQ(Search(L"C:\\d\\x_a.docx"), kNone);
  EXPECT_EQ(Search(L"C:\\d\\a.docx.locked"), kNone);
  EXPECT_EQ(Search(L"C:\\D\\x_a.docx"), L"C:\\D\\a.docx");
}

TEST_F(SimilarFileTest, NamesOfDifferentLetterCaseDiffer) {
  AddFiles({L"c:\\d\\A.docx"});
  EXPECT_EQ(Search(L"c:\\d\\x_a.docx"), kNone);
  EXPECT_EQ(Learned(), L"");
}

TEST_F(SimilarFileTest, TargetWithoutBackslashIsItsOwnFolderAndName) {
  AddFiles({L"report.enc\\report.doc"});
  EXPECT_EQ(Search(L"report.enc"), kNone);
  EXPECT_EQ(Learned(), L".enc");
  EXPECT_EQ(Search(L"report.enc"), L"report.enc\\report.doc");
}

TEST_F(SimilarFileTest, TargetWithoutBackslashIsInNoOtherFolder) {
  AddFiles({L"c:\\d\\a.docx", L"b.docx"});
  EXPECT_EQ(Search(L"x_a.docx"), kNone);
  EXPECT_EQ(Learned(), L"");
}

TEST_F(SimilarFileTest, KeyWithoutBackslashIsFoundWhenContained) {
  AddFiles({L"a.docx"});
  EXPECT_EQ(Search(L"x_a.docx"), L"a.docx");
}

// The name contained in the target's name.

TEST_F(SimilarFileTest, PrefixIsLearnedThenMatched) {
  AddFiles({L"C:\\d\\a.docx"});
  EXPECT_EQ(Search(L"C:\\d\\x_a.docx"), kNone);
  EXPECT_EQ(Learned(), L"x_");
  process_.files.clear();
  AddFiles({L"C:\\d\\b.docx"});
  EXPECT_EQ(Search(L"C:\\d\\x_b.docx"), L"C:\\d\\b.docx");
  EXPECT_EQ(Learned(), L"x_");
}

TEST_F(SimilarFileTest, PrefixAndSuffixAreOneDifference) {
  AddFiles({L"c:\\d\\a.docx"});
  EXPECT_EQ(Search(L"c:\\d\\x_a.docx.enc"), kNone);
  EXPECT_EQ(Learned(), L"x_.enc");
}

TEST_F(SimilarFileTest, FirstOccurrenceOfTheNameIsCutOut) {
  AddFiles({L"c:\\d\\a.b"});
  EXPECT_EQ(Search(L"c:\\d\\x-a.b-a.b"), kNone);
  EXPECT_EQ(Learned(), L"x--a.b");
}

TEST_F(SimilarFileTest, AnotherContainedNameReplacesWhatWasLearned) {
  AddFiles({L"c:\\d\\a.docx"});
  Learn(L"y_");
  EXPECT_EQ(Search(L"c:\\d\\x_a.docx"), kNone);
  EXPECT_EQ(Learned(), L"x_");
}

TEST_F(SimilarFileTest, ContainedNameNeedsNoDots) {
  AddFiles({L"c:\\d\\report"});
  EXPECT_EQ(Search(L"c:\\d\\my report"), kNone);
  EXPECT_EQ(Learned(), L"my ");
  EXPECT_EQ(Search(L"c:\\d\\my report"), L"c:\\d\\report");
}

TEST_F(SimilarFileTest, EmptyNameIsContainedAtTheFront) {
  AddFiles({L"foo\\"});
  EXPECT_EQ(Search(L"foo"), kNone);
  EXPECT_EQ(Learned(), L"foo");
}

TEST_F(SimilarFileTest, ContainedNameIsCutWithItsZeroUnits) {
  AddFiles({std::wstring(L"c:\\d\\a\0b.docx"sv)});
  EXPECT_EQ(Search(L"c:\\d\\x_a\0b.docx.enc"sv), kNone);
  EXPECT_EQ(Learned(), L"x_.enc");
}

TEST_F(SimilarFileTest, ContainedNameIsTraced) {
  AddFiles({L"c:\\d\\a.docx"});
  const TraceLine expected = {233, "debug", "Name diff: x_"};
  EXPECT_THAT(TracesOf(L"c:\\d\\x_a.docx"), ElementsAre(expected));
  EXPECT_THAT(TracesOf(L"c:\\d\\x_a.docx"), ElementsAre(expected)) << "when it is matched, too";
}

// No extension, or no common stem.

TEST_F(SimilarFileTest, TargetWithoutExtensionTeachesNothing) {
  AddFiles({L"c:\\d\\report.docx"});
  Learn(L".enc");
  EXPECT_THAT(TracesOf(L"c:\\d\\report"), IsEmpty());
  EXPECT_THAT(TracesOf(L"c:\\d\\reportx"), IsEmpty());
  EXPECT_EQ(Search(L"c:\\d\\report"), kNone);
  EXPECT_EQ(Learned(), L".enc");
}

TEST_F(SimilarFileTest, ExtensionWithASpaceIsNone) {
  AddFiles({L"c:\\d\\report.docx"});
  EXPECT_THAT(TracesOf(L"c:\\d\\report.my enc"), IsEmpty());
  EXPECT_THAT(TracesOf(L"c:\\d\\report.enc "), IsEmpty());
  EXPECT_EQ(Learned(), L"");
}

TEST_F(SimilarFileTest, SpaceBeforeTheLastDotDoesNotMatter) {
  AddFiles({L"c:\\d\\my report.docx"});
  EXPECT_EQ(Search(L"c:\\d\\my report.enc"), kNone);
  EXPECT_EQ(Learned(), L".enc");
}

TEST_F(SimilarFileTest, NameWithoutTheStemTeachesNothing) {
  AddFiles({L"c:\\d\\report.docx"});
  Learn(L".enc");
  EXPECT_THAT(TracesOf(L"c:\\d\\other.enc"), IsEmpty());
  EXPECT_EQ(Search(L"c:\\d\\other.enc"), kNone);
  EXPECT_EQ(Learned(), L".enc");
}

TEST_F(SimilarFileTest, StemAndExtensionsAreTraced) {
  AddFiles({L"c:\\d\\report.docx"});
  EXPECT_THAT(TracesOf(L"c:\\d\\report.tar.enc"),
              ElementsAre(TraceLine{242, "debug", "Extension is .enc, extension2 is tar.enc, itemext is .docx"}));
}

// The dot replaced and an extension appended.

TEST_F(SimilarFileTest, ReplacedDotIsLearnedByTheNewExtensionThenMatched) {
  AddFiles({L"c:\\d\\a.docx"});
  EXPECT_EQ(Search(L"c:\\d\\a_docx.enc"), kNone);
  EXPECT_EQ(Learned(), L".enc");
  EXPECT_EQ(Search(L"c:\\d\\a_docx.enc"), L"c:\\d\\a.docx");
  EXPECT_EQ(Learned(), L".enc");
}

TEST_F(SimilarFileTest, ReplacedDotReplacesWhatWasLearned) {
  AddFiles({L"c:\\d\\a.docx"});
  Learn(L".old");
  EXPECT_EQ(Search(L"c:\\d\\a_docx.enc"), kNone);
  EXPECT_EQ(Learned(), L".enc");
}

TEST_F(SimilarFileTest, ReplacedDotIsTracedLikeAnyExtension) {
  AddFiles({L"c:\\d\\a.docx"});
  EXPECT_THAT(TracesOf(L"c:\\d\\a_docx.enc"),
              ElementsAre(TraceLine{242, "debug", "Extension is .enc, extension2 is enc, itemext is .docx"}));
}

TEST_F(SimilarFileTest, ReplacedDotNeedsEqualLengths) {
  AddFiles({L"c:\\d\\a.docx"});
  Learn(L".enc");
  EXPECT_EQ(Search(L"c:\\d\\ab_docx.enc"), kNone);
  EXPECT_EQ(Learned(), L".enc");
  Learn(L".old");
  EXPECT_EQ(Search(L"c:\\d\\ab_docx.enc"), kNone);
  EXPECT_EQ(Learned(), L".old");
}

TEST_F(SimilarFileTest, EqualLengthsWithoutTheOldExtensionAreNoReplacedDot) {
  AddFiles({L"c:\\d\\a.docx"});
  EXPECT_EQ(Search(L"c:\\d\\a_docs.enc"), kNone);
  EXPECT_EQ(Learned(), L"");
}

// "a_new" is as long as "a.txt", and "txt" stands in "a_new.txt": the extension is learned and not the growth "_new".
TEST_F(SimilarFileTest, ReplacedDotComesBeforeAGrownStem) {
  AddFiles({L"c:\\d\\a.txt"});
  EXPECT_EQ(Search(L"c:\\d\\a_new.txt"), kNone);
  EXPECT_EQ(Learned(), L".txt");
}

// The item's name is "a.docx" up to its zero unit, as long as the stem "a_docx" that the target's last dot ends.
TEST_F(SimilarFileTest, LengthsOfAReplacedDotEndAtTheFirstZeroUnit) {
  AddFiles({std::wstring(L"c:\\d\\a.docx\0zz"sv)});
  EXPECT_EQ(Search(L"c:\\d\\a_docx.enc\0docx\0zz"sv), kNone);
  EXPECT_EQ(Learned(), L".enc");
}

// A new extension.

TEST_F(SimilarFileTest, NewExtensionIsLearnedThenMatchesTheNextFile) {
  AddFiles({L"C:\\d\\report.docx", L"C:\\d\\summary.xlsx"});
  EXPECT_EQ(Search(L"C:\\d\\report.enc"), kNone);
  EXPECT_EQ(Learned(), L".enc");
  EXPECT_EQ(Search(L"C:\\d\\summary.enc"), L"C:\\d\\summary.xlsx");
  EXPECT_EQ(Learned(), L".enc");
}

TEST_F(SimilarFileTest, NoCommonExtensionIsExcused) {
  AddFiles({L"c:\\d\\report.old", L"c:\\d\\summary.old"});
  for (const std::u16string_view extension : SuspiciousExtensions) {
    Learn(L"");
    const std::wstring dotted = L"." + Widen(extension);
    EXPECT_EQ(Search(L"c:\\d\\report" + dotted), kNone) << ::testing::PrintToString(dotted);
    EXPECT_EQ(Learned(), dotted);
    EXPECT_EQ(Search(L"c:\\d\\summary" + dotted), L"c:\\d\\summary.old");
  }
}

TEST_F(SimilarFileTest, NewExtensionReplacesWhatWasLearned) {
  AddFiles({L"c:\\d\\report.docx"});
  Learn(L".old");
  EXPECT_EQ(Search(L"c:\\d\\report.enc"), kNone);
  EXPECT_EQ(Learned(), L".enc");
}

TEST_F(SimilarFileTest, NewExtensionOnAnotherStemIsNeitherLearnedNorMatched) {
  AddFiles({L"c:\\d\\report.docx"});
  EXPECT_EQ(Search(L"c:\\d\\report2.enc"), kNone);
  EXPECT_EQ(Learned(), L"");
  Learn(L".enc");
  EXPECT_EQ(Search(L"c:\\d\\report2.enc"), kNone);
  EXPECT_EQ(Learned(), L".enc");
}

TEST_F(SimilarFileTest, SecondExtensionBelongsToTheStem) {
  AddFiles({L"c:\\d\\a.tar.gz"});
  EXPECT_EQ(Search(L"c:\\d\\a.tar.enc"), kNone);
  EXPECT_EQ(Learned(), L".enc");
}

// The stem of ".profile" is empty: it is found in every name, and as long as the stem of another such name only.
TEST_F(SimilarFileTest, NameOfOnlyAnExtensionHasAnEmptyStem) {
  AddFiles({L"c:\\d\\.profile"});
  EXPECT_EQ(Search(L"c:\\d\\x.enc"), kNone);
  EXPECT_EQ(Learned(), L"");
  EXPECT_EQ(Search(L"c:\\d\\.enc"), kNone);
  EXPECT_EQ(Learned(), L".enc");
}

TEST_F(SimilarFileTest, DotAtTheEndIsAnExtension) {
  AddFiles({L"c:\\d\\report.docx"});
  EXPECT_EQ(Search(L"c:\\d\\report."), kNone);
  EXPECT_EQ(Learned(), L".");
}

// In "a..c" the extension and what follows the first dot are both ".c".
TEST_F(SimilarFileTest, DoubledDotIsANewExtensionAndNoGrownStem) {
  AddFiles({L"c:\\d\\a.c"});
  EXPECT_THAT(TracesOf(L"c:\\d\\a..c"),
              ElementsAre(TraceLine{242, "debug", "Extension is .c, extension2 is .c, itemext is .c"}));
  EXPECT_EQ(Learned(), L"");
}

// "doc" stands in "abc.doc" behind the dot only, so the stem has not grown; it is as long as "abc".
TEST_F(SimilarFileTest, StemInTheExtensionOnlyIsANewExtension) {
  AddFiles({L"c:\\d\\doc.doc"});
  EXPECT_THAT(TracesOf(L"c:\\d\\abc.doc"),
              ElementsAre(TraceLine{242, "debug", "Extension is .doc, extension2 is doc, itemext is .doc"}));
  EXPECT_EQ(Learned(), L".doc");
  EXPECT_EQ(Search(L"c:\\d\\abc.doc"), L"c:\\d\\doc.doc");
}

// The stems "rep\0x" and "rep" differ in length, though not up to their first zero unit.
TEST_F(SimilarFileTest, LengthsOfANewExtensionCountZeroUnits) {
  AddFiles({std::wstring(L"c:\\d\\rep\0x.docx"sv)});
  EXPECT_EQ(Search(L"c:\\d\\rep.e\0rep\0x"sv), kNone);
  EXPECT_EQ(Learned(), L"");
}

// A grown stem.

TEST_F(SimilarFileTest, GrowthOfTheStemIsLearnedThenMatched) {
  AddFiles({L"C:\\d\\report.docx", L"C:\\d\\summary.docx"});
  EXPECT_EQ(Search(L"C:\\d\\report_v2.docx"), kNone);
  EXPECT_EQ(Learned(), L"_v2");
  EXPECT_EQ(Search(L"C:\\d\\summary_v2.docx"), L"C:\\d\\summary.docx");
  EXPECT_EQ(Learned(), L"_v2");
}

TEST_F(SimilarFileTest, GrowthReplacesWhatWasLearned) {
  AddFiles({L"c:\\d\\report.docx"});
  Learn(L"_v1");
  EXPECT_EQ(Search(L"c:\\d\\report_v2.docx"), kNone);
  EXPECT_EQ(Learned(), L"_v2");
}

// The stem's length is cut off the front, wherever the stem stands: "my_report_22" less six units.
TEST_F(SimilarFileTest, GrowthIsCutByLengthAndNotByPosition) {
  AddFiles({L"c:\\d\\report.docx"});
  EXPECT_EQ(Search(L"c:\\d\\my_report_22.docx"), kNone);
  EXPECT_EQ(Learned(), L"ort_22");
}

TEST_F(SimilarFileTest, GrowthIsTracedAfterTheExtensions) {
  AddFiles({L"c:\\d\\report.docx"});
  EXPECT_THAT(TracesOf(L"c:\\d\\report_v2.docx"),
              ElementsAre(TraceLine{242, "debug", "Extension is .docx, extension2 is docx, itemext is .docx"},
                          TraceLine{255, "debug", "Ext diff: _v2, targetname: report_v2.docx, itemname: report.docx"}));
}

// The walk.

TEST_F(SimilarFileTest, FirstMatchInMapOrderWins) {
  AddFiles({L"c:\\d\\report.xls", L"c:\\d\\report.doc", L"c:\\d\\report.ppt"});
  Learn(L".enc");
  EXPECT_EQ(Search(L"c:\\d\\report.enc"), L"c:\\d\\report.doc");
}

TEST_F(SimilarFileTest, LearnedMatchWinsOverALaterContainedPath) {
  AddFiles({L"c:\\d\\report.enc", L"c:\\d\\report.doc"});
  Learn(L".enc");
  EXPECT_EQ(Search(L"c:\\d\\report.enc"), L"c:\\d\\report.doc");
}

TEST_F(SimilarFileTest, ContainedPathEndsTheWalk) {
  AddFiles({L"c:\\d\\a", L"c:\\d\\rep", L"c:\\d\\report.doc"});
  EXPECT_EQ(Search(L"c:\\d\\report.enc"), L"c:\\d\\rep");
  EXPECT_EQ(Learned(), L"") << "report.doc comes later";
}

TEST_F(SimilarFileTest, DifferenceIsMatchedByALaterEntryOfTheSameCall) {
  AddFiles({L"c:\\d\\report.docx", L"c:\\d\\report.xlsx"});
  EXPECT_EQ(Search(L"c:\\d\\report.enc"), L"c:\\d\\report.xlsx");
  EXPECT_EQ(Learned(), L".enc");
}

// "a.docx" overwrites ".enc" by "x_.enc" before "x_a.docx.old" would have matched it, and that one puts it back.
TEST_F(SimilarFileTest, OverwrittenDifferenceIsNotMatchedByALaterEntry) {
  AddFiles({L"c:\\d\\a.docx", L"c:\\d\\x_a.docx.old"});
  Learn(L".enc");
  EXPECT_THAT(TracesOf(L"c:\\d\\x_a.docx.enc"),
              ElementsAre(TraceLine{233, "debug", "Name diff: x_.enc"},
                          TraceLine{242, "debug", "Extension is .enc, extension2 is docx.enc, itemext is .old"}));
  EXPECT_EQ(Learned(), L".enc");
  Learn(L".enc");
  EXPECT_EQ(Search(L"c:\\d\\x_a.docx.enc"), kNone);
}

TEST_F(SimilarFileTest, EntriesThatTeachNothingAreWalkedPast) {
  AddFiles({L"c:\\a.docx", L"c:\\d\\other.docx", L"c:\\d\\report", L"c:\\d\\report.docx"});
  Learn(L"my .enc");
  EXPECT_EQ(Search(L"c:\\d\\my report.enc"), L"c:\\d\\report");
}

TEST_F(SimilarFileTest, ProcessesLearnSeparately) {
  AddFiles({L"c:\\d\\report.docx"});
  Search(L"c:\\d\\report.enc");
  ZT_PID_ITEM other;
  other.files.try_emplace(L"c:\\d\\report.docx");
  EXPECT_EQ(ZtSearchSimilarFile(typed_, other, other.files, L"c:\\d\\report.enc"), other.files.end());
}

TEST_F(SimilarFileTest, NothingIsTracedUnlessDebugLinesAreOn) {
  AddFiles({L"c:\\d\\report.docx"});
  TraceCapture trace(kTraceInfo | kTraceWarning);
  trace.Take();
  Search(L"c:\\d\\x_report.docx");
  Search(L"c:\\d\\report_v2.docx");
  Search(L"c:\\d\\report.enc");
  EXPECT_THAT(trace.Take(), IsEmpty());
}

TEST_F(SimilarFileTest, EmptyHandleFindsNothingAndTeachesNothing) {
  AddFiles({L"c:\\d\\a.docx"});
  typed_.reset();
  EXPECT_EQ(Search(L"c:\\d\\a.docx.enc"), kNone);
  EXPECT_EQ(Search(L"c:\\d\\x_a.docx"), kNone);
  EXPECT_EQ(Learned(), L"");
}

}  // namespace
}  // namespace zt::testing
