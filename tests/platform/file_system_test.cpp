#include "platform/file_system.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "platform/clock.h"
#include "tests/support/scratch_folder.h"

namespace zt::testing {
namespace {

TEST(ExecutablePathTest, LeadsToThisProgram) {
  char path[kMaxPathSize];
  const std::size_t length = ExecutablePath(path, sizeof path);
  ASSERT_GT(length, 0u);
  EXPECT_EQ(std::string(path).size(), length);
  EXPECT_TRUE(std::filesystem::exists(path));
  EXPECT_EQ(std::filesystem::path(path).stem().string(), "zt_platform_tests");
  EXPECT_NE(std::string(path).find(kPathSeparator), std::string::npos);
}

TEST(ExecutablePathTest, PathThatDoesNotFitIsNone) {
  char path[4];
  EXPECT_EQ(ExecutablePath(path, sizeof path), 0u);
}

TEST(ExpandEnvironmentTest, TextWithoutVariablesStays) {
  char text[16];
  EXPECT_EQ(ExpandEnvironment("plain", text, sizeof text), 5u);
  EXPECT_STREQ(text, "plain");
}

TEST(ExpandEnvironmentTest, NameWithoutAValueStays) {
  char text[64];
  EXPECT_EQ(ExpandEnvironment("a%ZTENG_NO_SUCH_VARIABLE%b", text, sizeof text), 26u);
  EXPECT_STREQ(text, "a%ZTENG_NO_SUCH_VARIABLE%b");
}

TEST(ExpandEnvironmentTest, TextThatDoesNotFitIsNone) {
  char text[5];
  EXPECT_EQ(ExpandEnvironment("plain", text, sizeof text), 0u);
}

TEST(MakeFoldersForTest, AllThatStandsBeforeTheLastSeparatorIsMade) {
  const ScratchFolder folder;
  const std::filesystem::path file = folder.path() / "one" / "two" / "file";
  EXPECT_TRUE(MakeFoldersFor(file.string().c_str()));
  EXPECT_TRUE(std::filesystem::is_directory(file.parent_path()));
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_TRUE(MakeFoldersFor(file.string().c_str()));
}

TEST(MakeFoldersForTest, FileInTheWayIsAFailure) {
  const ScratchFolder folder;
  folder.Write("one", "a file");
  EXPECT_FALSE(MakeFoldersFor((folder.path() / "one" / "two" / "file").string().c_str()));
  EXPECT_EQ(folder.Read("one"), "a file");
}

TEST(DeleteFileAtTest, FileIsDeletedAndAMissingOneIgnored) {
  const ScratchFolder folder;
  const std::string path = folder.Write("file", "x");
  DeleteFileAt(path.c_str());
  EXPECT_FALSE(folder.Has("file"));
  DeleteFileAt(path.c_str());
}

TEST(FactsOfTest, MissingFileIsAllZero) {
  const ScratchFolder folder;
  const FileFacts facts = FactsOf(folder.Path("missing").c_str());
  EXPECT_EQ(facts.size, 0u);
  EXPECT_EQ(facts.modified, 0u);
}

TEST(FactsOfTest, SizeAndTimeAreTheFiles) {
  const ScratchFolder folder;
  const std::string path = folder.Write("file", "12345");
  // 1 February 2024, 12:00:00 UTC.
  const auto moment = std::chrono::file_clock::from_sys(std::chrono::sys_seconds(std::chrono::seconds(1706788800)));
  std::filesystem::last_write_time(path, moment);
  const FileFacts facts = FactsOf(path.c_str());
  EXPECT_EQ(facts.size, 5u);
  EXPECT_EQ(facts.modified, kUnixEpochAsFileTime + 1706788800 * kFileTimePerSecond);
}

}  // namespace
}  // namespace zt::testing
