#include "engine/suspicious_extensions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

TEST(SuspiciousExtensionsTest, HoldsEveryExtensionOnce) {
  EXPECT_EQ(SuspiciousExtensions.size(), 342u);
  const std::set<std::u16string_view> distinct(SuspiciousExtensions.begin(), SuspiciousExtensions.end());
  EXPECT_EQ(distinct.size(), 342u);
}

TEST(SuspiciousExtensionsTest, ExtensionsStandAtTheirPositions) {
  EXPECT_EQ(SuspiciousExtensions[0], u"1cd");
  EXPECT_EQ(SuspiciousExtensions[1], u"3ds");
  EXPECT_EQ(SuspiciousExtensions[5], u"7z");
  EXPECT_EQ(SuspiciousExtensions[6], u"accda");
  EXPECT_EQ(SuspiciousExtensions[35], u"backup");
  EXPECT_EQ(SuspiciousExtensions[80], u"docx");
  EXPECT_EQ(SuspiciousExtensions[100], u"epsf");
  EXPECT_EQ(SuspiciousExtensions[136], u"jpg");
  EXPECT_EQ(SuspiciousExtensions[170], u"mp3");
  EXPECT_EQ(SuspiciousExtensions[203], u"pdf");
  EXPECT_EQ(SuspiciousExtensions[250], u"rle");
  EXPECT_EQ(SuspiciousExtensions[286], u"txt");
  EXPECT_EQ(SuspiciousExtensions[341], u"zip");
}

// The one descent of the list: every other entry is greater than the one before it.
TEST(SuspiciousExtensionsTest, AscendsButForOnePair) {
  std::vector<std::size_t> descents;
  for (std::size_t i = 1; i < SuspiciousExtensions.size(); ++i) {
    if (SuspiciousExtensions[i] <= SuspiciousExtensions[i - 1]) {
      descents.push_back(i);
    }
  }
  EXPECT_THAT(descents, ElementsAre(307u));
  EXPECT_EQ(SuspiciousExtensions[306], u"wb2");
  EXPECT_EQ(SuspiciousExtensions[307], u"wav");
}

TEST(SuspiciousExtensionsTest, ExtensionsAreLowerCaseLettersAndDigitsWithoutADot) {
  const auto fits = [](char16_t unit) { return (unit >= u'a' && unit <= u'z') || (unit >= u'0' && unit <= u'9'); };
  for (const std::u16string_view extension : SuspiciousExtensions) {
    EXPECT_FALSE(extension.empty());
    EXPECT_TRUE(std::all_of(extension.begin(), extension.end(), fits)) << std::string(extension.begin(), extension.end());
  }
}

TEST(SuspiciousExtensionsTest, EachFirstCharacterHasItsShare) {
  std::map<char, int> counts;
  for (const std::u16string_view extension : SuspiciousExtensions) {
    ++counts[static_cast<char>(extension.front())];
  }
  EXPECT_THAT(counts, ElementsAre(Pair('1', 1), Pair('3', 4), Pair('7', 1), Pair('a', 29), Pair('b', 7), Pair('c', 21),
                                  Pair('d', 30), Pair('e', 11), Pair('f', 6), Pair('g', 4), Pair('h', 7), Pair('i', 7),
                                  Pair('j', 14), Pair('k', 3), Pair('l', 5), Pair('m', 30), Pair('n', 2), Pair('o', 13),
                                  Pair('p', 48), Pair('q', 1), Pair('r', 12), Pair('s', 17), Pair('t', 14), Pair('u', 3),
                                  Pair('v', 16), Pair('w', 10), Pair('x', 25), Pair('z', 1)));
}

}  // namespace
}  // namespace zt::testing
