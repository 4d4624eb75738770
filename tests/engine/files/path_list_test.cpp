#include "engine/files/path_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/records.h"

namespace zt::testing {
namespace {

using namespace std::string_view_literals;
using ::testing::ElementsAre;

TEST(PathListTest, NewListIsEmpty) {
  PathList list;
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.size(), 0u);
  EXPECT_FALSE(HasPath(list, L""));
}

TEST(PathListTest, KeepsTheOrderOfInsertion) {
  PathList list;
  EXPECT_TRUE(AddPath(list, L"c"));
  EXPECT_TRUE(AddPath(list, L"a"));
  EXPECT_TRUE(AddPath(list, L"b"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"c", L"a", L"b"));
  EXPECT_EQ(list.size(), 3u);
  EXPECT_FALSE(list.empty());
}

TEST(PathListTest, AddingAPresentPathChangesNothing) {
  PathList list;
  AddPath(list, L"a");
  AddPath(list, L"b");
  EXPECT_FALSE(AddPath(list, L"a"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"a", L"b"));
}

TEST(PathListTest, RemovingTheMiddleKeepsTheOrderOfTheOthers) {
  PathList list;
  AddPath(list, L"c");
  AddPath(list, L"b");
  AddPath(list, L"a");
  EXPECT_TRUE(RemovePath(list, L"b"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"c", L"a"));
  EXPECT_FALSE(HasPath(list, L"b"));
  EXPECT_TRUE(HasPath(list, L"c"));
  EXPECT_TRUE(HasPath(list, L"a"));
}

TEST(PathListTest, RemovingAnAbsentPathChangesNothing) {
  PathList list;
  AddPath(list, L"a");
  EXPECT_FALSE(RemovePath(list, L"b"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"a"));
}

TEST(PathListTest, RemovedPathIsAddedAgainAtTheEnd) {
  PathList list;
  AddPath(list, L"a");
  AddPath(list, L"b");
  RemovePath(list, L"a");
  EXPECT_TRUE(AddPath(list, L"a"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"b", L"a"));
}

TEST(PathListTest, RemovingTheOnlyPathEmptiesTheList) {
  PathList list;
  AddPath(list, L"a");
  EXPECT_TRUE(RemovePath(list, L"a"));
  EXPECT_TRUE(list.empty());
  EXPECT_FALSE(RemovePath(list, L"a"));
}

TEST(PathListTest, EmptyPathIsAnEntryLikeAnyOther) {
  PathList list;
  AddPath(list, L"a");
  EXPECT_FALSE(HasPath(list, L""));
  EXPECT_TRUE(AddPath(list, L""));
  EXPECT_FALSE(AddPath(list, L""));
  EXPECT_THAT(list.Paths(), ElementsAre(L"a", L""));
  EXPECT_TRUE(RemovePath(list, L""));
  EXPECT_THAT(list.Paths(), ElementsAre(L"a"));
}

TEST(PathListTest, ComparesEveryUnitAndTheLength) {
  PathList list;
  EXPECT_TRUE(AddPath(list, L"c:\\a"));
  EXPECT_TRUE(AddPath(list, L"c:\\a.b"));
  EXPECT_TRUE(AddPath(list, L"c:\\"));
  EXPECT_TRUE(AddPath(list, L"c:\\a\0"sv));
  EXPECT_EQ(list.size(), 4u);
}

TEST(PathListTest, PathIsCopied) {
  PathList list;
  std::wstring path = L"c:\\some\\path\\that\\is\\long\\enough\\to\\live\\on\\the\\heap";
  AddPath(list, path);
  path[0] = L'd';
  EXPECT_TRUE(HasPath(list, L"c:\\some\\path\\that\\is\\long\\enough\\to\\live\\on\\the\\heap"));
}

TEST(PathListTest, MovedListStillFindsAndRemoves) {
  PathList from;
  AddPath(from, L"b");
  AddPath(from, L"a");
  PathList list = std::move(from);
  EXPECT_TRUE(HasPath(list, L"b"));
  EXPECT_FALSE(AddPath(list, L"a"));
  EXPECT_TRUE(RemovePath(list, L"b"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"a"));
}

TEST(PathListTest, AssignmentByMoveReplacesThePaths) {
  PathList from;
  AddPath(from, L"b");
  PathList list;
  AddPath(list, L"a");
  list = std::move(from);
  EXPECT_THAT(list.Paths(), ElementsAre(L"b"));
  EXPECT_FALSE(HasPath(list, L"a"));
  EXPECT_TRUE(AddPath(list, L"a"));
  EXPECT_THAT(list.Paths(), ElementsAre(L"b", L"a"));
}

}  // namespace
}  // namespace zt::testing
