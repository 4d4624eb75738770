#include "trace/log_file.h"

#include <string>

#include "tests/trace/trace_test.h"

namespace zt::testing {
namespace {

// Lines of 16 bytes: 6144 of them are the 96 KiB up to which lines collect.
class LogFileTest : public TraceTest {
 protected:
  static constexpr int kLinesToThreshold = 6144;

  static void Print(int count) {
    for (int i = 0; i < count; ++i) {
      TracePrint(nullptr, 0, 1, "", "12345678901234");
    }
  }
  static std::size_t Pending() { return SharedTraceState().fill; }
};

TEST_F(LogFileTest, LinesCollectUpToTheThreshold) {
  Start(0x100 | 0xFF0000);
  Print(kLinesToThreshold);
  EXPECT_EQ(Pending(), 0x18000u);
  EXPECT_EQ(stream_.open_count, 0);
}

TEST_F(LogFileTest, LineBeyondTheThresholdIsWrittenWithAllBeforeIt) {
  Start(0x100 | 0xFF0000);
  Print(kLinesToThreshold + 1);
  EXPECT_EQ(Pending(), 0u);
  EXPECT_EQ(stream_.append_count, 1);
  EXPECT_EQ(stream_.text.size(), 0x18010u);
  EXPECT_TRUE(stream_.text.ends_with("12345678901234\r\n12345678901234\r\n"));
}

TEST_F(LogFileTest, FlushWithoutEndWritesAllPending) {
  Start(0x100 | 0xFF0000);
  Print(2);
  Flush();
  EXPECT_EQ(stream_.text, "12345678901234\r\n12345678901234\r\n");
  EXPECT_EQ(Pending(), 0u);
  EXPECT_TRUE(stream_.IsOpen());
}

TEST_F(LogFileTest, FlushOfNothingDoesNotOpenTheFile) {
  Start(0x100 | 0xFF0000);
  Flush();
  EXPECT_EQ(stream_.open_count, 0);
}

TEST_F(LogFileTest, OpenFileIsNotOpenedAgain) {
  Start(0x100 | 0xFF0000);
  Print(1);
  Flush();
  Print(1);
  Flush();
  EXPECT_EQ(stream_.open_count, 1);
  EXPECT_EQ(stream_.append_count, 2);
}

TEST_F(LogFileTest, FileSizeCountsFromWhatWasThere) {
  stream_.text = "earlier";
  Start(0x100 | 0xFF0000);
  Print(1);
  Flush();
  EXPECT_EQ(SharedTraceState().file_size, 7u + 16u);
  Print(2);
  Flush();
  EXPECT_EQ(SharedTraceState().file_size, 7u + 48u);
}

TEST_F(LogFileTest, FileSizeCountsOnlyWhatWasWritten) {
  stream_.append_limit = 10;
  Start(0x100 | 0xFF0000);
  Print(1);
  Flush();
  EXPECT_EQ(SharedTraceState().file_size, 10u);
  EXPECT_EQ(Pending(), 0u);
}

TEST_F(LogFileTest, WithoutAFilePendingTextIsDiscarded) {
  ASSERT_TRUE(TraceBringUp(0x100 | 0xFF0000, nullptr));
  Print(kLinesToThreshold);
  EXPECT_EQ(Pending(), 0x18000u);
  Print(1);
  EXPECT_EQ(Pending(), 0u);
  Print(1);
  Flush();
  EXPECT_EQ(Pending(), 0u);
}

TEST_F(LogFileTest, WithoutFileOutputPendingTextIsDiscarded) {
  Start(0x200 | 0xFF0000);
  Print(kLinesToThreshold + 1);
  EXPECT_EQ(Pending(), 0u);
  EXPECT_EQ(stream_.open_count, 0);
  EXPECT_EQ(stream_.text, "");
}

TEST_F(LogFileTest, FileThatIsOpenIsWrittenToTheEnd) {
  Start(0x300 | 0xFF0000);
  Print(1);
  Flush();
  TraceFlags = 0x200 | 0xFF0000;
  Print(1);
  EXPECT_EQ(Written(), "12345678901234\r\n12345678901234\r\n");
}

TEST_F(LogFileTest, FailedOpeningCostsThePendingTextAndIsTriedAgain) {
  stream_.can_open = false;
  Start(0x100 | 0xFF0000);
  TracePrint(nullptr, 0, 1, "", "lost");
  Flush();
  EXPECT_EQ(Pending(), 0u);
  EXPECT_EQ(stream_.append_count, 0);
  stream_.can_open = true;
  TracePrint(nullptr, 0, 1, "", "kept");
  EXPECT_EQ(Written(), "kept\r\n");
  EXPECT_EQ(stream_.open_count, 2);
}

TEST_F(LogFileTest, LineThatJustFitsIsCopied) {
  Start(0x100 | 0xFF0000);
  SharedTraceState().fill = kLineBufferCapacity - 8;
  TracePrint(nullptr, 0, 1, "", "abcdef");
  EXPECT_EQ(stream_.text.size(), kLineBufferCapacity);
  EXPECT_TRUE(stream_.text.ends_with("abcdef\r\n"));
}

TEST_F(LogFileTest, LineThatDoesNotFitIsNotCopied) {
  Start(0xC00 | 0x100 | 0xFF0000);
  SharedTraceState().fill = kLineBufferCapacity - 7;
  TracePrint(nullptr, 0, 1, "", "abcdef");
  EXPECT_EQ(stream_.text.size(), kLineBufferCapacity - 7);
  EXPECT_EQ(stream_.text.find("abc"), std::string::npos);
  EXPECT_EQ(Pending(), 0u);
  TracePrint(nullptr, 0, 1, "", "next");
  Flush();
  EXPECT_TRUE(stream_.text.ends_with("next\r\n"));
}

}  // namespace
}  // namespace zt::testing
