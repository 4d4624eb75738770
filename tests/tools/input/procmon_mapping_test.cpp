// What is done to files. Rows whose texts are long were taken from real captures.

#include "tools/replay/input/procmon_mapping.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/input/procmon_capture.h"

namespace replay::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

// A CreateFile of a file: `open` is the OpenResult.
std::string Opening(std::string_view open, std::string_view options = "Synchronous IO Non-Alert, Non-Directory File") {
  return "Desired Access: Generic Read/Write, Disposition: OpenIf, Options: " + std::string(options) +
         ", Attributes: n/a, ShareMode: Read, Write, AllocationSize: 0, OpenResult: " + std::string(open);
}

TEST(ProcmonMappingTest, OpensTellWhetherTheFileExisted) {
  const Reading reading = ReadRows({
      {"CreateFile", "C:\\a", "SUCCESS", Opening("Opened")},
      {"CreateFile", "C:\\b", "SUCCESS", Opening("Overwritten")},
      {"CreateFile", "C:\\c", "SUCCESS", Opening("Superseded")},
      {"CreateFile", "C:\\d", "SUCCESS", Opening("Exists")},
      {"CreateFile", "C:\\e", "SUCCESS", Opening("Created")},
      {"CreateFile", "C:\\f", "SUCCESS", Opening("DoesNotExist")},
  });
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(reading.Events(), ElementsAre("c003 0 100 a.exe", "4001 100 1 C:\\a", "4001 100 1 C:\\b", "4001 100 1 C:\\c",
                                            "4001 100 1 C:\\d", "4001 100 0 C:\\e"));
  EXPECT_THAT(reading.counts.skipped, ElementsAre(Pair("call failed", 1)));
}

TEST(ProcmonMappingTest, AReadTellsWhereItEndsInEveryLocale) {
  const Reading reading = ReadRows({
      {"ReadFile", "C:\\a", "SUCCESS", "Offset: 4,352, Length: 32"},
      {"ReadFile", "C:\\a", "SUCCESS", "Offset: 427,520, Length: 80,896, I/O Flags: Non-cached, Paging I/O, Priority: Normal"},
      {"ReadFile", "C:\\a", "SUCCESS", "Offset: 4.612.096, Length: 4"},
      {"ReadFile", "C:\\a", "SUCCESS", "Offset: 0, Length: 40\u00A0960"},
  });
  EXPECT_THAT(reading.EventsButCreations(),
              ElementsAre("4003 100 4384 C:\\a", "4003 100 508416 C:\\a", "4003 100 4612100 C:\\a", "4003 100 40960 C:\\a"));
}

TEST(ProcmonMappingTest, AWriteTellsItsOffsetAndItsLength) {
  const Reading reading = ReadRows({
      {"WriteFile", "C:\\Windows\\tasksche.exe", "SUCCESS", "Offset: 0, Length: 3,514,368, Priority: Normal"},
      {"WriteFile", "C:\\a b", "SUCCESS", "Offset: 4,140, Length: 2"},
      {"WriteFile", "C:\\log", "SUCCESS", "Offset: -1, Length: 20"},
  });
  EXPECT_THAT(reading.EventsButCreations(), ElementsAre("4004 100 0 C:\\Windows\\tasksche.exe|3514368",
                                                        "4004 100 4140 C:\\a b|2", "4004 100 18446744073709551615 C:\\log|20"));
}

TEST(ProcmonMappingTest, AdvancedNamesOfTheThreeMainCallsMeanTheSame) {
  const Reading reading = ReadRows({
      {"IRP_MJ_CREATE", "C:\\a", "SUCCESS", Opening("Created")},
      {"IRP_MJ_READ", "C:\\a", "SUCCESS", "Offset: 0, Length: 8"},
      {"IRP_MJ_WRITE", "C:\\a", "SUCCESS", "Offset: 8, Length: 8"},
      {"IRP_MJ_SET_INFORMATION", "C:\\a", "SUCCESS", ""},
      {"FASTIO_READ", "C:\\a", "SUCCESS", "Offset: 0, Length: 8"},
  });
  EXPECT_THAT(reading.EventsButCreations(), ElementsAre("4001 100 0 C:\\a", "4003 100 8 C:\\a", "4004 100 8 C:\\a|8"));
  EXPECT_THAT(reading.counts.skipped, ElementsAre(Pair("other row of the advanced output", 2)));
}

TEST(ProcmonMappingTest, DeletesAreMarksThatStay) {
  const Reading reading = ReadRows({
      {"SetDispositionInformationFile", "C:\\a", "SUCCESS", "Delete: True"},
      {"SetDispositionInformationFile", "C:\\b", "SUCCESS", "Delete: False"},
      {"SetDispositionInformationEx", "C:\\c", "SUCCESS",
       "Flags: FILE_DISPOSITION_DELETE, FILE_DISPOSITION_POSIX_SEMANTICS, FILE_DISPOSITION_FORCE_IMAGE_SECTION_CHECK"},
      {"SetDispositionInformationEx", "C:\\d", "SUCCESS", "Flags: FILE_DISPOSITION_DO_NOT_DELETE"},
  });
  EXPECT_THAT(reading.EventsButCreations(), ElementsAre("4005 100 0 C:\\a", "4005 100 0 C:\\c"));
  EXPECT_THAT(reading.counts.skipped, ElementsAre(Pair("delete mark taken back", 2)));
}

TEST(ProcmonMappingTest, RenamesNameBothEnds) {
  const Reading reading = ReadRows({
      {"SetRenameInformationFile", R"(C:\Users\U\Documents\D\inventory.csv.WNCRYT)", "SUCCESS",
       R"(ReplaceIfExists: False, FileName: C:\Users\U\Documents\D\inventory.csv.WNCRY)"},
      {"SetRenameInformationFile", R"(C:\Users\U\Documents\D\inventory.csv)", "SUCCESS",
       R"(ReplaceIfExists: True, FileName: C:\Windows\Temp\5.WNCRYT)"},
      {"SetRenameInformationEx", "C:\\d\\a", "SUCCESS", R"(Flags: 0x3, FileName: \??\C:\d\b, c.txt)"},
      {"SetRenameInformationExBypassAccessCheck", "C:\\d\\a", "SUCCESS", "FileName: bare name"},
      {"SetRenameInformationFile", "C:\\d\\a", "SUCCESS", "ReplaceIfExists: False, FileName: e\\b"},
      {"SetLinkInformationFile", "C:\\d\\a", "SUCCESS", "ReplaceIfExists: False, FileName: C:\\d\\link"},
  });
  EXPECT_THAT(
      reading.EventsButCreations(),
      ElementsAre("4006 100 0 C:\\Users\\U\\Documents\\D\\inventory.csv.WNCRYT|C:\\Users\\U\\Documents\\D\\inventory.csv.WNCRY",
                  "4006 100 0 C:\\Users\\U\\Documents\\D\\inventory.csv|C:\\Windows\\Temp\\5.WNCRYT",
                  "4006 100 0 C:\\d\\a|C:\\d\\b, c.txt", "4006 100 0 C:\\d\\a|bare name", "4006 100 0 C:\\d\\a|C:\\d\\e\\b"));
}

TEST(ProcmonMappingTest, SizesAreSet) {
  const Reading reading = ReadRows({
      {"SetEndOfFileInformationFile", "C:\\a", "SUCCESS", "EndOfFile: 135"},
      {"SetAllocationInformationFile", "C:\\b", "SUCCESS", "AllocationSize: 8,713"},
      {"SetValidDataLengthInformationFile", "C:\\c", "SUCCESS", "ValidDataLength: 7"},
  });
  EXPECT_THAT(reading.EventsButCreations(), ElementsAre("4007 100 135 C:\\a", "4007 100 8713 C:\\b", "4007 100 7 C:\\c"));
}

TEST(ProcmonMappingTest, SectionsAreCreatedHoweverTheFileIsLocked) {
  const Reading reading = ReadRows({
      {"CreateFileMapping", R"(C:\Windows\System32\apisetschema.dll)", "FILE LOCKED WITH ONLY READERS",
       "SyncType: SyncTypeCreateSection, PageProtection: "},
      {"CreateFileMapping", "C:\\b", "FILE LOCKED WITH WRITERS",
       "SyncType: SyncTypeCreateSection, PageProtection: PAGE_EXECUTE_READWRITE|PAGE_NOCACHE"},
      {"CreateFileMapping", "C:\\c", "SUCCESS", "SyncType: SyncTypeCreateSection, PageProtection: PAGE_READONLY"},
      {"CreateFileMapping", "C:\\d", "SUCCESS", "SyncType: SyncTypeOther"},
      {"CreateFileMapping", "C:\\e", "ACCESS DENIED", "SyncType: SyncTypeCreateSection, PageProtection: "},
  });
  EXPECT_THAT(reading.EventsButCreations(),
              ElementsAre("4008 100 0 C:\\Windows\\System32\\apisetschema.dll", "4008 100 0 C:\\b", "4008 100 0 C:\\c"));
  EXPECT_THAT(reading.counts.skipped, ElementsAre(Pair("call failed", 1), Pair("section released", 1)));
}

TEST(ProcmonMappingTest, ModulesAreLoaded) {
  const Reading reading = ReadRows({
      {"Load Image", R"(C:\Windows\System32\SHCore.dll)", "SUCCESS", "Image Base: 0x7fffbe9a0000, Image Size: 0xa6000"},
  });
  EXPECT_THAT(reading.EventsButCreations(), ElementsAre("c001 100 0 C:\\Windows\\System32\\SHCore.dll"));
}

TEST(ProcmonMappingTest, RowsThatAreNoInputAreCountedByReason) {
  const Reading reading = ReadRows({
      {"CreateFile", "C:\\dir", "NAME COLLISION", "Desired Access: Synchronize, Disposition: Create, Options: Directory"},
      {"CreateFile", "C:\\a", "NAME NOT FOUND", "Desired Access: Synchronize"},
      {"ReadFile", "C:\\a", "END OF FILE", "Offset: 0, Length: 8"},
      {"CreateFile", "C:\\a", "REPARSE", "Desired Access: Synchronize"},
      {"WriteFile", "C:\\a", "FAST IO DISALLOWED", "Offset: 2,620,376, Length: 4,096"},
      {"ReadFile", "C:\\a", "", "Offset: 0, Length: 8"},
      {"CloseFile", "C:\\a", "SUCCESS", ""},
      {"QueryBasicInformationFile", "C:\\a", "SUCCESS", "FileAttributes: A"},
      {"RegOpenKey", "HKLM\\Software", "SUCCESS", "Desired Access: Read"},
      {"TCP Send", "host:1 -> host:2", "SUCCESS", "Length: 5"},
      {"UDP Receive", "host:1 -> host:2", "SUCCESS", "Length: 5"},
      {"Thread Create", "", "SUCCESS", "Thread ID: 5"},
      {"Process Profiling", "", "SUCCESS", "User Time: 0.0312500 seconds"},
      {"CreateFile", "C:", "SUCCESS", Opening("Opened")},
      {"ReadFile", R"(\Device\Harddisk0\DR0)", "SUCCESS", "Offset: 0, Length: 8"},
      {"WriteFile", R"(\\server\PIPE\srvsvc)", "SUCCESS", "Offset: 0, Length: 8"},
      {"WriteFile", R"(\\D*\MAILSLOT\NET\NETLOGON)", "SUCCESS", "Offset: 0, Length: 8"},
      {"ReadFile", "", "SUCCESS", "Offset: 0, Length: 8"},
      {"CreateFile", "C:\\", "SUCCESS", Opening("Opened", "Open Reparse Point")},
      {"CreateFile", "C:\\dir\\", "SUCCESS", Opening("Opened", "Open Reparse Point")},
      {"Thread Exit", "", "SUCCESS", "", "0", "Idle"},
  });
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(reading.EventsButCreations(), IsEmpty());
  EXPECT_THAT(
      reading.counts.skipped,
      ElementsAre(Pair("call failed", 3), Pair("call still pending", 1), Pair("close", 1),
                  Pair("fast path refused, the call follows again", 1), Pair("folder", 2), Pair("network traffic", 2),
                  Pair("no file: volume, pipe, mailslot or device", 5),
                  Pair("open sent on under another name, the call follows again", 1), Pair("process 0, which is none", 1),
                  Pair("profiling", 1), Pair("query or other operation without an event", 1), Pair("registry access", 1),
                  Pair("thread event", 1)));
  EXPECT_EQ(reading.counts.rows, 21U);
}

TEST(ProcmonMappingTest, FilesOnSharesAndStreamsAreFiles) {
  const Reading reading = ReadRows({
      {"CreateFile", R"(\\server\share\a.txt)", "SUCCESS", Opening("Opened")},
      {"CreateFile", "C:\\a.txt:Zone.Identifier", "SUCCESS", Opening("Created")},
      {"CreateFile", R"(\??\C:\b.txt)", "SUCCESS", Opening("Opened")},
  });
  EXPECT_THAT(reading.EventsButCreations(), ElementsAre("4001 100 1 \\\\server\\share\\a.txt",
                                                        "4001 100 0 C:\\a.txt:Zone.Identifier", "4001 100 1 C:\\b.txt"));
}

class ProcmonFoldersTest : public ::testing::TestWithParam<Row> {};

// The first row opens a name without saying that it is a folder; the second tells.
TEST_P(ProcmonFoldersTest, AFolderIsNoInputHoweverItIsOpened) {
  const Reading reading = ReadRows({
      {"CreateFile", "C:\\Users\\test", "SUCCESS", Opening("Opened", "Open Reparse Point")},
      {"SetDispositionInformationFile", "C:\\USERS\\Test", "SUCCESS", "Delete: True"},
      GetParam(),
  });
  EXPECT_EQ(reading.error, "");
  for (const std::string& event : reading.EventsButCreations()) {
    EXPECT_FALSE(event.ends_with("est")) << event;
  }
  EXPECT_GE(reading.counts.skipped.at("folder"), 2U);
}

INSTANTIATE_TEST_SUITE_P(
    Signs, ProcmonFoldersTest,
    ::testing::Values(
        Row{"CreateFile", "C:\\Users\\test", "SUCCESS",
            "Desired Access: Read Data/List Directory, Synchronize, Disposition: Open, Options: Directory, Synchronous IO "
            "Non-Alert, "
            "Attributes: n/a, ShareMode: Read, Write, Delete, AllocationSize: n/a, OpenResult: Opened"},
        Row{"CreateFile", "C:\\Users\\test", "IS DIRECTORY",
            "Desired Access: Generic Read, Disposition: Open, Options: Non-Directory File"},
        Row{"QueryStandardInformationFile", "C:\\Users\\test", "SUCCESS",
            "AllocationSize: 0, EndOfFile: 0, NumberOfLinks: 1, DeletePending: False, Directory: True"},
        Row{"QueryBasicInformationFile", "C:\\Users\\test", "SUCCESS",
            "CreationTime: 7/11/2020 3:46:54 PM, LastAccessTime: 7/12/2020 1:17:38 AM, LastWriteTime: 7/12/2020 1:17:38 AM, "
            "ChangeTime: "
            "7/12/2020 1:17:38 AM, FileAttributes: RD"},
        Row{"QueryAllInformationFile", "C:\\Users\\test", "BUFFER OVERFLOW",
            "FileAttributes: HSD, AllocationSize: 0, EndOfFile: 0"},
        Row{"QueryAttributeTagFile", "C:\\Users\\test", "SUCCESS", "Attributes: D, ReparseTag: 0x0"},
        Row{"NotifyChangeDirectory", "C:\\Users\\test", "SUCCESS", "Filter: FILE_NOTIFY_CHANGE_FILE_NAME"},
        Row{"QueryDirectory", "C:\\Users\\test\\*", "SUCCESS", "Filter: *, 1: ."},
        Row{"CreateFile", "C:\\Users\\test\\a.txt", "SUCCESS",
            "Desired Access: Generic Read, Disposition: Open, Options: Non-Directory File, Attributes: n/a, ShareMode: Read, "
            "AllocationSize: n/a, OpenResult: Opened"}));

TEST(ProcmonMappingTest, NamesBelowAFileThatAreNotFoundMakeItNoFolder) {
  const Reading reading = ReadRows({
      {"CreateFile", "C:\\a.dll\\5", "PATH NOT FOUND", "Desired Access: Generic Read"},
      {"CreateFile", "C:\\a.dll", "SUCCESS", Opening("Opened", "Open Reparse Point")},
      {"QueryBasicInformationFile", "C:\\a.dll", "SUCCESS", "FileAttributes: HA"},
  });
  EXPECT_THAT(reading.EventsButCreations(), ElementsAre("4001 100 1 C:\\a.dll"));
}

TEST(ProcmonMappingTest, AFileMayTakeTheNameOfAFolder) {
  const Reading reading = ReadRows({
      {"CreateFile", "C:\\a", "SUCCESS", "Disposition: Open, Options: Directory, Attributes: n/a, OpenResult: Opened"},
      {"CreateFile", "C:\\a", "SUCCESS", Opening("Created")},
  });
  EXPECT_THAT(reading.EventsButCreations(), ElementsAre("4001 100 0 C:\\a"));
}

TEST(ProcmonMappingTest, AnOpenTellsTheSizeThatEarlierRowsTold) {
  const Reading reading = ReadRows({
      {"QueryStandardInformationFile", "C:\\A", "SUCCESS", "AllocationSize: 249,856, EndOfFile: 246,784, NumberOfLinks: 2"},
      {"CreateFile", "C:\\a", "SUCCESS", Opening("Opened")},
      {"QueryAllInformationFile", "C:\\b", "BUFFER OVERFLOW", "FileAttributes: A, AllocationSize: 8, EndOfFile: 5"},
      {"CreateFile", "C:\\b", "SUCCESS", Opening("Opened")},
      {"ReadFile", "C:\\c", "SUCCESS", "Offset: 100, Length: 50"},
      {"CreateFile", "C:\\c", "SUCCESS", Opening("Opened")},
      {"WriteFile", "C:\\d", "SUCCESS", "Offset: 0, Length: 9"},
      {"CreateFile", "C:\\d", "SUCCESS", Opening("Overwritten")},
      {"CreateFile", "C:\\d", "SUCCESS", Opening("Opened")},
      {"SetEndOfFileInformationFile", "C:\\e", "SUCCESS", "EndOfFile: 0"},
      {"CreateFile", "C:\\e", "SUCCESS", Opening("Opened")},
  });
  std::vector<std::string> opens;
  for (const std::string& event : reading.Events()) {
    if (event.starts_with("4001")) {
      opens.push_back(event);
    }
  }
  EXPECT_THAT(opens, ElementsAre("4001 100 246784 C:\\a", "4001 100 5 C:\\b", "4001 100 150 C:\\c", "4001 100 9 C:\\d",
                                 "4001 100 1 C:\\d", "4001 100 1 C:\\e"));
}

TEST(ProcmonMappingTest, ARenameTakesTheSizeAlong) {
  const Reading reading = ReadRows({
      {"WriteFile", "C:\\d\\a", "SUCCESS", "Offset: 0, Length: 9"},
      {"SetRenameInformationFile", "C:\\d\\a", "SUCCESS", "ReplaceIfExists: False, FileName: b"},
      {"CreateFile", "C:\\d\\b", "SUCCESS", Opening("Opened")},
  });
  EXPECT_EQ(reading.Events().back(), "4001 100 9 C:\\d\\b");
}

TEST(ProcmonMappingTest, AFileThatGoesAtItsCloseIsDeletedByIt) {
  const char* const deletes = "Synchronous IO Non-Alert, Non-Directory File, Delete On Close";
  const Reading reading = ReadRows({
      {"CreateFile", "C:\\a", "SUCCESS", Opening("Opened")},
      {"CloseFile", "C:\\a", "SUCCESS", ""},
      {"CreateFile", "C:\\A", "SUCCESS", Opening("Opened", deletes)},
      {"CloseFile", "C:\\A", "SUCCESS", "", "200", "b.exe"},
      {"CloseFile", "C:\\a", "SUCCESS", ""},
      {"CloseFile", "C:\\a", "SUCCESS", ""},
  });
  EXPECT_THAT(reading.EventsButCreations(), ElementsAre("4001 100 1 C:\\a", "4002 100 1 C:\\A", "400b 100 0 C:\\a"));
  EXPECT_THAT(reading.counts.skipped, ElementsAre(Pair("close", 3)));
}

TEST(ProcmonMappingTest, AFileThatIsNotTrackedYetIsOpenedPlainlyAlsoToBeDeleted) {
  const char* const deletes = "Delete On Close";
  const Reading reading = ReadRows({
      {"CreateFile", "C:\\new", "SUCCESS", Opening("Created", deletes)},
      {"CloseFile", "C:\\new", "SUCCESS", ""},
      {"CreateFile", "C:\\old", "SUCCESS", Opening("Opened", deletes)},
      {"CloseFile", "C:\\old", "SUCCESS", ""},
  });
  EXPECT_THAT(reading.EventsButCreations(),
              ElementsAre("4001 100 0 C:\\new", "400b 100 0 C:\\new", "4001 100 1 C:\\old", "400b 100 0 C:\\old"));
}

TEST(ProcmonMappingTest, PagingWritesStayTheSystems) {
  const Reading reading = ReadRows({
      {"WriteFile", "C:\\a", "SUCCESS", "Offset: 0, Length: 4,096, Priority: Normal"},
      {"WriteFile", "C:\\a", "SUCCESS", "Offset: 0, Length: 4,096, I/O Flags: Non-cached, Paging I/O, Priority: Normal", "4",
       "System"},
  });
  EXPECT_THAT(reading.Events(),
              ElementsAre("c003 0 100 a.exe", "4004 100 0 C:\\a|4096", "c003 0 4 System", "4004 4 0 C:\\a|4096"));
}

TEST(ProcmonMappingTest, LongTargetsAreCutAndCounted) {
  const std::string source = "C:\\" + std::string(300, 's');
  const std::string destination = "C:\\" + std::string(300, 'd');
  const Reading reading =
      ReadRows({{"SetRenameInformationFile", source, "SUCCESS", "ReplaceIfExists: False, FileName: " + destination}});
  EXPECT_EQ(TargetText(reading.calls.back().record), (source + '|' + destination).substr(0, 524));
  EXPECT_EQ(reading.counts.targets_cut, 1U);
}

struct BadRow {
  int line;
  Row row;
  const char* what;
};

TEST(ProcmonMappingTest, BadRowsAreErrorsAfterWhichNothingIsFed) {
  const BadRow cases[] = {
      {__LINE__, {"CloseFile", "C:\\a", "SUCCESS", "", "x"}, "the PID \"x\" is no number"},
      {__LINE__, {"CloseFile", "C:\\a", "SUCCESS", "", ""}, "the PID \"\" is no number"},
      {__LINE__, {"CloseFile", "C:\\a", "SUCCESS", "", "100", "a.exe", "yesterday"}, "cannot read the time \"yesterday\""},
      {__LINE__, {"WriteFile", "C:\\a", "SUCCESS", "Offset: 0"}, "WriteFile without the number \"Length\" in its Detail"},
      {__LINE__,
       {"ReadFile", "C:\\a", "SUCCESS", "Offset: n/a, Length: 5"},
       "ReadFile without the number \"Offset\" in its Detail"},
      {__LINE__,
       {"SetEndOfFileInformationFile", "C:\\a", "SUCCESS", ""},
       "SetEndOfFileInformationFile without the number \"EndOfFile\" in its Detail"},
      {__LINE__,
       {"SetRenameInformationFile", "C:\\a", "SUCCESS", "ReplaceIfExists: False"},
       "a rename without \"FileName\" in its Detail"},
      {__LINE__,
       {"Process Create", "C:\\b.exe", "SUCCESS", "Command line: b"},
       "Process Create without the number \"PID\" in its Detail"},
  };
  const Row good = {"CreateFile", "C:\\good", "SUCCESS", "OpenResult: Opened"};
  for (const BadRow& c : cases) {
    const Reading reading = ReadRows({good, c.row, good});
    EXPECT_EQ(reading.error, std::string("capture:3: ") + c.what) << "line " << c.line;
    EXPECT_THAT(reading.Events(), ElementsAre("c003 0 100 a.exe", "4001 100 1 C:\\good")) << "line " << c.line;
  }
}

TEST(ProcmonMappingTest, EventsHaveTheTimeTheThreadAndTheEndOfTheImagePath) {
  const Reading reading = ReadCapture(
      CaptureFormat::kProcmon,
      "\"Detail\",\"TID\",\"Image Path\",\"Result\",\"Path\",\"Operation\",\"PID\",\"Date & Time\",\"Time of Day\",\"User\"\r\n"
      "\"Offset: 0, Length: 8\",\"1568\",\"C:\\Program Files\\VMware\\VMware "
      "Tools\\vmtoolsd.exe\",\"SUCCESS\",\"C:\\a\",\"ReadFile\","
      "\"932\",\"7/12/2020 1:18:10 AM\",\"1:18:10.7752429 AM\",\"u\"\r\n");
  EXPECT_EQ(reading.error, "");
  ASSERT_EQ(reading.calls.size(), 2U);
  EXPECT_EQ(EventText(reading.calls[0]), "c003 0 932 C:\\Program Files\\VMware\\VMware Tools\\vmtoolsd.exe");
  const LOG_ITEM& record = reading.calls[1].record;
  EXPECT_EQ(record.Time, 132389902907752429);
  EXPECT_EQ(record.Tid, 1568U);
  EXPECT_EQ(PathText(record), "es\\VMware\\VMware Tools\\vmtoolsd.exe");
  EXPECT_EQ(record.Context, 0U);
}

}  // namespace
}  // namespace replay::testing
