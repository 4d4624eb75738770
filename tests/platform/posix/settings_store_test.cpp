#include "platform/settings_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cstdlib>
#include <string>

#include "tests/support/scratch_folder.h"

namespace zt::testing {
namespace {

class SettingsFileTest : public ::testing::Test {
 protected:
  SettingsFileTest() { setenv("JQMLOG_SETTINGS", folder_.Path("settings").c_str(), 1); }
  ~SettingsFileTest() override { unsetenv("JQMLOG_SETTINGS"); }

  /// Reads "flag" and "size" of a file with this text.
  void Read(const std::string& text) {
    folder_.Write("settings", text);
    ReadNumberSettings("SOFTWARE\\jqmlog\\zteng", settings_);
  }
  [[nodiscard]] std::optional<std::uint32_t> Flag() const { return settings_[0].value; }
  [[nodiscard]] std::optional<std::uint32_t> Size() const { return settings_[1].value; }

  ScratchFolder folder_;
  std::array<NumberSetting, 2> settings_ = {{{"flag", 7}, {"size", 8}}};
};

TEST_F(SettingsFileTest, NumbersAreDecimalOrHexadecimal) {
  Read("flag = 0x10ab\nsize = 12\n");
  EXPECT_EQ(Flag(), 0x10abu);
  EXPECT_EQ(Size(), 12u);
  Read("flag = 0XFFFFFFFF\nsize = 4294967295");
  EXPECT_EQ(Flag(), 0xFFFFFFFFu);
  EXPECT_EQ(Size(), 4294967295u);
}

TEST_F(SettingsFileTest, BlanksCommentsAndLineEndsDoNotMatter) {
  Read("# tracing\r\n\n  flag=0x107   # to the file\r\n\tsize\t=\t0 \r\n");
  EXPECT_EQ(Flag(), 0x107u);
  EXPECT_EQ(Size(), 0u);
}

TEST_F(SettingsFileTest, MissingFileIsAMissingKey) {
  ReadNumberSettings("SOFTWARE\\jqmlog\\zteng", settings_);
  EXPECT_EQ(Flag(), std::nullopt);
  EXPECT_EQ(Size(), std::nullopt);
}

TEST_F(SettingsFileTest, LineThatIsNoNumberIsAMissingValue) {
  for (const char* line : {"flag = on", "flag = 12x", "flag = 0x", "flag = -1", "flag =", "flag = 4294967296", "flag 1",
                           "flag = 0x100000000", "# flag = 1", "Flag = 1", "flags = 1", "= 1", "flag = 1 2"}) {
    Read(std::string(line) + "\nsize = 3\n");
    EXPECT_EQ(Flag(), std::nullopt) << line;
    EXPECT_EQ(Size(), 3u) << line;
  }
}

TEST_F(SettingsFileTest, LatterOfTwoLinesCounts) {
  Read("flag = 1\nflag = 2\n");
  EXPECT_EQ(Flag(), 2u);
}

TEST_F(SettingsFileTest, PipeWithoutAWriterDoesNotKeepWaiting) {
  ASSERT_EQ(mkfifo(folder_.Path("settings").c_str(), 0600), 0);
  ReadNumberSettings("SOFTWARE\\jqmlog\\zteng", settings_);
  EXPECT_EQ(Flag(), std::nullopt);
}

TEST_F(SettingsFileTest, FolderIsAMissingKey) {
  setenv("JQMLOG_SETTINGS", folder_.path().c_str(), 1);
  ReadNumberSettings("SOFTWARE\\jqmlog\\zteng", settings_);
  EXPECT_EQ(Flag(), std::nullopt);
}

TEST_F(SettingsFileTest, WithoutTheVariableTheKeysLastPartNamesASystemFile) {
  unsetenv("JQMLOG_SETTINGS");
  // No such file is installed anywhere.
  ReadNumberSettings("SOFTWARE\\jqmlog\\zteng-test-that-is-not-there", settings_);
  EXPECT_EQ(Flag(), std::nullopt);
  // A key whose file's path would be too long.
  ReadNumberSettings(std::string(5000, 'k').c_str(), settings_);
  EXPECT_EQ(Flag(), std::nullopt);
}

}  // namespace
}  // namespace zt::testing
