#include "tools/replay/input/capture_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/input/procmon_capture.h"
#include "tests/tools/input/reading.h"

namespace replay::testing {
namespace {

using ::testing::HasSubstr;

CaptureFormat FormatOf(const std::string& content) { return DetectFormat(*SourceOf(content)); }

std::string RecordBytes(std::uint32_t behavior) {
  LOG_ITEM record = {};
  record.Time = 0x7B227B22;  // Looks like the start of JSON text.
  record.Behavior = behavior;
  return {reinterpret_cast<const char*>(&record), sizeof record};
}

TEST(DetectFormatTest, EventScripts) {
  EXPECT_EQ(FormatOf(R"({"time":1,"pid":1,"behavior":16385})"), CaptureFormat::kJsonl);
  EXPECT_EQ(FormatOf("\n \r\n\t{\"call\":\"ZtGetProcTree\",\"pid\":1}\n"), CaptureFormat::kJsonl);
  EXPECT_EQ(FormatOf("\xEF\xBB\xBF{\"call\":\"ZtGetProcTree\",\"pid\":1}\n"), CaptureFormat::kJsonl);
}

TEST(DetectFormatTest, ABrokenFirstLineIsLeftToTheReader) {
  EXPECT_EQ(FormatOf(R"({"time":1,"pid":1)"), CaptureFormat::kJsonl);
  EXPECT_EQ(FormatOf(R"({"timestamp":"x","process_id":1,"api":)"), CaptureFormat::kSandbox);
}

TEST(DetectFormatTest, SandboxLogs) {
  EXPECT_EQ(FormatOf(R"({"timestamp":"x","process_id":1,"api":"NtClose","arguments":{"call":"1"}})"), CaptureFormat::kSandbox);
}

TEST(DetectFormatTest, AFirstLineBeyondWhatIsLookedAt) {
  EXPECT_EQ(FormatOf(R"({"process_id":1,"api":"NtWriteFile","arguments":{"Buffer":")" + std::string(100000, 'x') + "\"}}\n"),
            CaptureFormat::kSandbox);
}

TEST(DetectFormatTest, ProcessMonitorInEveryForm) {
  const std::string csv = CsvOf({{"CloseFile", "C:\\a", "SUCCESS", ""}});
  EXPECT_EQ(FormatOf(csv), CaptureFormat::kProcmon);
  EXPECT_EQ(FormatOf(csv.substr(3)), CaptureFormat::kProcmon);
  EXPECT_EQ(FormatOf("Detail,Path,PID,Operation,Result\n"), CaptureFormat::kProcmon);
  std::string little;
  for (const char c : csv.substr(3)) {
    little += {c, '\0'};
  }
  EXPECT_EQ(FormatOf("\xFF\xFE" + little), CaptureFormat::kProcmon);
  EXPECT_EQ(FormatOf(little), CaptureFormat::kProcmon);
}

TEST(DetectFormatTest, Records) {
  EXPECT_EQ(FormatOf(RecordBytes(0x4001)), CaptureFormat::kRecords);
  EXPECT_EQ(FormatOf(RecordBytes(0xC003)), CaptureFormat::kRecords);
  EXPECT_EQ(FormatOf(RecordBytes(0x8001) + RecordBytes(0x4004)), CaptureFormat::kRecords);
  EXPECT_EQ(FormatOf(RecordBytes(0x4001).substr(0, 1000)), CaptureFormat::kRecords);  // Its reader says what is wrong.
}

TEST(DetectFormatTest, ARecordMayBeginLikeUtf16Text) {
  LOG_ITEM record = {};
  record.Time = 0x0054'0022;  // A quote and a T.
  record.Behavior = BehaviorWrite;
  EXPECT_EQ(FormatOf(std::string(reinterpret_cast<const char*>(&record), sizeof record)), CaptureFormat::kRecords);
}

TEST(DetectFormatTest, WhatIsNoCaptureIsAnErrorThatNamesIt) {
  EXPECT_EQ(ErrorOf([] { FormatOf(""); }), "capture: is empty");
  for (const std::string& content : {std::string("some text\n"), std::string("a,b,c\n1,2,3\n"), std::string("[1,2]\n"),
                                     std::string(3000, '\0'), RecordBytes(0x8001), std::string("\n\n")}) {
    EXPECT_THAT(ErrorOf([&] { FormatOf(content); }), HasSubstr("capture: is no capture of a known format"));
  }
  EXPECT_THAT(ErrorOf([] { FormatOf("PML_\x09 and more"); }), HasSubstr("save a Process Monitor capture as CSV"));
  EXPECT_THAT(ErrorOf([] { FormatOf("<?xml version=\"1.0\"?>\r\n<procmon>"); }),
              HasSubstr("save a Process Monitor capture as CSV"));
}

TEST(DetectFormatTest, ConsumesNothing) {
  const auto source = SourceOf(RecordBytes(0x4001));
  DetectFormat(*source);
  EXPECT_EQ(ReadAll(*source), RecordBytes(0x4001));
}

}  // namespace
}  // namespace replay::testing
