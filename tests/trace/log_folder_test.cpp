#include "trace/log_folder.h"

#include "tests/trace/library_test.h"

namespace zt::testing {
namespace {

// Written with "/" and turned into what the system has.
std::string Native(std::string path) {
  std::ranges::replace(path, '/', kPathSeparator);
  return path;
}

class LogFolderTest : public LibraryTest {
 protected:
  LogFolderTest() { FakeLibrary().executable = Native("/apps/host.exe"); }
};

TEST_F(LogFolderTest, FolderLiesBesideTheProgram) { EXPECT_EQ(ConfiguredLogFolder().view(), Native("/apps/logs/trace/")); }

TEST_F(LogFolderTest, ProgramWithoutAFolderHasNone) {
  FakeLibrary().executable = "host.exe";
  EXPECT_TRUE(ConfiguredLogFolder().empty());
}

TEST_F(LogFolderTest, EmptyConfigurationIsBesideTheProgram) {
  EXPECT_EQ(ResolveLogFolder("").view(), Native("/apps/logs/trace/"));
}

TEST_F(LogFolderTest, OtherConfigurationIsWhatItSays) {
  EXPECT_EQ(ResolveLogFolder(Native("/var/x/")).view(), Native("/var/x/"));
  EXPECT_EQ(ResolveLogFolder("anything").view(), "anything");
}

TEST_F(LogFolderTest, ApplicationDataIsExpandedInWhateverLetters) {
  char expanded[kMaxPathSize];
  const std::string base(expanded, ExpandEnvironment("%appdata%", expanded, sizeof expanded));
  for (const char* configured : {"%appdata%", "%APPDATA%", "%AppData%"}) {
    EXPECT_EQ(ResolveLogFolder(configured).view(), Native(base + "/Orvanta/logs/trace/"));
  }
  EXPECT_EQ(ResolveLogFolder("%appdatas%").view(), "%appdatas%");
}

}  // namespace
}  // namespace zt::testing
