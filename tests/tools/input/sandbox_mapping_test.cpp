#include "tools/replay/input/sandbox_mapping.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/tools/input/reading.h"

namespace replay::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

using Arguments = std::map<std::string, std::string>;

// One line of a log. Its process is 100, "a.exe", without a parent, where nothing else is said.
struct Line {
  std::string api;
  Arguments arguments;
  std::uint64_t pid = 100;
  bool status = true;
  std::uint64_t repeated = 0;
  std::uint64_t parent = 0;
  std::string name = "a.exe";
};

std::string LogOf(const std::vector<Line>& lines) {
  std::string log;
  for (const Line& line : lines) {
    const nlohmann::ordered_json json = {{"timestamp", "2016-07-15 12:44:22,237"},
                                         {"process_id", line.pid},
                                         {"parent_id", line.parent},
                                         {"process_name", line.name},
                                         {"module_path", "C:\\" + line.name},
                                         {"thread_id", 7},
                                         {"category", "filesystem"},
                                         {"api", line.api},
                                         {"status", line.status},
                                         {"return", "0x00000000"},
                                         {"repeated", line.repeated},
                                         {"id", 1},
                                         {"arguments", line.arguments}};
    log += json.dump() + '\n';
  }
  return log;
}

Reading ReadLog(const std::vector<Line>& lines) { return ReadCapture(CaptureFormat::kSandbox, LogOf(lines)); }

Line Open(const std::string& name, const std::string& existed = "yes", const std::string& handle = "0x10") {
  return {"NtCreateFile",
          {{"FileName", name}, {"ExistedBefore", existed}, {"FileHandle", handle}, {"FileAttributes", "0x00000080"}}};
}
Line Read(const std::string& name, const std::string& length, const std::string& handle = "0x10") {
  return {"NtReadFile", {{"HandleName", name}, {"Length", length}, {"FileHandle", handle}}};
}
Line Write(const std::string& name, const std::string& length, const std::string& handle = "0x10") {
  return {"NtWriteFile", {{"HandleName", name}, {"Length", length}, {"FileHandle", handle}}};
}
Line SetInformation(const std::string& name, const std::string& information_class, const std::string& information) {
  return {"NtSetInformationFile",
          {{"HandleName", name},
           {"FileInformationClass", information_class},
           {"FileInformation", information},
           {"FileHandle", "0x10"}}};
}

TEST(SandboxMappingTest, OpensTellWhetherTheFileExisted) {
  const Reading reading = ReadLog({
      Open("C:\\a"),
      Open("C:\\b", "no"),
      Open(R"(\??\C:\c)"),
      {"NtOpenFile", {{"FileName", "C:\\d"}, {"FileHandle", "0x10"}}},
  });
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(reading.Events(), ElementsAre("c003 0 100 C:\\a.exe", "4001 100 1 C:\\a", "4001 100 0 C:\\b", "4001 100 1 C:\\c",
                                            "4001 100 1 C:\\d"));
}

TEST(SandboxMappingTest, AFileThatIsOverwrittenInPlaceAndRenamed) {
  const std::string name = R"(C:\Python27\DLLs\bz2.pyd)";
  const Reading reading = ReadLog({
      Open(name),
      Read(name, "72704"),
      SetInformation(name, "14", R"(\x00\x00\x00\x00\x00\x00\x00\x00)"),
      Write(name, "16"),
      Write(name, "4"),
      Write(name, "72704"),
      {"NtClose", {{"Handle", "0x10"}}},
      {"MoveFileWithProgressW", {{"ExistingFileName", name}, {"Flags", "0x00000008"}, {"NewFileName", name + ".ecc"}}},
      Open(name + ".ecc"),
  });
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(reading.EventsButCreations(),
              ElementsAre("4001 100 1 " + name, "4003 100 72704 " + name, "4004 100 0 " + name + "|16",
                          "4004 100 16 " + name + "|4", "4004 100 20 " + name + "|72704",
                          "4006 100 0 " + name + "|" + name + ".ecc", "4001 100 72724 " + name + ".ecc"));
}

TEST(SandboxMappingTest, PositionsAreThoseOfHandlesOfProcesses) {
  Line other = Read("C:\\a", "5");
  other.pid = 200;
  other.name = "b.exe";
  const Reading reading = ReadLog({
      Open("C:\\a", "yes", "0x10"),
      Open("C:\\a", "yes", "0x14"),
      Read("C:\\a", "8", "0x10"),
      Read("C:\\a", "3", "0x14"),
      other,
      Read("C:\\a", "8", "0x10"),
      {"NtClose", {{"Handle", "0x10"}}},
      Read("C:\\a", "1", "0x10"),  // Its open is missing.
      Read("C:\\a", "1", "0x14"),
  });
  std::vector<std::string> reads;
  for (const std::string& event : reading.Events()) {
    if (event.starts_with("4003")) {
      reads.push_back(event);
    }
  }
  EXPECT_THAT(reads, ElementsAre("4003 100 8 C:\\a", "4003 100 3 C:\\a", "4003 200 5 C:\\a", "4003 100 16 C:\\a",
                                 "4003 100 1 C:\\a", "4003 100 4 C:\\a"));
}

TEST(SandboxMappingTest, DuplicatedHandlesShareTheirPosition) {
  const auto duplicate = [](const std::string& source, const std::string& target, const std::string& options) {
    return Line{"NtDuplicateObject",
                {{"SourceHandle", source},
                 {"TargetHandle", target},
                 {"SourceProcessHandle", "0xffffffff"},
                 {"TargetProcessHandle", "0xffffffffffffffff"},
                 {"Options", options}}};
  };
  const Reading reading = ReadLog({
      Open("C:\\a", "yes", "0x10"),
      Read("C:\\a", "8", "0x10"),
      duplicate("0x10", "0x20", "0x00000002"),
      Read("C:\\a", "8", "0x20"),
      Read("C:\\a", "8", "0x10"),
      duplicate("0x10", "0x30", "0x00000003"),  // Closes the source.
      Read("C:\\a", "8", "0x30"),
      Read("C:\\a", "8", "0x10"),
  });
  EXPECT_THAT(reading.EventsButCreations(), ElementsAre("4001 100 1 C:\\a", "4003 100 8 C:\\a", "4003 100 16 C:\\a",
                                                        "4003 100 24 C:\\a", "4003 100 32 C:\\a", "4003 100 8 C:\\a"));
}

TEST(SandboxMappingTest, DeletesSizesAndSections) {
  const Reading reading = ReadLog({
      {"DeleteFileW", {{"FileName", "C:\\a"}}},
      {"DeleteFileA", {{"FileName", "C:\\b"}}},
      SetInformation("C:\\c", "13", "\\x01"),
      SetInformation("C:\\c", "13", "\\x00"),
      SetInformation("C:\\d", "19", R"(\xee\x05\x00\x00\x00\x00\x00\x00)"),
      SetInformation("C:\\d", "20", R"(\xec\x01\x00\x00\x00\x00\x00\x00)"),
      Open("C:\\d"),
      {"NtCreateSection", {{"FileHandle", "0x10"}, {"SectionHandle", "0x14"}}},
      {"NtCreateSection", {{"FileHandle", "0x00000000"}, {"SectionHandle", "0x18"}}},
  });
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(reading.EventsButCreations(),
              ElementsAre("4005 100 0 C:\\a", "4005 100 0 C:\\b", "4005 100 0 C:\\c", "4007 100 0 C:\\d", "4007 100 0 C:\\d",
                          "4001 100 492 C:\\d", "4008 100 0 C:\\d"));
  EXPECT_THAT(reading.counts.skipped, ElementsAre(Pair("delete mark taken back", 1), Pair("section without a file", 1)));
}

TEST(SandboxMappingTest, ARenameThatHappensLaterIsNone) {
  const Reading reading = ReadLog({
      {"MoveFileWithProgressW", {{"ExistingFileName", "C:\\a"}, {"NewFileName", "C:\\b"}, {"Flags", "0x00000005"}}},
      {"MoveFileExW", {{"ExistingFileName", "C:\\a"}, {"NewFileName", ""}}},
      {"MoveFileExW", {{"ExistingFileName", "C:\\a"}, {"NewFileName", "C:\\b"}}},
  });
  EXPECT_THAT(reading.EventsButCreations(), ElementsAre("4006 100 0 C:\\a|C:\\b"));
  EXPECT_THAT(reading.counts.skipped, ElementsAre(Pair("rename at the next start of the system", 2)));
}

TEST(SandboxMappingTest, AQueryTellsTheSize) {
  const Reading reading = ReadLog({
      {"NtQueryInformationFile",
       {{"FileInformationClass", "5"},
        {"HandleName", "C:\\Windows\\WindowsShell.Manifest"},
        {"FileInformation",
         R"(\x00\x10\x00\x00\x00\x00\x00\x00\xed\x02\x00\x00\x00\x00\x00\x00\x01\x00\x00\x00\x00\x00\x00\x00)"},
        {"FileHandle", "0x00000124"}}},
      Open("C:\\Windows\\WindowsShell.Manifest"),
  });
  EXPECT_THAT(reading.EventsButCreations(), ElementsAre("4001 100 749 C:\\Windows\\WindowsShell.Manifest"));
}

TEST(SandboxMappingTest, OtherCallsAndOtherNamesAreNoInput) {
  Line failed = Open("C:\\a");
  failed.status = false;
  const Reading reading = ReadLog({
      failed,
      Open(R"(\??\PIPE\srvsvc)"),
      Open("\\Device\\Afd"),
      Open(R"(\\server\share\a)"),
      Open("C:\\"),
      Open("C:\\dir\\"),
      {"NtQueryAttributesFile", {{"FileName", "C:\\x.txt"}}},
      {"CreateThread", {{"ThreadId", "2576"}}},
      SetInformation("C:\\a", "23", "\\x01"),
      {"LdrLoadDll", {{"FileName", ""}}},
  });
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(reading.EventsButCreations(), IsEmpty());
  EXPECT_THAT(reading.counts.skipped, ElementsAre(Pair("call failed", 1), Pair("call without an event", 3), Pair("folder", 2),
                                                  Pair("module without a name", 1), Pair("no file on a drive", 3)));
}

class SandboxFoldersTest : public ::testing::TestWithParam<Line> {};

// The first line opens a name without saying that it is a folder; the second tells.
TEST_P(SandboxFoldersTest, AFolderIsNoInputHoweverItIsOpened) {
  const Reading reading = ReadLog({Open("C:\\Users\\PLAIN7"), GetParam()});
  EXPECT_EQ(reading.error, "");
  for (const std::string& event : reading.EventsButCreations()) {
    EXPECT_FALSE(event.ends_with("PLAIN7")) << event;
  }
  EXPECT_GE(reading.counts.skipped.at("folder"), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    Signs, SandboxFoldersTest,
    ::testing::Values(
        Line{"NtCreateFile", {{"FileName", "C:\\Users\\PLAIN7"}, {"FileHandle", "0x14"}, {"FileAttributes", "0x00000010"}}},
        Line{"NtQueryDirectoryFile", {{"FileName", ""}, {"FileHandle", "0x10"}}},
        Line{"NtQueryDirectoryFile", {{"FileName", "C:\\Users\\PLAIN7\\x"}, {"FileHandle", "0x99"}}},
        Line{"FindFirstFileExW", {{"FileName", "C:\\Users\\PLAIN7\\*.*"}}},
        Line{"CreateDirectoryW", {{"DirectoryName", "C:\\Users\\plain7\\"}}},
        Line{"NtQueryInformationFile",
             {{"FileInformationClass", "5"},
              {"HandleName", "C:\\Users\\PLAIN7"},
              {"FileInformation",
               "\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x01\\x00\\x00\\x00\\x00"
               "\\x01\\x00\\x00"}}},
        Line{"NtQueryInformationFile",
             {{"FileInformationClass", "4"},
              {"HandleName", "C:\\Users\\PLAIN7"},
              {"FileInformation",
               "%Q\\xb4\\x1f\\x13\\x04\\xca\\x01%Q\\xb4\\x1f\\x13\\x04\\xca\\x01\\x008m\\x01 \\x04\\xca\\x01\\x10\\x88\\xfd"
               "\\xe8v*\\xd2\\x01\\x10\\x00\\x00\\x00\\x00\\x00\\x00\\x00"}}}));

TEST(SandboxMappingTest, ProcessesAreCreatedAndEnd) {
  const Reading reading = ReadLog({
      {"CreateProcessInternalW",
       {{"ApplicationName", R"(C:\Windows\System32\vssadmin.exe)"},
        {"ProcessId", "2644"},
        {"CommandLine", R"("C:\Windows\System32\vssadmin.exe" delete shadows /all /Quiet)"}}},
      {"CreateProcessInternalW", {{"ApplicationName", ""}, {"ProcessId", "2756"}, {"CommandLine", "regsvr32.exe"}}},
      {"NtTerminateProcess", {{"ProcessHandle", "0x00000000"}, {"ExitCode", "0x0000000c"}}},
      {"NtTerminateProcess", {{"ProcessHandle", "0x0000016c"}, {"ExitCode", "0x0000000c"}}},
      {"NtTerminateProcess", {{"ProcessHandle", "0xffffffff"}, {"ExitCode", "0x0000000c"}}},
      {"NtTerminateProcess", {{"ProcessHandle", "0xffffffffffffffff"}}, 2644, true, 0, 100, "vssadmin.exe"},
  });
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(reading.Events(), ElementsAre("c003 0 100 C:\\a.exe", "c003 100 2644 C:\\Windows\\System32\\vssadmin.exe",
                                            "c003 100 2756 regsvr32.exe", "c002 100 0 ", "c002 2644 0 "));
  EXPECT_THAT(reading.counts.skipped, ElementsAre(Pair("end of another process or of threads", 2)));
  EXPECT_EQ(reading.calls[1].record.Time, 131130602622370000);
  EXPECT_EQ(reading.calls[1].record.Tid, 7U);
  EXPECT_EQ(PathText(reading.calls[1].record), "C:\\a.exe");
}

TEST(SandboxMappingTest, AProcessIsEnteredUnderItsParent) {
  const Reading reading = ReadLog({
      {"NtClose", {{"Handle", "0x10"}}, 1060, true, 0, 1380, "one.exe"},
      {"NtClose", {{"Handle", "0x10"}}, 2068, true, 0, 1060, "cmd.exe"},
  });
  EXPECT_THAT(reading.Events(),
              ElementsAre("c003 0 1380 pid 1380", "c003 1380 1060 C:\\one.exe", "c003 1060 2068 C:\\cmd.exe"));
}

TEST(SandboxMappingTest, AFailedCallEntersItsProcessToo) {
  const Reading reading = ReadLog({{"NtClose", {{"Handle", "0x10"}}, 1060, false}});
  EXPECT_THAT(reading.Events(), ElementsAre("c003 0 1060 C:\\a.exe"));
}

TEST(SandboxMappingTest, ACreationThatIsLoggedAfterTheChildsCallsIsNoSecondOne) {
  const Reading reading = ReadLog({
      {"NtClose", {{"Handle", "0x10"}}},
      {"NtClose", {{"Handle", "0x10"}}, 200, true, 0, 100, "b.exe"},
      {"CreateProcessInternalW", {{"ApplicationName", "C:\\b.exe"}, {"ProcessId", "200"}, {"CommandLine", "b"}}},
  });
  EXPECT_THAT(reading.Events(), ElementsAre("c003 0 100 C:\\a.exe", "c003 100 200 C:\\b.exe"));
}

TEST(SandboxMappingTest, FoldedCallsAreUnfolded) {
  Line load = {"LdrLoadDll", {{"FileName", "ole32.dll"}}};
  load.repeated = 1;
  Line read = Read("C:\\a", "8");
  read.repeated = 2;
  Line write = Write("C:\\a", "4");
  write.repeated = 1;
  const Reading reading = ReadLog({load, Open("C:\\a"), read, write});
  EXPECT_THAT(reading.EventsButCreations(),
              ElementsAre("c001 100 0 ole32.dll", "c001 100 0 ole32.dll", "4001 100 1 C:\\a", "4003 100 8 C:\\a",
                          "4003 100 16 C:\\a", "4003 100 24 C:\\a", "4004 100 24 C:\\a|4", "4004 100 28 C:\\a|4"));
  EXPECT_EQ(reading.calls.back().number, 9U);
  EXPECT_EQ(reading.counts.rows, 4U);
}

struct BadLine {
  int line;
  const char* text;
  const char* what;
};

TEST(SandboxMappingTest, BadLinesAreErrorsAfterWhichNothingIsFed) {
  const BadLine cases[] = {
      {__LINE__, "{", "not valid JSON at column 2"},
      {__LINE__, "7", "not a JSON object"},
      {__LINE__, R"({"timestamp":"2016-07-15 12:44:22,237","api":"NtClose"})", "the member \"process_id\": is missing"},
      {__LINE__, R"({"timestamp":"2016-07-15 12:44:22,237","process_id":"x","api":"NtClose"})",
       R"(the member "process_id": "x" is no integer)"},
      {__LINE__, R"({"timestamp":"2016-07-15 12:44:22,237","process_id":1})", "the member \"api\": is missing"},
      {__LINE__, R"({"process_id":1,"api":"NtClose"})", "the member \"timestamp\": is missing"},
      {__LINE__, R"({"timestamp":"yesterday","process_id":1,"api":"NtClose"})",
       R"(the member "timestamp": cannot read the time "yesterday")"},
      {__LINE__, R"({"timestamp":"2016-07-15 12:44:22,237","process_id":1,"api":"x","status":"maybe"})",
       R"(the member "status": "maybe" is no integer)"},
      {__LINE__,
       R"({"timestamp":"2016-07-15 12:44:22,237","process_id":1,"api":"NtReadFile","arguments":{"HandleName":"C:\\a"}})",
       "NtReadFile without the argument \"Length\""},
      {__LINE__,
       R"({"timestamp":"2016-07-15 12:44:22,237","process_id":1,"api":"NtReadFile","arguments":{"HandleName":"C:\\a","Length":"x"}})",
       R"(the member "arguments.Length": "x" is no integer)"},
      {__LINE__,
       R"({"timestamp":"2016-07-15 12:44:22,237","process_id":1,"api":"LdrLoadDll","repeated":1000001,"arguments":{"FileName":"a"}})",
       "the member \"repeated\": more than a million equal calls"},
      {__LINE__,
       R"({"timestamp":"2016-07-15 12:44:22,237","process_id":1,"api":"NtSetInformationFile","arguments":{"HandleName":"C:\\a",)"
       R"("FileHandle":"0x10","FileInformationClass":"14","FileInformation":"x"}})",
       "the argument \"FileInformation\" does not hold eight bytes"},
  };
  const std::string good = LogOf({Open("C:\\good")});
  for (const BadLine& c : cases) {
    const Reading reading = ReadCapture(CaptureFormat::kSandbox, fmt::format("{}\n{}\n{}", good, c.text, good));
    EXPECT_THAT(reading.error, ::testing::StartsWith(std::string("capture:3: ") + c.what)) << "line " << c.line;
    EXPECT_THAT(reading.Events(), ElementsAre("c003 0 100 C:\\a.exe", "4001 100 1 C:\\good")) << "line " << c.line;
  }
}

}  // namespace
}  // namespace replay::testing
