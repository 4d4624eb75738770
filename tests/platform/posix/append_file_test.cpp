#include "platform/append_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/scratch_folder.h"

namespace zt::testing {
namespace {

TEST(PosixAppendFileTest, LinkIsNotFollowed) {
  const ScratchFolder folder;
  folder.Write("target", "");
  std::filesystem::create_symlink(folder.Path("target"), folder.Path("link"));
  AppendFile file;
  EXPECT_EQ(file.Open(folder.Path("link").c_str()), std::nullopt);
}

TEST(PosixAppendFileTest, PipeIsNoFile) {
  const ScratchFolder folder;
  ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
  AppendFile file;
  EXPECT_EQ(file.Open(folder.Path("pipe").c_str()), std::nullopt);
}

TEST(PosixAppendFileTest, FileIsNotInheritedByOtherPrograms) {
  const ScratchFolder folder;
  AppendFile file;
  ASSERT_TRUE(file.Open(folder.Path("file").c_str()).has_value());
  int found = 0;
  int inheritable = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    if (std::filesystem::read_symlink(entry, gone) == std::filesystem::canonical(folder.Path("file"))) {
      const int flags = fcntl(std::stoi(entry.path().filename().string()), F_GETFD);
      ++found;
      inheritable += (flags & FD_CLOEXEC) == 0 ? 1 : 0;
    }
  }
  EXPECT_EQ(found, 1);
  EXPECT_EQ(inheritable, 0);
  file.Close();
}

// A process that holds the file open until this one has looked.
TEST(PosixAppendFileTest, FileThatAnotherProcessWritesToCannotBeOpened) {
  const ScratchFolder folder;
  const std::string path = folder.Path("file");
  std::array<int, 2> opened = {};
  std::array<int, 2> looked = {};
  ASSERT_EQ(pipe(opened.data()), 0);
  ASSERT_EQ(pipe(looked.data()), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    AppendFile file;
    char byte = file.Open(path.c_str()).has_value() ? '1' : '0';
    const bool told = write(opened[1], &byte, 1) == 1 && read(looked[0], &byte, 1) == 1;
    file.Close();
    _exit(told ? 0 : 1);
  }
  char byte = 0;
  ASSERT_EQ(read(opened[0], &byte, 1), 1);
  EXPECT_EQ(byte, '1');
  AppendFile file;
  EXPECT_EQ(file.Open(path.c_str()), std::nullopt);
  ASSERT_EQ(write(looked[1], "x", 1), 1);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(file.Open(path.c_str()), 0u);
  file.Close();
  for (const int end : {opened[0], opened[1], looked[0], looked[1]}) {
    close(end);
  }
}

TEST(PosixAppendFileTest, ForkedProcessDoesNotKeepAClosedFileFromOthers) {
  const ScratchFolder folder;
  const std::string path = folder.Path("file");
  AppendFile file;
  ASSERT_EQ(file.Open(path.c_str()), 0u);
  std::array<int, 2> closed = {};
  ASSERT_EQ(pipe(closed.data()), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    char byte = 0;
    _exit(read(closed[0], &byte, 1) == 1 ? 0 : 1);
  }
  file.Close();
  EXPECT_EQ(file.Open(path.c_str()), 0u);
  file.Close();
  ASSERT_EQ(write(closed[1], "x", 1), 1);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  close(closed[0]);
  close(closed[1]);
}

// Every write to this device fails as one to a full disk does.
TEST(PosixAppendFileTest, FullDeviceIsNoFile) {
  AppendFile file;
  EXPECT_EQ(file.Open("/dev/full"), std::nullopt);
}

// A file system of 128 KiB in memory, in the mount namespace of a child.
int FillASmallDisk(const char* folder) {
  constexpr int kCannotMount = 77;
  constexpr std::size_t kDiskSize = 128 * 1024;
  if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      mount("tmpfs", folder, "tmpfs", 0, "size=128k") != 0) {
    return kCannotMount;
  }
  const std::string path = std::string(folder) + "/file";
  AppendFile file;
  if (file.Open(path.c_str()) != 0u) {
    return 1;
  }
  // The disk takes 128 KiB less what the folder itself needs: the first texts fit, the last does not, and nothing hangs.
  const std::string text(50000, 'x');
  std::size_t taken = 0;
  for (int i = 0; i < 4; ++i) {
    taken += file.Append(text);
  }
  file.Close();
  const std::uintmax_t size = std::filesystem::file_size(path);
  return taken < 4 * text.size() && size > 0 && size <= kDiskSize ? 0 : 2;
}

TEST(PosixAppendFileTest, FullDiskTakesWhatFits) {
  const ScratchFolder folder;
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    _exit(FillASmallDisk(folder.path().c_str()));
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == 77) {
    ASSERT_EQ(std::getenv("CI"), nullptr) << "nothing is left out there";
    GTEST_SKIP() << "only root can mount a small disk";
  }
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

// The limit of a file's size stands in for a full disk where there is no root.
TEST(PosixAppendFileTest, FileAtItsLimitTakesNoMore) {
  const ScratchFolder folder;
  const std::string path = folder.Path("file");
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const rlimit limit = {70000, 70000};
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    AppendFile file;
    const bool ready = setrlimit(RLIMIT_FSIZE, &limit) == 0 && file.Open(path.c_str()) == 0u;
    const std::size_t first = file.Append(std::string(0x10000, 'a'));   // A whole buffer: written.
    const std::size_t second = file.Append(std::string(0x10000, 'b'));  // 70000 - 65536 bytes of it are written.
    file.Close();
    _exit(ready && first == 65536 && second == 4464 ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(std::filesystem::file_size(path), 70000u);
}

}  // namespace
}  // namespace zt::testing
