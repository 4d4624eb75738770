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
  std::wstring_view path;
  std::wstring_view part;
};

template <typename Function, std::size_t N>
void ExpectParts(Function function, const Row (&rows)[N]) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(std::wstring(function(row.path)), std::wstring(row.part));
  }
}

TEST(PathsTest, FolderEndsBeforeTheLastBackslash) {
  ExpectParts(Folder, {
                          {__LINE__, L"c:\\d\\a.txt"sv, L"c:\\d"sv},
                          {__LINE__, L"c:\\d\\"sv, L"c:\\d"sv},
                          {__LINE__, L"c:\\a"sv, L"c:"sv},
                          {__LINE__, L"\\a"sv, L""sv},
                          {__LINE__, L"\\\\server\\share\\a"sv, L"\\\\server\\share"sv},
                          {__LINE__, L"c:\\a\0\\b"sv, L"c:\\a\0"sv},
                      });
}

TEST(PathsTest, FolderOfAPathWithoutBackslashIsTheWholePath) {
  ExpectParts(Folder, {
                          {__LINE__, L"a.txt"sv, L"a.txt"sv},
                          {__LINE__, L"c:/d/a.txt"sv, L"c:/d/a.txt"sv},
                          {__LINE__, L""sv, L""sv},
                      });
}

TEST(PathsTest, NameBeginsAfterTheLastBackslash) {
  ExpectParts(Name, {
                        {__LINE__, L"c:\\d\\a.txt"sv, L"a.txt"sv},
                        {__LINE__, L"c:\\d\\"sv, L""sv},
                        {__LINE__, L"\\a"sv, L"a"sv},
                        {__LINE__, L"a.txt"sv, L"a.txt"sv},
                        {__LINE__, L"c:/d/a.txt"sv, L"c:/d/a.txt"sv},
                        {__LINE__, L""sv, L""sv},
                        {__LINE__, L"c:\\a\0b"sv, L"a\0b"sv},
                    });
}

TEST(PathsTest, StemEndsBeforeTheLastDot) {
  ExpectParts(Stem, {
                        {__LINE__, L"a.txt"sv, L"a"sv},
                        {__LINE__, L"a.tar.gz"sv, L"a.tar"sv},
                        {__LINE__, L"a."sv, L"a"sv},
                        {__LINE__, L".profile"sv, L""sv},
                        {__LINE__, L"a"sv, L"a"sv},
                        {__LINE__, L""sv, L""sv},
                        {__LINE__, L"a\0.b"sv, L"a\0"sv},
                    });
}

TEST(PathsTest, LastExtensionBeginsAfterTheLastDot) {
  ExpectParts(LastExtension, {
                                 {__LINE__, L"a.txt"sv, L"txt"sv},
                                 {__LINE__, L"a.tar.gz"sv, L"gz"sv},
                                 {__LINE__, L"a.b c"sv, L"b c"sv},
                                 {__LINE__, L"a."sv, L""sv},
                                 {__LINE__, L".profile"sv, L"profile"sv},
                                 {__LINE__, L"a"sv, L"a"sv},
                                 {__LINE__, L""sv, L""sv},
                             });
}

TEST(PathsTest, AfterFirstDotBeginsAfterTheFirstDot) {
  ExpectParts(AfterFirstDot, {
                                 {__LINE__, L"a.txt"sv, L"txt"sv},
                                 {__LINE__, L"a.tar.gz"sv, L"tar.gz"sv},
                                 {__LINE__, L"a..c"sv, L".c"sv},
                                 {__LINE__, L"a."sv, L""sv},
                                 {__LINE__, L".x.y"sv, L"x.y"sv},
                                 {__LINE__, L"a"sv, L"a"sv},
                                 {__LINE__, L""sv, L""sv},
                             });
}

TEST(PathsTest, DottedExtensionKeepsItsDot) {
  ExpectParts(DottedExtension, {
                                   {__LINE__, L"a.txt"sv, L".txt"sv},
                                   {__LINE__, L"a.tar.gz"sv, L".gz"sv},
                                   {__LINE__, L"a b.txt"sv, L".txt"sv},
                                   {__LINE__, L".profile"sv, L".profile"sv},
                                   {__LINE__, L"a."sv, L"."sv},
                                   {__LINE__, L"."sv, L"."sv},
                                   {__LINE__, L"a.b/c"sv, L".b/c"sv},
                               });
}

TEST(PathsTest, DottedExtensionHoldsNoSpaceAndNoBackslash) {
  ExpectParts(DottedExtension, {
                                   {__LINE__, L"a.my ext"sv, L""sv},
                                   {__LINE__, L"a.txt "sv, L""sv},
                                   {__LINE__, L"a.txt b.c"sv, L".c"sv},
                                   {__LINE__, L"a.d\\b"sv, L""sv},
                                   {__LINE__, L"a.d\\b.c"sv, L".c"sv},
                                   {__LINE__, L"a"sv, L""sv},
                                   {__LINE__, L""sv, L""sv},
                               });
}

TEST(PathsTest, DottedExtensionReadsUpToTheFirstZeroUnit) {
  ExpectParts(DottedExtension, {
                                   {__LINE__, L"a.txt\0.zip"sv, L".txt"sv},
                                   {__LINE__, L"a\0.zip"sv, L""sv},
                                   {__LINE__, L"\0.zip"sv, L""sv},
                               });
}

TEST(PathsTest, FileNamePartBeginsAfterTheLastSeparatorThatANameFollows) {
  ExpectParts(FileNamePart, {
                                {__LINE__, L"c:\\d\\a.dll"sv, L"a.dll"sv},
                                {__LINE__, L"c:/d/a.dll"sv, L"a.dll"sv},
                                {__LINE__, L"c:\\d/a.dll"sv, L"a.dll"sv},
                                {__LINE__, L"c:a.dll"sv, L"a.dll"sv},
                                {__LINE__, L"a.dll"sv, L"a.dll"sv},
                                {__LINE__, L"\\a.dll"sv, L"a.dll"sv},
                                {__LINE__, L"d\\\\a.dll"sv, L"a.dll"sv},
                                {__LINE__, L""sv, L""sv},
                            });
}

TEST(PathsTest, FileNamePartKeepsASeparatorThatNothingFollows) {
  ExpectParts(FileNamePart, {
                                {__LINE__, L"c:\\d\\"sv, L"d\\"sv},
                                {__LINE__, L"c:\\d\\\\"sv, L"d\\\\"sv},
                                {__LINE__, L"c:/d/"sv, L"d/"sv},
                                {__LINE__, L"c:"sv, L"c:"sv},
                                {__LINE__, L"c:\\"sv, L"c:\\"sv},
                                {__LINE__, L"\\"sv, L"\\"sv},
                            });
}

TEST(PathsTest, FileNamePartReadsUpToTheFirstZeroUnit) {
  ExpectParts(FileNamePart, {
                                {__LINE__, L"c:\\a\0\\b"sv, L"a"sv},
                                {__LINE__, L"c:\\\0a"sv, L"c:\\"sv},
                                {__LINE__, L"\0\\b"sv, L""sv},
                            });
}

TEST(PathsTest, UpToZeroEndsBeforeTheFirstZeroUnit) {
  ExpectParts(UpToZero, {
                            {__LINE__, L"ab\0c\0d"sv, L"ab"sv},
                            {__LINE__, L"ab"sv, L"ab"sv},
                            {__LINE__, L"\0ab"sv, L""sv},
                            {__LINE__, L""sv, L""sv},
                        });
}

TEST(PathsTest, LowerCasingChangesTheLettersAToZ) {
  EXPECT_EQ(ToLower(L"C:\\ABCXYZ\\abcxyz@[`{09.TXT"), L"c:\\abcxyz\\abcxyz@[`{09.txt");
  EXPECT_EQ(ToLower(L""), L"");
}

TEST(PathsTest, LowerCasingIsTheSameInEveryLocale) {
  const LocaleGuard locale;
  if (!locale.KnowsUmlauts()) {
    GTEST_SKIP() << "no locale of this system changes letters beyond A to Z";
  }
  const std::wstring text = L"C:\\\u00C4RZTE\\\u0410";
  EXPECT_EQ(ToLower(text), L"c:\\\u00C4rzte\\\u0410");
}

TEST(PathsTest, LowerCasingLeavesLettersOutsideAToZAndSurrogatesAlone) {
  const std::wstring text = L"\u00C4\u00DC\u0410\u0130\u212A\xD801\xDC00";
  EXPECT_EQ(ToLower(text), text);
}

TEST(PathsTest, LowerCasingGoesOnPastZeroUnits) { EXPECT_EQ(ToLower(L"A\0B"sv), std::wstring(L"a\0b"sv)); }

}  // namespace
}  // namespace zt::testing
