// Overflows of a host's stack, which leave the crash filter no room but that of an alternate stack.

#include <gtest/gtest.h>

#include <future>

#include "tests/dll/host_fixture.h"
#include "tests/dll/trace_settings.h"

namespace zt::testing {
namespace {

using StackOverflowTest = HostTest;

// The filter is installed by the library's worker, which cannot give another thread a stack.
TEST_F(StackOverflowTest, OverflowLeavesADumpWhereTheBitWasSetLater) {
  const TraceSettings settings(kFileTrace, 0);
  std::future<int> host = Start("watch-overflow");
  settings.Change(kFileTrace | kTraceCrashDump, 0);
  WaitUntil(host, [this] { return Count(Log(), "setting changed") == 1; });
  LetGo();
  EXPECT_NE(host.get(), 0);
  EXPECT_EQ(Dumps().size(), 1U);
}

}  // namespace
}  // namespace zt::testing
