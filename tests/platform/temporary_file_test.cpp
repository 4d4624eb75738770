#include "platform/temporary_file.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "tests/support/scratch_folder.h"

namespace zt {
namespace {

using testing::ScratchFolder;

TEST(TemporaryFileTest, IsCreatedAndWritten) {
  const ScratchFolder folder;
  std::FILE* const file = CreateTemporaryFile(folder.Path("new"));
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(std::fwrite("a\nb", 1, 3, file), 3U);
  EXPECT_EQ(std::fclose(file), 0);
  EXPECT_EQ(folder.Read("new"), "a\nb");
}

TEST(TemporaryFileTest, LeavesAFileThatIsThereAlone) {
  const ScratchFolder folder;
  EXPECT_EQ(CreateTemporaryFile(folder.Write("former", "content")), nullptr);
  EXPECT_EQ(errno, EEXIST);
  EXPECT_EQ(folder.Read("former"), "content");
}

TEST(TemporaryFileTest, SaysWhyItCannotBeCreated) {
  const ScratchFolder folder;
  EXPECT_EQ(CreateTemporaryFile(folder.Path("missing/new")), nullptr);
  EXPECT_EQ(errno, ENOENT);
}

TEST(TemporaryFileTest, CanBeRemovedWhileItIsOpen) {
  const ScratchFolder folder;
  std::FILE* const file = CreateTemporaryFile(folder.Path("new"));
  ASSERT_NE(file, nullptr);
  EXPECT_TRUE(std::filesystem::remove(folder.path() / "new"));
  EXPECT_EQ(std::fclose(file), 0);
  EXPECT_EQ(folder.Size(), 0U);
}

}  // namespace
}  // namespace zt
