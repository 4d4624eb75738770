// What cannot be written is lost; nothing else is, and nothing hangs or crashes.

#include <fstream>

#include "tests/trace/library_test.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using FaultsTest = LibraryTest;

TEST_F(FaultsTest, FolderThatCannotBeMadeCostsTheLines) {
  // A file stands where the folder would be.
  std::ofstream(folder_ / "logs") << "in the way";
  Start(kBareToFile, 0);
  Print("lost");
  Flush();
  EXPECT_FALSE(SharedLogFiles().IsOpen());
  EXPECT_EQ(SharedTraceState().fill, 0u);
  std::filesystem::remove(folder_ / "logs");
  Print("kept");
  TraceStop();
  EXPECT_EQ(Log("zteng.log"), std::string("kept\r\n") + kStopped);
}

TEST_F(FaultsTest, FileThatSomebodyElseWritesToCostsTheLines) {
  MakeLog("zteng.log", 0, 0);
  AppendFile other;
  ASSERT_EQ(other.Open(LogPath("zteng.log").string().c_str()), 0u);
  Start(kBareToFile, 0);
  Print("lost");
  Flush();
  EXPECT_FALSE(SharedLogFiles().IsOpen());
  other.Close();
  Print("kept");
  TraceStop();
  EXPECT_EQ(Log("zteng.log"), std::string("kept\r\n") + kStopped);
}

TEST_F(FaultsTest, FolderInTheFilesPlaceCostsTheLines) {
  std::filesystem::create_directories(LogPath("zteng.log"));
  Start(kBareToFile, 0);
  Print("lost");
  TraceStop();
  EXPECT_TRUE(std::filesystem::is_directory(LogPath("zteng.log")));
}

// The other file cannot be begun, so the log goes on in it when that has become possible.
TEST_F(FaultsTest, RotationIntoAFileThatCannotBeOpenedCostsTheLines) {
  std::filesystem::create_directories(LogPath("zteng_2.log") / "not empty");
  Start(kBareToFile, 1);
  MakeLog("zteng_1.log", 1048576, 10);
  Print("fills the first file");
  Flush();
  EXPECT_FALSE(SharedLogFiles().IsOpen());
  Print("lost");
  Flush();
  std::filesystem::remove_all(LogPath("zteng_2.log"));
  Print("kept");
  TraceStop();
  EXPECT_EQ(Log("zteng_2.log"), std::string("kept\r\n") + kStopped);
}

TEST_F(FaultsTest, LogFilesThatAreGoneAreMadeAnew) {
  Start(kBareToFile, 0);
  Print("gone");
  TickAfter(300);
  std::filesystem::remove_all(folder_ / "logs");
  Print("kept");
  TraceStop();
  EXPECT_THAT(LogNames(), ElementsAre("zteng.log"));
  EXPECT_EQ(Log("zteng.log"), std::string("kept\r\n") + kStopped);
}

}  // namespace
}  // namespace zt::testing
