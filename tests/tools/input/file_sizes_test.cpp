#include "tools/replay/input/file_sizes.h"

#include <gtest/gtest.h>

namespace replay {
namespace {

TEST(FileSizesTest, AnUnknownFileHasSize1) { EXPECT_EQ(FileSizes().ForOpen("C:\\a"), 1U); }

TEST(FileSizesTest, PathsAreComparedWithoutCase) {
  FileSizes sizes;
  sizes.Is("C:\\Dir\\A.txt", 135);
  EXPECT_EQ(sizes.ForOpen("c:\\dir\\a.TXT"), 135U);
}

TEST(FileSizesTest, AnEmptyFileIsNeverOpenedWithSize0) {
  FileSizes sizes;
  sizes.Is("C:\\a", 0);
  EXPECT_EQ(sizes.ForOpen("C:\\a"), 1U);
}

TEST(FileSizesTest, ReadsReachTheSizeOfAFileThatIsNotKnown) {
  FileSizes sizes;
  sizes.ReadTo("C:\\a", 4096);
  sizes.ReadTo("C:\\a", 512);
  EXPECT_EQ(sizes.ForOpen("C:\\a"), 4096U);
}

TEST(FileSizesTest, AReadMayAskForMoreThanAKnownFileHas) {
  FileSizes sizes;
  sizes.Is("C:\\a", 135);
  sizes.ReadTo("C:\\a", 4096);
  EXPECT_EQ(sizes.ForOpen("C:\\a"), 135U);
}

TEST(FileSizesTest, WritesExtendAFile) {
  FileSizes sizes;
  sizes.Is("C:\\a", 135);
  sizes.WrittenTo("C:\\a", 100);
  EXPECT_EQ(sizes.ForOpen("C:\\a"), 135U);
  sizes.WrittenTo("C:\\a", 200);
  EXPECT_EQ(sizes.ForOpen("C:\\a"), 200U);
  sizes.WrittenTo("C:\\new", 7);
  EXPECT_EQ(sizes.ForOpen("C:\\new"), 7U);
}

TEST(FileSizesTest, SpaceBoundsAKnownSize) {
  FileSizes sizes;
  sizes.IsAtMost("C:\\a", 100);
  EXPECT_EQ(sizes.ForOpen("C:\\a"), 1U);
  sizes.Is("C:\\a", 135);
  sizes.IsAtMost("C:\\a", 4096);
  EXPECT_EQ(sizes.ForOpen("C:\\a"), 135U);
  sizes.IsAtMost("C:\\a", 100);
  EXPECT_EQ(sizes.ForOpen("C:\\a"), 100U);
}

TEST(FileSizesTest, ARenameTakesTheSizeAlong) {
  FileSizes sizes;
  sizes.Is("C:\\a", 135);
  sizes.Is("C:\\b", 9);
  sizes.Renamed("C:\\a", "C:\\b");
  EXPECT_EQ(sizes.ForOpen("C:\\a"), 1U);
  EXPECT_EQ(sizes.ForOpen("C:\\b"), 135U);
  sizes.Renamed("C:\\unknown", "C:\\b");
  EXPECT_EQ(sizes.ForOpen("C:\\b"), 1U);
}

TEST(FileSizesTest, ARenameOfCaseAloneKeepsTheSize) {
  FileSizes sizes;
  sizes.Is("C:\\a", 135);
  sizes.Renamed("C:\\a", "C:\\A");
  EXPECT_EQ(sizes.ForOpen("C:\\a"), 135U);
}

TEST(FileSizesTest, ADeletedFileIsUnknown) {
  FileSizes sizes;
  sizes.Is("C:\\a", 135);
  sizes.Deleted("C:\\A");
  EXPECT_EQ(sizes.ForOpen("C:\\a"), 1U);
}

}  // namespace
}  // namespace replay
