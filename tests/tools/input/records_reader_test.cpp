#include "tools/replay/input/records_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/scratch_folder.h"
#include "tests/tools/input/reading.h"
#include "tools/replay/input/record_text.h"

namespace replay::testing {
namespace {

using zt::testing::ScratchFolder;

using ::testing::ElementsAre;

std::string BytesOf(std::uint64_t pid, std::string_view target) {
  LOG_ITEM record = {};
  record.Time = 1000;
  record.Pid = pid;
  record.Behavior = BehaviorCreate;
  EXPECT_FALSE(SetTarget(record, target));
  return {reinterpret_cast<const char*>(&record), sizeof record};
}

Reading ReadFile(const std::string& path) { return ReadAllCalls(*MakeReader(CaptureFormat::kRecords, OpenByteSource(path))); }

TEST(RecordsReaderTest, EachRecordIsAnEventWithItsNumber) {
  ScratchFolder folder;
  const Reading reading = ReadFile(folder.Write("records", BytesOf(1, "C:\\a") + BytesOf(2, "C:\\b")));
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(reading.Events(), ElementsAre("4001 1 0 C:\\a", "4001 2 0 C:\\b"));
  EXPECT_EQ(reading.calls[0].kind, CallKind::kInsertLog);
  EXPECT_EQ(reading.calls[0].number, 1U);
  EXPECT_EQ(reading.calls[1].number, 2U);
  EXPECT_EQ(reading.calls[1].record.Time, 1000);
  EXPECT_EQ(reading.counts.rows, 2U);
}

TEST(RecordsReaderTest, OfAFileOfAnotherLengthNothingIsFed) {
  ScratchFolder folder;
  const std::string path = folder.Write("records", BytesOf(1, "C:\\a") + BytesOf(2, "C:\\b").substr(0, 1135));
  const Reading reading = ReadFile(path);
  EXPECT_EQ(reading.error, path + ": holds 2271 bytes, which is no multiple of 1136: it ends amid a record");
  EXPECT_TRUE(reading.calls.empty());
}

TEST(RecordsReaderTest, OfAStreamOfAnotherLengthNothingIsFed) {
  const Reading reading = ReadCapture(CaptureFormat::kRecords, BytesOf(1, "C:\\a") + "x", 100);
  EXPECT_EQ(reading.error, "capture: holds 1137 bytes, which is no multiple of 1136: it ends amid a record");
  EXPECT_TRUE(reading.calls.empty());
}

TEST(RecordsReaderTest, AStreamIsReadThroughToItsEnd) {
  std::string bytes;
  for (std::uint64_t pid = 1; pid <= 200; ++pid) {
    bytes += BytesOf(pid, "C:\\a");
  }
  const Reading reading = ReadCapture(CaptureFormat::kRecords, bytes, 999);
  EXPECT_EQ(reading.error, "");
  ASSERT_EQ(reading.calls.size(), 200U);
  EXPECT_EQ(reading.calls.back().record.Pid, 200U);
  EXPECT_EQ(reading.calls.back().number, 200U);
}

TEST(RecordsReaderTest, NothingIsNoRecord) {
  const Reading reading = ReadCapture(CaptureFormat::kRecords, "");
  EXPECT_EQ(reading.error, "");
  EXPECT_TRUE(reading.calls.empty());
}

}  // namespace
}  // namespace replay::testing
