#include "zteng/zt_text.h"

#include <gtest/gtest.h>

#include <string>

namespace zt::testing {
namespace {

TEST(TextTest, WideTextComesBackUnitByUnit) {
  const std::wstring wide = {L'C', L':', L'\\', wchar_t{0xE4}, wchar_t{0xD83D}, wchar_t{0xDE00}, wchar_t{0xFFFF}, L'\0', L'x'};
  const ZtText text(wide);
  EXPECT_EQ(text.Wide(), wide);
  EXPECT_EQ(text.Units().size(), 9u);
  EXPECT_EQ(text.Units()[4], char16_t{0xD83D});
}

TEST(TextTest, IsEmptyUntilItIsSetAndWhenItIsCleared) {
  ZtText text;
  EXPECT_TRUE(text.empty());
  text = L"a";
  EXPECT_FALSE(text.empty());
  text.clear();
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(text.Wide(), L"");
}

TEST(TextTest, IsComparedWithWideText) {
  const ZtText text(L"abc");
  EXPECT_TRUE(text == L"abc");
  EXPECT_FALSE(text == L"ab");
  EXPECT_FALSE(text == L"abcd");
  EXPECT_FALSE(text == L"abd");
  EXPECT_TRUE(text == ZtText(L"abc"));
}

TEST(TextTest, TakesTwoBytesAUnit) { EXPECT_EQ(sizeof(ZtText().Units()[0]), 2u); }

}  // namespace
}  // namespace zt::testing
