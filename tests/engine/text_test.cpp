#include "engine/text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace zt::testing {
namespace {

TEST(TextTest, WideTextAndUnitsAreTheSameElements) {
  const std::u16string units = u"C:\\\xD83D\xDE00\xFFFF";
  EXPECT_EQ(Widen(units), std::wstring({L'C', L':', L'\\', wchar_t{0xD83D}, wchar_t{0xDE00}, wchar_t{0xFFFF}}));
  EXPECT_EQ(ToUnits(Widen(units)), units);
  EXPECT_TRUE(SameText(units, Widen(units)));
  EXPECT_FALSE(SameText(units, L"C:\\"));
}

TEST(TextTest, SameUnitsIsEquality) {
  EXPECT_TRUE(SameUnits(u"", u""));
  EXPECT_TRUE(SameUnits(u"abc", u"abc"));
  EXPECT_FALSE(SameUnits(u"abc", u"abd"));
  EXPECT_FALSE(SameUnits(u"abc", u"abcd"));
}

// Beside the library's own order: texts that differ at every place, and texts that begin one another.
TEST(TextTest, LessUnitsIsTheOrderOfUnits) {
  std::mt19937 random(2);
  for (int pair = 0; pair < 20000; ++pair) {
    std::u16string a(random() % 40, u'x');
    std::u16string b = a;
    b.resize(random() % 40, u'x');
    if (!b.empty() && random() % 4 != 0) {
      b[random() % b.size()] = static_cast<char16_t>(random());
    }
    ASSERT_EQ(LessUnits(a, b), a < b);
    ASSERT_EQ(LessUnits(b, a), b < a);
  }
}

}  // namespace
}  // namespace zt::testing
