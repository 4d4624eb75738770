#include "trace/path_text.h"

#include <gtest/gtest.h>

#include <string>

namespace zt::testing {
namespace {

const std::string kSeparator(1, kPathSeparator);

TEST(PathTextTest, PartsAreJoined) {
  PathText path("folder");
  EXPECT_TRUE(path.Append(kSeparator, "name", ".log"));
  EXPECT_EQ(path.view(), "folder" + kSeparator + "name.log");
  EXPECT_STREQ(path.c_str(), ("folder" + kSeparator + "name.log").c_str());
}

TEST(PathTextTest, LongestPathLeavesRoomForItsEnd) {
  PathText path(std::string(kMaxPathSize - 2, 'p'));
  EXPECT_TRUE(path.Append("q"));
  EXPECT_EQ(path.view().size(), kMaxPathSize - 1);
  EXPECT_EQ(std::string(path.c_str()).size(), kMaxPathSize - 1);
}

TEST(PathTextTest, PathThatDoesNotFitIsEmptied) {
  PathText path(std::string(kMaxPathSize - 2, 'p'));
  EXPECT_FALSE(path.Append("q", "r"));
  EXPECT_TRUE(path.empty());
  EXPECT_STREQ(path.c_str(), "");
  EXPECT_TRUE(PathText(std::string(kMaxPathSize, 'p')).empty());
}

TEST(PathTextTest, IsEmptyWhenCleared) {
  PathText path("x");
  path.Clear();
  EXPECT_TRUE(path.empty());
  EXPECT_TRUE(path == PathText());
  EXPECT_FALSE(path == PathText("x"));
}

TEST(SplitTest, PathIsCutAfterItsLastSeparator) {
  const std::string path = "one" + kSeparator + "two" + kSeparator + "three";
  EXPECT_EQ(Split(path).folder, "one" + kSeparator + "two" + kSeparator);
  EXPECT_EQ(Split(path).name, "three");
  EXPECT_EQ(Split("name").folder, "");
  EXPECT_EQ(Split("name").name, "name");
  EXPECT_EQ(Split(kSeparator).folder, kSeparator);
  EXPECT_EQ(Split("").name, "");
}

TEST(PathKindTest, FoldersEndInASeparatorAndNamesHaveNone) {
  EXPECT_TRUE(IsFolderPath("a" + kSeparator));
  EXPECT_FALSE(IsFolderPath("a"));
  EXPECT_FALSE(IsFolderPath(""));
  EXPECT_TRUE(IsFileName("a.log"));
  EXPECT_FALSE(IsFileName(""));
  EXPECT_FALSE(IsFileName("a" + kSeparator + "b"));
}

}  // namespace
}  // namespace zt::testing
