// The path of a program whose file changes while it runs, seen from its parent.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/platform/posix/child_process.h"
#include "tests/support/scratch_folder.h"

namespace zt::testing {
namespace {

class ExecutablePathOfChildTest : public ::testing::Test {
 protected:
  /// What zt_crash_child says when it is run under this name and does what the words say.
  [[nodiscard]] std::string SaidBy(const std::string& name, const std::vector<std::string>& words) const {
    std::filesystem::copy_file(ZT_CRASH_CHILD, folder_.Path(name));
    std::vector<std::string> command = {folder_.Path(name), folder_.Path("report")};
    command.insert(command.end(), words.begin(), words.end());
    ChildProcess child(command);
    return child.ReadLine();
  }

  ScratchFolder folder_;
};

TEST_F(ExecutablePathOfChildTest, DeletedProgramHasItsPathAsBefore) {
  EXPECT_EQ(SaidBy("host", {"delete-program", "say-program"}), "program " + folder_.Path("host"));
  EXPECT_FALSE(folder_.Has("host"));
}

TEST_F(ExecutablePathOfChildTest, NameThatLooksDeletedStays) {
  EXPECT_EQ(SaidBy("host (deleted)", {"say-program"}), "program " + folder_.Path("host (deleted)"));
}

TEST_F(ExecutablePathOfChildTest, OnlyOneMarkGoes) {
  EXPECT_EQ(SaidBy("host (deleted)", {"delete-program", "say-program"}), "program " + folder_.Path("host (deleted)"));
}

// A file that somebody puts where the mark leads is not the program.
TEST_F(ExecutablePathOfChildTest, FileNamedLikeTheMarkIsNotTheProgram) {
  folder_.Write("host (deleted)", "another file");
  EXPECT_EQ(SaidBy("host", {"delete-program", "say-program"}), "program " + folder_.Path("host"));
}

}  // namespace
}  // namespace zt::testing
