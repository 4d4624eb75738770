#include "tools/replay/input/sandbox_call.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace replay {
namespace {

using namespace std::string_view_literals;

TEST(SandboxCallTest, ReadsTimes) {
  // 151,771 days lie between 1 January 1601 and 15 July 2016.
  EXPECT_EQ(ParseSandboxTime("2016-07-15 12:44:22,237"), 131130602622370000);
  EXPECT_EQ(ParseSandboxTime("2016-07-15T12:44:22.2370001"), 131130602622370001);
  EXPECT_EQ(ParseSandboxTime("2016-07-15 12:44:22"), 131130602620000000);
  EXPECT_EQ(ParseSandboxTime("1601-01-01 00:00:00,001"), 10000);
}

TEST(SandboxCallTest, WhatIsNoTimeIsAnError) {
  for (const char* text :
       {"", "2016-07-15", "2016-07-15 12:44", "2016-13-15 12:44:22,237", "2016-02-30 12:44:22,237", "2016-07-15 24:44:22,237",
        "2016-07-15 12:60:22,237", "2016-07-15 12:44:60,237", "2016-07-15 12:44:22,", "2016-07-15 12:44:22,x",
        "2016-07-15 12:44:22 Z", "15.07.2016 12:44:22,237"}) {
    EXPECT_THROW(ParseSandboxTime(text), RowError) << text;
  }
}

TEST(SandboxCallTest, StructuresAreBytesOfWhichMostAreEscaped) {
  EXPECT_EQ(DecodeStructure("0\\x00\\xFf%Q"), "0\0\xFF%Q"sv);
  EXPECT_EQ(DecodeStructure("\\x02\\x00\\\\x00"), "\x02\0\\\0"sv);  // A backslash stands for itself.
  EXPECT_EQ(DecodeStructure("8\n\\x8f\\x0"), "8\n\x8f\\x0"sv);
  EXPECT_EQ(DecodeStructure(""), "");
}

TEST(SandboxCallTest, PositionsAreLittleEndianNumbers) {
  EXPECT_EQ(DecodeNumber("0\\x00\\x00\\x00\\x00\\x00\\x00\\x00"), 0x30U);
  EXPECT_EQ(DecodeNumber("\\x00\\xbe\\x02\\x00\\x00\\x00\\x00\\x00"), 0x2BE00U);
  EXPECT_EQ(DecodeNumber("\\x01\\x00\\x00\\x00\\x00\\x00\\x00\\x80"), 0x8000000000000001U);
  EXPECT_EQ(DecodeNumber("\\\\x00\\x00\\x00\\x00\\x00\\x00\\x00"), 0x5CU);
  EXPECT_EQ(DecodeNumber("\n\\x00\\x00\\x00\\x00\\x00\\x00\\x00"), 0x0AU);
  EXPECT_EQ(DecodeNumber("\\n\\x00\\x00\\x00\\x00\\x00\\x00\\x00"), 0x0AU);  // Full C escapes.
  EXPECT_EQ(DecodeNumber("\\\\\\x00\\x00\\x00\\x00\\x00\\x00\\x00"), 0x5CU);
  EXPECT_EQ(DecodeNumber("\\0\\0\\0\\0\\0\\0\\0\\0"), 0U);
}

TEST(SandboxCallTest, OfMoreThanEightBytesTheFirstEightArePositions) {
  EXPECT_EQ(DecodeNumber("\\x00\\xbe\\x02\\x00\\x00\\x00\\x00\\x00\\xff"), 0x2BE00U);
  for (const std::size_t more : {70U, 79U}) {
    EXPECT_EQ(DecodeNumber("0\\x00\\x00\\x00\\x00\\x00\\x00\\x00" + std::string(more, 'x')), 0x30U);
  }
}

TEST(SandboxCallTest, FewerThanEightBytesAreNoPosition) {
  for (const char* text : {"", "\\x00", R"(\x00\x00\x00\x00\x00\x00\x00)"}) {
    EXPECT_THROW(DecodeNumber(text), RowError) << text;
  }
}

TEST(SandboxCallTest, NumbersInStructures) {
  const std::string bytes = "\xFF" + std::string("\x02\x01\0\0\0\0\0\0", 8);
  EXPECT_EQ(NumberAt(bytes, 1), 0x0102U);
  EXPECT_EQ(NumberAt(bytes, 2), std::nullopt);
}

SandboxCall CallOf(std::string_view line) {
  SandboxCall call;
  call.json.Parse(line);
  return call;
}

TEST(SandboxCallTest, MembersAndArguments) {
  const SandboxCall call =
      CallOf(R"({"timestamp": "2016-07-15 12:44:22,237", "process_id": 1380, "parent_id": 1528, "process_name": "a.exe",)"
             R"( "module_path": "C:\\a.exe", "thread_id": 1332, "api": "NtReadFile", "status": false, "repeated": 2,)"
             R"( "arguments": {"HandleName": "\\??\\C:\\x", "Length": "60", "FileHandle": "0x00000128"}})");
  EXPECT_EQ(call.pid(), 1380U);
  EXPECT_EQ(call.parent_pid(), 1528U);
  EXPECT_EQ(call.tid(), 1332U);
  EXPECT_EQ(call.process_name(), "a.exe");
  EXPECT_EQ(call.module_path(), "C:\\a.exe");
  EXPECT_EQ(call.api(), "NtReadFile");
  EXPECT_FALSE(call.succeeded());
  EXPECT_EQ(call.times(), 3U);
  EXPECT_EQ(call.FileArgument("HandleName"), "C:\\x");
  EXPECT_EQ(call.NumberArgument("FileHandle"), 0x128U);
  EXPECT_EQ(call.NumberArgument("Absent"), std::nullopt);
  EXPECT_EQ(call.Argument("Absent"), "");
}

TEST(SandboxCallTest, MembersThatMayBeMissing) {
  const SandboxCall call = CallOf(R"({"process_id": 1, "api": "x", "timestamp": "2016-07-15 12:44:22"})");
  EXPECT_EQ(call.parent_pid(), 0U);
  EXPECT_EQ(call.tid(), 0U);
  EXPECT_EQ(call.process_name(), "");
  EXPECT_TRUE(call.succeeded());
  EXPECT_EQ(call.times(), 1U);
}

TEST(SandboxCallTest, StatusMayBeANumber) {
  EXPECT_TRUE(CallOf(R"({"status": 1})").succeeded());
  EXPECT_FALSE(CallOf(R"({"status": 0})").succeeded());
}

}  // namespace
}  // namespace replay
