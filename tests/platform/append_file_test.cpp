#include "platform/append_file.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/scratch_folder.h"

namespace zt::testing {
namespace {

class AppendFileTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string Path() const { return folder_.Path("file"); }

  ScratchFolder folder_;
  AppendFile file_;
};

TEST_F(AppendFileTest, MissingFileIsMade) {
  EXPECT_EQ(file_.Open(Path().c_str()), 0u);
  EXPECT_TRUE(file_.IsOpen());
  EXPECT_EQ(file_.Append("one\r\n"), 5u);
  file_.Close();
  EXPECT_FALSE(file_.IsOpen());
  EXPECT_EQ(folder_.Read("file"), "one\r\n");
}

TEST_F(AppendFileTest, FileGrowsAtItsEnd) {
  folder_.Write("file", "before ");
  EXPECT_EQ(file_.Open(Path().c_str()), 7u);
  file_.Append("after");
  file_.Close();
  EXPECT_EQ(folder_.Read("file"), "before after");
}

TEST_F(AppendFileTest, TextLargerThanTheBufferIsWrittenWhole) {
  std::string text;
  for (int i = 0; text.size() < 300000; ++i) {
    text += std::to_string(i) + " ";
  }
  ASSERT_TRUE(file_.Open(Path().c_str()).has_value());
  EXPECT_EQ(file_.Append("x"), 1u);
  EXPECT_EQ(file_.Append(text), text.size());
  file_.Close();
  EXPECT_EQ(folder_.Read("file"), "x" + text);
}

TEST_F(AppendFileTest, SmallTextsGatherInTheBuffer) {
  ASSERT_TRUE(file_.Open(Path().c_str()).has_value());
  file_.Append("small");
  EXPECT_EQ(folder_.Read("file"), "");
  file_.Close();
  EXPECT_EQ(folder_.Read("file"), "small");
}

TEST_F(AppendFileTest, FolderThatIsMissingCannotBeOpenedIn) {
  EXPECT_EQ(file_.Open(folder_.Path("missing/file").c_str()), std::nullopt);
  EXPECT_FALSE(file_.IsOpen());
}

TEST_F(AppendFileTest, FolderIsNoFile) { EXPECT_EQ(file_.Open(folder_.path().string().c_str()), std::nullopt); }

TEST_F(AppendFileTest, OpenFileIsDeniedToOtherWriters) {
  AppendFile other;
  ASSERT_TRUE(file_.Open(Path().c_str()).has_value());
  EXPECT_EQ(other.Open(Path().c_str()), std::nullopt);
  file_.Close();
  EXPECT_EQ(other.Open(Path().c_str()), 0u);
  other.Close();
}

TEST_F(AppendFileTest, ClosingWhatIsNotOpenDoesNothing) {
  file_.Close();
  EXPECT_FALSE(file_.IsOpen());
}

}  // namespace
}  // namespace zt::testing
