// Permissions, links and devices, as systems of this kind have them.

#include "tools/replay/output_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/scratch_folder.h"

namespace replay {
namespace {

namespace fs = std::filesystem;
using zt::testing::ScratchFolder;

TEST(OutputFile, KeepsTheFormerFilesPermissions) {
  const ScratchFolder folder;
  fs::permissions(folder.Write("out", "former"), fs::perms::owner_read | fs::perms::owner_write);
  OutputFile file(folder.Path("out"));
  file.Commit();
  EXPECT_EQ(fs::status(folder.Path("out")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(OutputFile, ReplacesWhatALinkLeadsTo) {
  const ScratchFolder folder;
  folder.Write("real", "former");
  fs::create_symlink(folder.Path("real"), folder.Path("link"));
  OutputFile file(folder.Path("link"));
  file.Write("new");
  file.Commit();
  EXPECT_TRUE(fs::is_symlink(folder.Path("link")));
  EXPECT_EQ(folder.Read("real"), "new");
}

TEST(OutputFile, WritesDevicesDirectly) {
  OutputFile file("/dev/null");
  file.Write("gone");
  file.Commit();
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(OutputFile, NamesAFullDevice) {
  OutputFile file("/dev/full");
  file.Write("x");
  try {
    file.Commit();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const OutputError& error) {
    EXPECT_STREQ(error.what(), "/dev/full: No space left on device");
  }
}

}  // namespace
}  // namespace replay
