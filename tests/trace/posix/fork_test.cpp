// A process that is forked while the library is started.

#include <sys/wait.h>
#include <unistd.h>

#include "tests/trace/library_test.h"

namespace zt::testing {
namespace {

TEST_F(LibraryTest, ForkedProcessLeavesTheLogToItsParent) {
  Start(kBareToFile, 0);
  Print("before");
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // More than collects in the buffer, and the end of the library.
    const std::string line(1000, 'c');
    for (int i = 0; i < 200; ++i) {
      Print(line.c_str());
    }
    TraceStop();
    _exit(SharedTraceState().started ? 1 : 0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  Print("after");
  TraceStop();
  EXPECT_EQ(Log("zteng.log"), std::string("before\r\nafter\r\n") + kStopped);
}

}  // namespace
}  // namespace zt::testing
