// The log going on in the other of its two files, on the real disk.
#include <cstdio>
#include <string>

#include "tests/trace/library_test.h"
#include "trace/build_stamp.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;

// Lines of 1024 bytes: 1024 of them are a MiB, and 97 are more than the 96 KiB that collect.
class RotationTest : public LibraryTest {
 protected:
  static void PrintLines(int count) {
    const std::string line(1022, 'x');
    for (int i = 0; i < count; ++i) {
      Print(line.c_str());
    }
    Flush();
  }

  static std::string Header(std::uint32_t flags, std::uint32_t size) {
    char settings[64];
    std::snprintf(settings, sizeof settings, "type: 0x%x size: %u memory: 0x%016llX\r\n", flags, size,
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(&SharedTraceState().ring)));
    return "(" + std::string(kBuildStamp) + ", 86461s) log rotated at 2025-07-15 09:24:23.123 " + settings;
  }
};

TEST_F(RotationTest, FileThatReachesTheLimitIsFollowedByTheOtherWithAHeader) {
  Start(kBareToFile, 1);
  PrintLines(1024);
  EXPECT_EQ(std::filesystem::file_size(LogPath("zteng_1.log")), 1048576u);
  EXPECT_FALSE(Log("zteng_1.log").empty());
  Print("next");
  TraceStop();
  EXPECT_THAT(LogNames(), ElementsAre("zteng_1.log", "zteng_2.log"));
  EXPECT_EQ(Log("zteng_2.log"), Header(kBareToFile, 1) + "next\r\n" + kStopped);
}

TEST_F(RotationTest, FileBelowTheLimitIsKept) {
  Start(kBareToFile, 1);
  PrintLines(1023);
  EXPECT_THAT(LogNames(), ElementsAre("zteng_1.log"));
}

TEST_F(RotationTest, FilesAlternateAndTheOldOneIsDeleted) {
  Start(kBareToFile, 1);
  PrintLines(1024);
  PrintLines(1024);
  // The first file was begun anew: the header, and nothing else yet.
  TraceStop();
  EXPECT_EQ(Log("zteng_1.log"), Header(kBareToFile, 1) + kStopped);
  EXPECT_EQ(std::filesystem::file_size(LogPath("zteng_2.log")), Header(kBareToFile, 1).size() + 1048576);
}

TEST_F(RotationTest, WhatTheFileHeldBeforeCounts) {
  MakeLog("zteng_1.log", 1048576 - 1024, 0);
  Start(kBareToFile, 1);
  PrintLines(1);
  EXPECT_THAT(LogNames(), ElementsAre("zteng_1.log", "zteng_2.log"));
}

TEST_F(RotationTest, WithoutALimitTheFileGrows) {
  Start(kBareToFile, 0);
  PrintLines(3000);
  TraceStop();
  EXPECT_THAT(LogNames(), ElementsAre("zteng.log"));
  EXPECT_EQ(Log("zteng.log").size(), 3000u * 1024 + std::string_view(kStopped).size());
}

TEST_F(RotationTest, HeaderTellsWhereThePointerToTheRingIsKept) {
  Start(kBareToFile | 0x200, 1);
  PrintLines(1024);
  TraceStop();
  EXPECT_EQ(Log("zteng_2.log"), Header(kBareToFile | 0x200, 1) + kStopped);
}

TEST_F(RotationTest, FileOutputSwitchedOffMeanwhileOpensNoFile) {
  Start(kBareToFile | 0x200, 1);
  PrintLines(1023);
  TraceFlags = 0x200 | 0xFF0000;
  PrintLines(1);
  EXPECT_FALSE(SharedLogFiles().IsOpen());
  EXPECT_THAT(LogNames(), ElementsAre("zteng_1.log"));
  EXPECT_EQ(SharedLogFiles().current().view(), LogPath("zteng_2.log").string());
}

// A limit of 2048 MiB is one for the rotation itself, whatever the choice at the start makes of it.
TEST_F(TraceTest, SizeIsComparedInMiB) {
  Start(0x100 | 0xFF0000);
  SharedTraceState().size_limit = 2048;
  stream_.text = "x";
  const auto write_16_bytes = [] {
    TracePrint(nullptr, 0, 1, "", "12345678901234");
    Flush();
  };
  write_16_bytes();
  ASSERT_TRUE(stream_.IsOpen());
  SharedTraceState().file_size = (std::uint64_t{2048} << 20) - 17;
  write_16_bytes();
  EXPECT_EQ(stream_.finished.size(), 0u);
  write_16_bytes();
  EXPECT_EQ(stream_.finished.size(), 1u);
}

}  // namespace
}  // namespace zt::testing
