#include "platform/posix/crash_output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>

#include "platform/console.h"
#include "platform/debugger.h"
#include "tests/support/scratch_folder.h"

namespace zt::testing {
namespace {

// Standard output is something else while this lives.
class OutputTo {
 public:
  explicit OutputTo(int descriptor) {
    static_cast<void>(std::fflush(stdout));
    dup2(descriptor, STDOUT_FILENO);
  }
  ~OutputTo() {
    dup2(saved_, STDOUT_FILENO);
    close(saved_);
  }
  OutputTo(const OutputTo&) = delete;
  OutputTo& operator=(const OutputTo&) = delete;

 private:
  int saved_ = dup(STDOUT_FILENO);
};

// Two connected ends: what is written to the second one arrives at the first one.
class CrashOutputTest : public ::testing::Test {
 protected:
  ~CrashOutputTest() override {
    close(ends_[0]);
    close(ends_[1]);
  }

  void Write(std::string_view text) const {
    const OutputTo output(ends_[1]);
    WriteConsoleTextInCrash(text);
  }
  // Writes until there is no room left.
  void Fill() const {
    fcntl(ends_[1], F_SETFL, O_NONBLOCK);
    const std::array<char, 4096> page = {};
    while (write(ends_[1], page.data(), page.size()) > 0) {
    }
    fcntl(ends_[1], F_SETFL, 0);
  }
  [[nodiscard]] std::string Read() const {
    std::array<char, 100> bytes = {};
    const ssize_t count = read(ends_[0], bytes.data(), bytes.size());
    return {bytes.data(), static_cast<std::size_t>(count < 0 ? 0 : count)};
  }

  std::array<int, 2> ends_ = {-1, -1};
};

TEST_F(CrashOutputTest, PipeTakesText) {
  ASSERT_EQ(pipe2(ends_.data(), O_CLOEXEC), 0);
  Write("one ");
  Write("two");
  EXPECT_EQ(Read(), "one two");
}

// Had it to wait, the test would not end.
TEST_F(CrashOutputTest, FullPipeCostsTheText) {
  ASSERT_EQ(pipe2(ends_.data(), O_CLOEXEC), 0);
  Fill();
  Write("lost");
  EXPECT_EQ(fcntl(ends_[1], F_GETFL) & O_NONBLOCK, 0) << "the pipe's other users share this";
}

// The signal for it would end this process.
TEST_F(CrashOutputTest, PipeWithoutAReaderCostsTheText) {
  ASSERT_EQ(pipe2(ends_.data(), O_CLOEXEC), 0);
  close(ends_[0]);
  ends_[0] = -1;
  Write("lost");
}

TEST_F(CrashOutputTest, SocketTakesTextWhileItHasRoom) {
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends_.data()), 0);
  Write("text");
  EXPECT_EQ(Read(), "text");
  Fill();
  Write("lost");
  close(ends_[0]);
  ends_[0] = -1;
  Write("lost");
}

TEST_F(CrashOutputTest, FileGrowsAtItsPosition) {
  const ScratchFolder folder;
  ends_[1] = open(folder.Write("file", "").c_str(), O_WRONLY | O_CLOEXEC);
  ASSERT_EQ(write(ends_[1], "one ", 4), 4);
  Write("two");
  EXPECT_EQ(folder.Read("file"), "one two");
}

TEST_F(CrashOutputTest, ClosedOutputCostsTheText) {
  ends_[1] = open("/dev/null", O_RDONLY | O_CLOEXEC);
  const OutputTo output(ends_[1]);
  close(STDOUT_FILENO);
  WriteConsoleTextInCrash("lost");
}

TEST(CrashErrorOutputTest, DebuggersTextGoesToStandardError) {
  ::testing::internal::CaptureStderr();
  WriteDebuggerTextInCrash("one %s\r\n");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "one %s\r\n");
}

}  // namespace
}  // namespace zt::testing
