#include "tools/replay/input/folders.h"

#include <gtest/gtest.h>

namespace replay {
namespace {

TEST(FoldersTest, ANameWithSomethingBelowItIsAFolder) {
  Folders folders;
  folders.AddFoldersOf(R"(C:\Users\test\a.txt)");
  EXPECT_TRUE(folders.Contains("c:\\users\\TEST"));
  EXPECT_TRUE(folders.Contains("C:\\Users"));
  EXPECT_TRUE(folders.Contains("C:"));
  EXPECT_FALSE(folders.Contains("C:\\Users\\test\\a.txt"));
  EXPECT_FALSE(folders.Contains("C:\\Users\\tes"));
}

TEST(FoldersTest, ATrailingBackslashMakesNoDifference) {
  Folders folders;
  folders.Add("C:\\a\\");
  EXPECT_TRUE(folders.Contains("C:\\a"));
  EXPECT_TRUE(folders.Contains("C:\\a\\"));
}

TEST(FoldersTest, AFileCanTakeTheNameOfAFolder) {
  Folders folders;
  folders.Add("C:\\a");
  folders.Remove("C:\\A");
  EXPECT_FALSE(folders.Contains("C:\\a"));
}

TEST(FoldersTest, NamesWithoutFoldersAddNothing) {
  Folders folders;
  folders.AddFoldersOf("");
  folders.AddFoldersOf("a");
  EXPECT_FALSE(folders.Contains("a"));
}

}  // namespace
}  // namespace replay
