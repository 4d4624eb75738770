#include "engine/paths.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <string_view>

#include "tests/support/locale_guard.h"

namespace zt::testing {
namespace {

using namespace std::string_view_literals;

struct Row {
  int line;
  std::u16string_view path;
  std::u16string_view part;
};

template <typename Function, std::size_t N>
void ExpectParts(Function function, const Row (&rows)[N]) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(std::u16string(function(row.path)), std::u16string(row.part));
  }
}

TEST(PathsTest, FolderEndsBeforeTheLastBackslash) {
  ExpectParts(Folder, {
                          {__LINE__, u"c:\\d\\a.txt"sv, u"c:\\d"sv},
                          {__LINE__, u"c:\\d\\"sv, u"c:\\d"sv},
                          {__LINE__, u"c:\\a"sv, u"c:"sv},
                          {__LINE__, u"\\a"sv, u""sv},
                          {__LINE__, u"\\\\server\\share\\a"sv, u"\\\\server\\share"sv},
                          {__LINE__, u"c:\\a\0\\b"sv, u"c:\\a\0"sv},
                      });
}

TEST(PathsTest, FolderOfAPathWithoutBackslashIsTheWholePath) {
  ExpectParts(Folder, {
                          {__LINE__, u"a.txt"sv, u"a.txt"sv},
                          {__LINE__, u"c:/d/a.txt"sv, u"c:/d/a.txt"sv},
                          {__LINE__, u""sv, u""sv},
                      });
}

TEST(PathsTest, NameBeginsAfterTheLastBackslash) {
  ExpectParts(Name, {
                        {__LINE__, u"c:\\d\\a.txt"sv, u"a.txt"sv},
                        {__LINE__, u"c:\\d\\"sv, u""sv},
                        {__LINE__, u"\\a"sv, u"a"sv},
                        {__LINE__, u"a.txt"sv, u"a.txt"sv},
                        {__LINE__, u"c:/d/a.txt"sv, u"c:/d/a.txt"sv},
                        {__LINE__, u""sv, u""sv},
                        {__LINE__, u"c:\\a\0b"sv, u"a\0b"sv},
                    });
}

TEST(PathsTest, StemEndsBeforeTheLastDot) {
  ExpectParts(Stem, {
                        {__LINE__, u"a.txt"sv, u"a"sv},
                        {__LINE__, u"a.tar.gz"sv, u"a.tar"sv},
                        {__LINE__, u"a."sv, u"a"sv},
                        {__LINE__, u".profile"sv, u""sv},
                        {__LINE__, u"a"sv, u"a"sv},
                        {__LINE__, u""sv, u""sv},
                        {__LINE__, u"a\0.b"sv, u"a\0"sv},
                    });
}

TEST(PathsTest, LastExtensionBeginsAfterTheLastDot) {
  ExpectParts(LastExtension, {
                                 {__LINE__, u"a.txt"sv, u"txt"sv},
                                 {__LINE__, u"a.tar.gz"sv, u"gz"sv},
                                 {__LINE__, u"a.b c"sv, u"b c"sv},
                                 {__LINE__, u"a."sv, u""sv},
                                 {__LINE__, u".profile"sv, u"profile"sv},
                                 {__LINE__, u"a"sv, u"a"sv},
                                 {__LINE__, u""sv, u""sv},
                             });
}

TEST(PathsTest, AfterFirstDotBeginsAfterTheFirstDot) {
  ExpectParts(AfterFirstDot, {
                                 {__LINE__, u"a.txt"sv, u"txt"sv},
                                 {__LINE__, u"a.tar.gz"sv, u"tar.gz"sv},
                                 {__LINE__, u"a..c"sv, u".c"sv},
                                 {__LINE__, u"a."sv, u""sv},
                                 {__LINE__, u".x.y"sv, u"x.y"sv},
                                 {__LINE__, u"a"sv, u"a"sv},
                                 {__LINE__, u""sv, u""sv},
                             });
}

TEST(PathsTest, DottedExtensionKeepsItsDot) {
  ExpectParts(DottedExtension, {
                                   {__LINE__, u"a.txt"sv, u".txt"sv},
                                   {__LINE__, u"a.tar.gz"sv, u".gz"sv},
                                   {__LINE__, u"a b.txt"sv, u".txt"sv},
                                   {__LINE__, u".profile"sv, u".profile"sv},
                                   {__LINE__, u"a."sv, u"."sv},
                                   {__LINE__, u"."sv, u"."sv},
                                   {__LINE__, u"a.b/c"sv, u".b/c"sv},
                               });
}

TEST(PathsTest, DottedExtensionHoldsNoSpaceAndNoBackslash) {
  ExpectParts(DottedExtension, {
                                   {__LINE__, u"a.my ext"sv, u""sv},
                                   {__LINE__, u"a.txt "sv, u""sv},
                                   {__LINE__, u"a.txt b.c"sv, u".c"sv},
                                   {__LINE__, u"a.d\\b"sv, u""sv},
                                   {__LINE__, u"a.d\\b.c"sv, u".c"sv},
                                   {__LINE__, u"a"sv, u""sv},
                                   {__LINE__, u""sv, u""sv},
                               });
}

TEST(PathsTest, DottedExtensionReadsUpToTheFirstZeroUnit) {
  ExpectParts(DottedExtension, {
                                   {__LINE__, u"a.txt\0.zip"sv, u".txt"sv},
                                   {__LINE__, u"a\0.zip"sv, u""sv},
                                   {__LINE__, u"\0.zip"sv, u""sv},
                               });
}

TEST(PathsTest, FileNamePartBeginsAfterTheLastSeparatorThatANameFollows) {
  ExpectParts(FileNamePart, {
                                {__LINE__, u"c:\\d\\a.dll"sv, u"a.dll"sv},
                                {__LINE__, u"c:/d/a.dll"sv, u"a.dll"sv},
                                {__LINE__, u"c:\\d/a.dll"sv, u"a.dll"sv},
                                {__LINE__, u"c:a.dll"sv, u"a.dll"sv},
                                {__LINE__, u"a.dll"sv, u"a.dll"sv},
                                {__LINE__, u"\\a.dll"sv, u"a.dll"sv},
                                {__LINE__, u"d\\\\a.dll"sv, u"a.dll"sv},
                                {__LINE__, u""sv, u""sv},
                            });
}

TEST(PathsTest, FileNamePartKeepsASeparatorThatNothingFollows) {
  ExpectParts(FileNamePart, {
                                {__LINE__, u"c:\\d\\"sv, u"d\\"sv},
                                {__LINE__, u"c:\\d\\\\"sv, u"d\\\\"sv},
                                {__LINE__, u"c:/d/"sv, u"d/"sv},
                                {__LINE__, u"c:"sv, u"c:"sv},
                                {__LINE__, u"c:\\"sv, u"c:\\"sv},
                                {__LINE__, u"\\"sv, u"\\"sv},
                            });
}

TEST(PathsTest, FileNamePartReadsUpToTheFirstZeroUnit) {
  ExpectParts(FileNamePart, {
                                {__LINE__, u"c:\\a\0\\b"sv, u"a"sv},
                                {__LINE__, u"c:\\\0a"sv, u"c:\\"sv},
                                {__LINE__, u"\0\\b"sv, u""sv},
                            });
}

TEST(PathsTest, UpToZeroEndsBeforeTheFirstZeroUnit) {
  ExpectParts(UpToZero, {
                            {__LINE__, u"ab\0c\0d"sv, u"ab"sv},
                            {__LINE__, u"ab"sv, u"ab"sv},
                            {__LINE__, u"\0ab"sv, u""sv},
                            {__LINE__, u""sv, u""sv},
                        });
}

TEST(PathsTest, LettersAToZHaveTwoCasesAndNothingElse) {
  const std::u16string_view upper = u"ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  const std::u16string_view lower = u"abcdefghijklmnopqrstuvwxyz";
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const auto letter = static_cast<char16_t>(unit);
    const std::size_t place = upper.find(letter);
    EXPECT_EQ(IsUpper(letter), place != std::u16string_view::npos) << unit;
    EXPECT_EQ(ToLower(letter), place == std::u16string_view::npos ? letter : lower[place]) << unit;
  }
  for (std::size_t place = 0; place < lower.size(); ++place) {
    EXPECT_EQ(ToUpper(lower[place]), upper[place]);
  }
}

TEST(PathsTest, LowerCasingIsTheSameInEveryLocale) {
  const LocaleGuard locale;
  if (!locale.KnowsUmlauts()) {
    GTEST_SKIP() << "no locale of this system changes letters beyond A to Z";
  }
  EXPECT_EQ(ToLower(u'\u00C4'), u'\u00C4');
  EXPECT_EQ(ToLower(u'\u0410'), u'\u0410');
  EXPECT_EQ(ToLower(u'Z'), u'z');
}

}  // namespace
}  // namespace zt::testing
