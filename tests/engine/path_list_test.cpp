#include "zteng/zt_path_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zt::testing {
namespace {

using namespace std::string_view_literals;
using ::testing::ElementsAre;

TEST(PathListTest, NewListIsEmpty) {
  const ZtPathList list;
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.size(), 0u);
  EXPECT_FALSE(list.Contains(L""));
}

TEST(PathListTest, KeepsTheOrderOfInsertion) {
  ZtPathList list;
  EXPECT_TRUE(list.Add(L"c"));
  EXPECT_TRUE(list.Add(L"a"));
  EXPECT_TRUE(list.Add(L"b"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"c", L"a", L"b"));
  EXPECT_EQ(list.size(), 3u);
  EXPECT_FALSE(list.empty());
}

TEST(PathListTest, AddingAPresentPathChangesNothing) {
  ZtPathList list;
  list.Add(L"a");
  list.Add(L"b");
  EXPECT_FALSE(list.Add(L"a"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"a", L"b"));
}

TEST(PathListTest, RemovingTheMiddleKeepsTheOrderOfTheOthers) {
  ZtPathList list;
  list.Add(L"c");
  list.Add(L"b");
  list.Add(L"a");
  EXPECT_TRUE(list.Remove(L"b"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"c", L"a"));
  EXPECT_FALSE(list.Contains(L"b"));
  EXPECT_TRUE(list.Contains(L"c"));
  EXPECT_TRUE(list.Contains(L"a"));
}

TEST(PathListTest, RemovingAnAbsentPathChangesNothing) {
  ZtPathList list;
  list.Add(L"a");
  EXPECT_FALSE(list.Remove(L"b"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"a"));
}

TEST(PathListTest, RemovedPathIsAddedAgainAtTheEnd) {
  ZtPathList list;
  list.Add(L"a");
  list.Add(L"b");
  list.Remove(L"a");
  EXPECT_TRUE(list.Add(L"a"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"b", L"a"));
}

TEST(PathListTest, RemovingTheOnlyPathEmptiesTheList) {
  ZtPathList list;
  list.Add(L"a");
  EXPECT_TRUE(list.Remove(L"a"));
  EXPECT_TRUE(list.empty());
  EXPECT_FALSE(list.Remove(L"a"));
}

TEST(PathListTest, EmptyPathIsAnEntryLikeAnyOther) {
  ZtPathList list;
  list.Add(L"a");
  EXPECT_FALSE(list.Contains(L""));
  EXPECT_TRUE(list.Add(L""));
  EXPECT_FALSE(list.Add(L""));
  EXPECT_THAT(list.Paths(), ElementsAre(L"a", L""));
  EXPECT_TRUE(list.Remove(L""));
  EXPECT_THAT(list.Paths(), ElementsAre(L"a"));
}

TEST(PathListTest, ComparesEveryUnitAndTheLength) {
  ZtPathList list;
  EXPECT_TRUE(list.Add(L"c:\\a"));
  EXPECT_TRUE(list.Add(L"c:\\A"));
  EXPECT_TRUE(list.Add(L"c:\\a.b"));
  EXPECT_TRUE(list.Add(L"c:\\"));
  EXPECT_TRUE(list.Add(L"c:\\a\0"sv));
  EXPECT_EQ(list.size(), 5u);
}

TEST(PathListTest, PathIsCopied) {
  ZtPathList list;
  std::wstring path = L"c:\\some\\path\\that\\is\\long\\enough\\to\\live\\on\\the\\heap";
  list.Add(path);
  path[0] = L'd';
  EXPECT_TRUE(list.Contains(L"c:\\some\\path\\that\\is\\long\\enough\\to\\live\\on\\the\\heap"));
}

TEST(PathListTest, MovedListStillFindsAndRemoves) {
  ZtPathList from;
  from.Add(L"b");
  from.Add(L"a");
  ZtPathList list = std::move(from);
  EXPECT_TRUE(list.Contains(L"b"));
  EXPECT_FALSE(list.Add(L"a"));
  EXPECT_TRUE(list.Remove(L"b"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"a"));
}

TEST(PathListTest, AssignmentByMoveReplacesThePaths) {
  ZtPathList from;
  from.Add(L"b");
  ZtPathList list;
  list.Add(L"a");
  list = std::move(from);
  EXPECT_THAT(list.Paths(), ElementsAre(L"b"));
  EXPECT_FALSE(list.Contains(L"a"));
  EXPECT_TRUE(list.Add(L"a"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"b", L"a"));
}

}  // namespace
}  // namespace zt::testing
