// A host that has other rights than the user who starts it: its set-user-id bit is set.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/dll/host_fixture.h"
#include "tests/dll/trace_settings.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr uid_t kOtherUser = 65534;

// The library lies beside the host, where the other user can read it.
class PrivilegedHostTest : public HostTest {
 protected:
  void SetUp() override {
    if (geteuid() != 0) {
      GTEST_SKIP() << "only root can start a program as another user";
    }
    struct statvfs file_system = {};
    ASSERT_EQ(statvfs(Host().c_str(), &file_system), 0);
    if ((file_system.f_flag & ST_NOSUID) != 0 || prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) != 0) {
      GTEST_SKIP() << "set-user-id bits do not count here";
    }
    std::filesystem::copy_file(ZT_LIBRARY_FILE, Library());
    std::filesystem::permissions(folder().path(), std::filesystem::perms::all);
    // The settings are the other user's to read.
    std::filesystem::permissions(std::filesystem::path(settings_.File()).parent_path(), std::filesystem::perms::all);
  }

  /// Runs the host as the other user and returns its exit status.
  [[nodiscard]] int RunAsOtherUser() const {
    const pid_t child = fork();
    if (child == 0) {
      if (setgid(kOtherUser) == 0 && setuid(kOtherUser) == 0) {
        execl(Host().c_str(), Host().c_str(), Library().c_str(), "exit", nullptr);
      }
      _exit(EXIT_FAILURE);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  [[nodiscard]] std::string Library() const { return folder().Path("library.so"); }

  TraceSettings settings_{kFileTrace, 0};
};

TEST_F(PrivilegedHostTest, UsersSettingsCountForTheUsersOwnRights) {
  EXPECT_EQ(RunAsOtherUser(), 5);
  EXPECT_THAT(LogNames(), ElementsAre("zteng.log"));
}

TEST_F(PrivilegedHostTest, UsersSettingsDoNotCountForOthersRights) {
  ASSERT_EQ(chmod(Host().c_str(), S_ISUID | S_IRWXU | S_IRGRP | S_IXGRP | S_IROTH | S_IXOTH), 0);
  EXPECT_EQ(RunAsOtherUser(), 5);
  EXPECT_THAT(LogNames(), IsEmpty());
}

}  // namespace
}  // namespace zt::testing
