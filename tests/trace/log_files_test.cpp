#include "trace/log_files.h"

#include "platform/last_error.h"
#include "tests/trace/library_test.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uintmax_t kMiB = 1048576;

class LogFilesTest : public LibraryTest {
 protected:
  LogFilesTest() : log_folder_(LogPath("").string()) { SharedLogFiles().SetPlace(log_folder_, "zteng.log"); }
  ~LogFilesTest() override {
    TraceFlags = 0;
    SharedLogFiles().SetPlace("", "");
  }

  [[nodiscard]] bool Build(std::uint32_t limit) const { return TraceBuildLogPaths(log_folder_.c_str(), "zteng.log", limit); }
  [[nodiscard]] std::string Current() const { return std::string(SharedLogFiles().current().view()); }
  [[nodiscard]] std::string Path(const std::string& name) const { return LogPath(name).string(); }

  std::string log_folder_;
};

TEST_F(LogFilesTest, WithoutALimitThereIsOneFile) {
  ASSERT_TRUE(Build(0));
  EXPECT_EQ(Current(), Path("zteng.log"));
}

TEST_F(LogFilesTest, WithALimitThereAreTwo) {
  ASSERT_TRUE(Build(1));
  EXPECT_EQ(SharedLogFiles().first().view(), Path("zteng_1.log"));
  EXPECT_EQ(SharedLogFiles().second().view(), Path("zteng_2.log"));
}

TEST_F(LogFilesTest, NameIsSplitAtItsLastDot) {
  ASSERT_TRUE(TraceBuildLogPaths(log_folder_.c_str(), "a.b.log", 1));
  EXPECT_EQ(SharedLogFiles().second().view(), Path("a.b_2.log"));
  ASSERT_TRUE(TraceBuildLogPaths(log_folder_.c_str(), "plain", 1));
  EXPECT_EQ(SharedLogFiles().second().view(), Path("plain_2"));
}

TEST_F(LogFilesTest, ProcessIdComesBeforeTheExtension) {
  TraceFlags = 0x1000000;
  ASSERT_TRUE(Build(1));
  EXPECT_EQ(SharedLogFiles().first().view(), Path("zteng_1_pid_1234.log"));
  EXPECT_EQ(SharedLogFiles().second().view(), Path("zteng_2_pid_1234.log"));
  ASSERT_TRUE(Build(0));
  EXPECT_EQ(Current(), Path("zteng_pid_1234.log"));
}

TEST_F(LogFilesTest, FolderWithoutSeparatorIsRefused) {
  const std::string folder = log_folder_.substr(0, log_folder_.size() - 1);
  EXPECT_FALSE(TraceBuildLogPaths(folder.c_str(), "zteng.log", 0));
  EXPECT_EQ(LastErrorCode(), 21u);
  EXPECT_FALSE(TraceBuildLogPaths("", "zteng.log", 0));
  EXPECT_EQ(LastErrorCode(), 21u);
}

TEST_F(LogFilesTest, NameThatIsNoFileNameIsRefused) {
  const std::string name = std::string("a") + kPathSeparator + "b";
  for (const char* bad : {name.c_str(), ""}) {
    SetLastErrorCode(ErrorCode::kAlreadyExists);
    EXPECT_FALSE(TraceBuildLogPaths(log_folder_.c_str(), bad, 0));
    EXPECT_EQ(LastErrorCode(), 87u);
  }
}

TEST_F(LogFilesTest, WithoutFilesTheFirstIsCurrent) {
  ASSERT_TRUE(Build(1));
  EXPECT_EQ(Current(), Path("zteng_1.log"));
}

TEST_F(LogFilesTest, NewerFirstFileBelowTheLimitGoesOn) {
  MakeLog("zteng_1.log", kMiB - 1, 2);
  MakeLog("zteng_2.log", kMiB, 1);
  ASSERT_TRUE(Build(1));
  EXPECT_EQ(Current(), Path("zteng_1.log"));
  EXPECT_THAT(LogNames(), ElementsAre("zteng_1.log", "zteng_2.log"));
}

TEST_F(LogFilesTest, FullNewerFirstFileLeadsToTheSecondOneAnew) {
  MakeLog("zteng_1.log", kMiB, 2);
  MakeLog("zteng_2.log", 5, 1);
  ASSERT_TRUE(Build(1));
  EXPECT_EQ(Current(), Path("zteng_2.log"));
  EXPECT_THAT(LogNames(), ElementsAre("zteng_1.log"));
}

TEST_F(LogFilesTest, NewerSecondFileBelowTheLimitGoesOn) {
  MakeLog("zteng_1.log", kMiB, 1);
  MakeLog("zteng_2.log", kMiB - 1, 2);
  ASSERT_TRUE(Build(1));
  EXPECT_EQ(Current(), Path("zteng_2.log"));
  EXPECT_THAT(LogNames(), ElementsAre("zteng_1.log", "zteng_2.log"));
}

TEST_F(LogFilesTest, FullNewerSecondFileLeadsToTheFirstOneAnew) {
  MakeLog("zteng_1.log", 5, 1);
  MakeLog("zteng_2.log", kMiB, 2);
  ASSERT_TRUE(Build(1));
  EXPECT_EQ(Current(), Path("zteng_1.log"));
  EXPECT_THAT(LogNames(), ElementsAre("zteng_2.log"));
}

TEST_F(LogFilesTest, EquallyOldFilesGoByTheFirst) {
  MakeLog("zteng_1.log", 1, 1);
  MakeLog("zteng_2.log", 1, 1);
  std::filesystem::last_write_time(LogPath("zteng_2.log"), std::filesystem::last_write_time(LogPath("zteng_1.log")));
  ASSERT_TRUE(Build(1));
  EXPECT_EQ(Current(), Path("zteng_1.log"));
}

// 2047 MiB is the largest limit whose bytes are a positive 32-bit number.
TEST_F(LogFilesTest, LimitOf2047MiBIsNotReachedByASmallFile) {
  MakeLog("zteng_1.log", 5, 1);
  ASSERT_TRUE(Build(2047));
  EXPECT_EQ(Current(), Path("zteng_1.log"));
}

TEST_F(LogFilesTest, LimitOf2048MiBOverflowsAndIsReachedByAnyFile) {
  MakeLog("zteng_1.log", 5, 2);
  MakeLog("zteng_2.log", 5, 1);
  ASSERT_TRUE(Build(2048));
  EXPECT_EQ(Current(), Path("zteng_2.log"));
  EXPECT_THAT(LogNames(), ElementsAre("zteng_1.log"));
}

TEST_F(LogFilesTest, LimitOf4096MiBOverflowsToZero) {
  ASSERT_TRUE(Build(4096));
  EXPECT_EQ(Current(), Path("zteng_2.log"));
}

TEST_F(LogFilesTest, LimitOf4097MiBOverflowsToOne) {
  MakeLog("zteng_1.log", kMiB - 1, 1);
  ASSERT_TRUE(Build(4097));
  EXPECT_EQ(Current(), Path("zteng_1.log"));
  MakeLog("zteng_1.log", kMiB, 1);
  ASSERT_TRUE(Build(4097));
  EXPECT_EQ(Current(), Path("zteng_2.log"));
}

// 6143 - 4096 is 2047, whose bytes are a positive number again; those of 6144 - 4096 are not.
TEST_F(LogFilesTest, LimitsFrom6144MiBOnAreReachedByAnyFileAgain) {
  MakeLog("zteng_1.log", 2 * kMiB, 1);
  ASSERT_TRUE(Build(6143));
  EXPECT_EQ(Current(), Path("zteng_1.log"));
  ASSERT_TRUE(Build(6144));
  EXPECT_EQ(Current(), Path("zteng_2.log"));
}

TEST_F(LogFilesTest, LargestLimitIsReachedByAnyFile) {
  ASSERT_TRUE(Build(0xFFFFFFFF));
  EXPECT_EQ(Current(), Path("zteng_2.log"));
}

TEST_F(LogFilesTest, BuildingWithALimitClosesTheFile) {
  ASSERT_TRUE(Build(0));
  ASSERT_TRUE(SharedLogFiles().Open().has_value());
  ASSERT_TRUE(Build(1));
  EXPECT_FALSE(SharedLogFiles().IsOpen());
}

TEST_F(LogFilesTest, DeletionTakesAllThreeFilesAndLeavesARotationFileCurrent) {
  MakeLog("zteng.log", 5, 1);
  MakeLog("zteng_1.log", 5, 2);
  MakeLog("zteng_2.log", 5, 3);
  MakeLog("other.log", 5, 4);
  ASSERT_TRUE(Build(0));
  TraceDeleteLogFiles();
  EXPECT_THAT(LogNames(), ElementsAre("other.log"));
  EXPECT_EQ(Current(), Path("zteng_2.log"));
}

TEST_F(LogFilesTest, DeletionWithoutFilesLeavesTheFirstCurrent) {
  ASSERT_TRUE(Build(0));
  TraceDeleteLogFiles();
  EXPECT_EQ(Current(), Path("zteng_1.log"));
}

TEST_F(LogFilesTest, OpeningMakesTheFolders) {
  ASSERT_TRUE(Build(0));
  EXPECT_EQ(SharedLogFiles().Open(), 0u);
  EXPECT_EQ(SharedLogFiles().Append("text"), 4u);
  SharedLogFiles().Close();
  EXPECT_EQ(Log("zteng.log"), "text");
}

TEST_F(LogFilesTest, OpeningTellsTheSizeOfWhatIsThere) {
  MakeLog("zteng.log", 5, 0);
  ASSERT_TRUE(Build(0));
  EXPECT_EQ(SharedLogFiles().Open(), 5u);
  SharedLogFiles().Close();
}

TEST_F(LogFilesTest, WithoutACurrentFileThereIsNothingToOpen) {
  EXPECT_EQ(SharedLogFiles().Open(), std::nullopt);
  EXPECT_THAT(LogNames(), IsEmpty());
}

TEST_F(LogFilesTest, FilesTakeTurns) {
  ASSERT_TRUE(Build(1));
  SharedLogFiles().StartNext();
  EXPECT_EQ(Current(), Path("zteng_2.log"));
  SharedLogFiles().StartNext();
  EXPECT_EQ(Current(), Path("zteng_1.log"));
}

TEST_F(LogFilesTest, TheNextFileBeginsAnew) {
  MakeLog("zteng_1.log", 5, 2);
  MakeLog("zteng_2.log", 5, 1);
  ASSERT_TRUE(Build(1));
  SharedLogFiles().StartNext();
  EXPECT_THAT(LogNames(), ElementsAre("zteng_1.log"));
}

}  // namespace
}  // namespace zt::testing
