#include "tools/replay/output_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/scratch_folder.h"

namespace replay {
namespace {

using zt::testing::ScratchFolder;

TEST(OutputFile, AppearsWhenItIsCommitted) {
  const ScratchFolder folder;
  {
    OutputFile file(folder.Path("out"));
    file.Write("one\n");
    file.Write("two\n");
    EXPECT_FALSE(folder.Has("out"));
    file.Commit();
    EXPECT_EQ(folder.Read("out"), "one\ntwo\n");
  }
  EXPECT_EQ(folder.Size(), 1U);
}

TEST(OutputFile, LeavesNothingWithoutCommit) {
  const ScratchFolder folder;
  {
    OutputFile file(folder.Path("out"));
    file.Write(std::string(200'000, 'x'));
    EXPECT_EQ(folder.Size(), 1U);  // Its other name.
  }
  EXPECT_EQ(folder.Size(), 0U);
}

TEST(OutputFile, KeepsTheFormerFileUntilItIsCommitted) {
  const ScratchFolder folder;
  folder.Write("out", "former");
  {
    OutputFile file(folder.Path("out"));
    file.Write("new");
  }
  EXPECT_EQ(folder.Read("out"), "former");
  OutputFile file(folder.Path("out"));
  file.Write("new");
  file.Commit();
  EXPECT_EQ(folder.Read("out"), "new");
}

std::string ErrorOf(const std::string& path) {
  try {
    OutputFile file(path);
    file.Write("x");
    file.Commit();
  } catch (const OutputError& error) {
    return error.what();
  }
  return "no error";
}

TEST(OutputFile, NamesWhatCannotBeWritten) {
  const ScratchFolder folder;
  EXPECT_EQ(ErrorOf(folder.Path("missing/out")), folder.Path("missing/out") + ": No such file or directory");
  EXPECT_EQ(ErrorOf(folder.Path("")), folder.Path("") + ": is a folder");
}

}  // namespace
}  // namespace replay
