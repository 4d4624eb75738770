#include "tools/replay/input/file_names.h"

#include <gtest/gtest.h>

namespace replay {
namespace {

TEST(FileNamesTest, NamespacePrefixesAreRemoved) {
  EXPECT_EQ(WithoutNamespacePrefix("\\??\\C:\\a"), "C:\\a");
  EXPECT_EQ(WithoutNamespacePrefix("\\\\?\\C:\\a"), "C:\\a");
  EXPECT_EQ(WithoutNamespacePrefix("C:\\a"), "C:\\a");
  EXPECT_EQ(WithoutNamespacePrefix("\\\\server\\a"), "\\\\server\\a");
  EXPECT_EQ(WithoutNamespacePrefix(""), "");
}

TEST(FileNamesTest, FilesOnDrives) {
  for (const char* name : {"C:\\a", "c:\\$Mft", "Z:\\a b\\c.txt:Zone.Identifier"}) {
    EXPECT_TRUE(IsOnDrive(name)) << name;
  }
  for (const char* name : {"", "C:", "C:\\", "C:\\a\\", "C:a", "1:\\a", "\\Device\\Mup", R"(\\s\s\a)", "HKLM\\a", "C:/a"}) {
    EXPECT_FALSE(IsOnDrive(name)) << name;
  }
}

TEST(FileNamesTest, FilesOnShares) {
  for (const char* name : {R"(\\server\share\a)", R"(\\10.0.0.1\c$\a\b.txt)", R"(\\s\pipes\a)"}) {
    EXPECT_TRUE(IsOnShare(name)) << name;
  }
  for (const char* name :
       {"", "\\\\", "\\\\server", R"(\\server\share)", R"(\\server\share\)", R"(\\server\share\a\)", R"(\\server\PIPE\srvsvc)",
        R"(\\DESKTOP*\MAILSLOT\NET\NETLOGON)", R"(\\s\IPC$\x)", R"(\\.\C:\a)", R"(\\?\x\a)", R"(\Device\Mup\a)", "C:\\a"}) {
    EXPECT_FALSE(IsOnShare(name)) << name;
  }
}

TEST(FileNamesTest, StreamsOfFolders) {
  EXPECT_TRUE(IsFolderStream("C:\\a:$I30:$INDEX_ALLOCATION"));
  EXPECT_TRUE(IsFolderStream("C:\\a:$I30:$Bitmap"));
  EXPECT_FALSE(IsFolderStream("C:\\a:Zone.Identifier"));
  EXPECT_FALSE(IsFolderStream("C:\\$Mft::$BITMAP"));
}

TEST(FileNamesTest, TheFolderIsAllBeforeTheLastBackslash) {
  EXPECT_EQ(FolderOf("C:\\a\\b"), "C:\\a");
  EXPECT_EQ(FolderOf("C:\\a"), "C:");
  EXPECT_EQ(FolderOf("a"), "");
}

TEST(FileNamesTest, RenamesLeadWhereTheirDestinationSays) {
  EXPECT_EQ(RenameTarget("C:\\d\\a", "D:\\e\\b"), "D:\\e\\b");
  EXPECT_EQ(RenameTarget("C:\\d\\a", "\\??\\D:\\e\\b"), "D:\\e\\b");
  EXPECT_EQ(RenameTarget("C:\\d\\a", "\\\\server\\share\\b"), "\\\\server\\share\\b");
  EXPECT_EQ(RenameTarget("C:\\d\\a", "b"), "b");
  EXPECT_EQ(RenameTarget("C:\\d\\a", "e\\b"), "C:\\d\\e\\b");
  EXPECT_EQ(RenameTarget("C:\\d\\a", "\\e\\b"), "C:\\e\\b");
  EXPECT_EQ(RenameTarget("C:\\d\\a", ""), "");
}

TEST(FileNamesTest, ProgramsOfCommandLines) {
  EXPECT_EQ(ProgramOf("\"C:\\Windows\\System32\\vssadmin.exe\" delete shadows /all /Quiet"),
            "C:\\Windows\\System32\\vssadmin.exe");
  EXPECT_EQ(ProgramOf("regsvr32.exe"), "regsvr32.exe");
  EXPECT_EQ(ProgramOf("  cmd /c del x.exe.bak"), "cmd");
  EXPECT_EQ(ProgramOf("C:\\Program Files\\a b\\c.EXE -x y.exe"), "C:\\Program Files\\a b\\c.EXE");
  EXPECT_EQ(ProgramOf("C:\\a.exe.d\\b.exe"), "C:\\a.exe.d\\b.exe");
  EXPECT_EQ(ProgramOf("\"C:\\a b"), "C:\\a b");
  EXPECT_EQ(ProgramOf(""), "");
  EXPECT_EQ(ProgramOf("  "), "");
}

}  // namespace
}  // namespace replay
