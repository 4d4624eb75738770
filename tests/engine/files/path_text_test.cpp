#include "engine/files/path_text.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "engine/files/path_name.h"
#include "tests/support/records.h"

namespace zt::testing {
namespace {

TEST(PathTextTest, KeepsBothLetterCases) {
  const PathText text = MakePath(L"C:\\Users\\\u00C4nn\\Report 2024.DOCX");
  EXPECT_EQ(text.Lower(), u"c:\\users\\\u00C4nn\\report 2024.docx");
  EXPECT_EQ(text.Wide(), L"C:\\Users\\\u00C4nn\\Report 2024.DOCX");
  EXPECT_FALSE(text.empty());
}

TEST(PathTextTest, KeepsEveryUnitOfLongPaths) {
  std::wstring wide;
  for (unsigned unit = 0; unit < 523; ++unit) {
    wide += static_cast<wchar_t>(unit % 3 == 0 ? L'Q' : 0x100 + unit);
  }
  EXPECT_EQ(MakePath(wide).Wide(), wide);
}

TEST(PathTextTest, AnEmptyPathIsEmpty) {
  EXPECT_TRUE(PathText().empty());
  EXPECT_TRUE(MakePath(L"").empty());
  EXPECT_EQ(PathText().Lower(), u"");
  EXPECT_EQ(PathText().Wide(), L"");
  EXPECT_EQ(PathText(), MakePath(L""));
}

TEST(PathTextTest, CopiesShareTheUnits) {
  PathText text = MakePath(L"C:\\a");
  const PathText copy(text);
  EXPECT_EQ(copy.Lower().data(), text.Lower().data());
  text = MakePath(L"C:\\b");
  EXPECT_EQ(copy.Wide(), L"C:\\a");
  EXPECT_EQ(text.Wide(), L"C:\\b");
  const PathText moved(std::move(text));
  EXPECT_EQ(moved.Wide(), L"C:\\b");
}

TEST(PathTextTest, EqualityIsThatOfUnitsAndCase) {
  EXPECT_EQ(MakePath(L"C:\\a"), MakePath(L"C:\\a"));
  EXPECT_FALSE(MakePath(L"C:\\a") == MakePath(L"c:\\a"));
  EXPECT_FALSE(MakePath(L"C:\\a") == MakePath(L"C:\\A"));
  EXPECT_FALSE(MakePath(L"c:\\a") == MakePath(L"c:\\b"));
  EXPECT_FALSE(MakePath(L"c:\\a") == PathText());
}

struct PartsRow {
  std::u16string_view path;
  std::size_t name_begin;
  std::size_t stem_end;
};

TEST(PathPartsTest, PartsAreThoseOfFolderStemAndExtension) {
  const TextHash hash(1);
  for (const PartsRow& row :
       {PartsRow{u"c:\\d\\report.docx", 5, 11}, PartsRow{u"c:\\d\\a.b.c", 5, 8}, PartsRow{u"c:\\d.e\\report", 7, 13},
        PartsRow{u"c:\\d\\ab.docx", 5, 7}, PartsRow{u"c:\\d\\.docx", 5, 5}, PartsRow{u"c:\\d\\report.", 5, 11},
        PartsRow{u"c:\\d\\", 5, 5}, PartsRow{u"report.docx", 0, 6}, PartsRow{u"\\a", 1, 2}, PartsRow{u"", 0, 0}}) {
    const PathParts parts(row.path, hash);
    EXPECT_EQ(parts.name_begin, row.name_begin);
    EXPECT_EQ(parts.stem_end, row.stem_end);
    EXPECT_EQ(parts.stem, hash(row.path.substr(0, row.stem_end)));
    EXPECT_EQ(parts.whole, hash(row.path));
  }
}

TEST(PathNameTest, TextIsMadeOnceInItsOwnLetterCase) {
  PathName name(u"c:\\a.doc", u"C:\\A.doc");
  const PathText& text = name.Text();
  EXPECT_EQ(text.Wide(), L"C:\\A.doc");
  EXPECT_EQ(&name.Text(), &text);
  EXPECT_EQ(PathName(text).Text().Lower().data(), text.Lower().data());
}

}  // namespace
}  // namespace zt::testing
