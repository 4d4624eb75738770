// Crashes that would wait for ever if their handling waited for anything without a limit.

#include <gtest/gtest.h>

#include "tests/dll/host_fixture.h"
#include "tests/dll/trace_settings.h"

namespace zt::testing {
namespace {

class HardCrashTest : public HostTest {
 protected:
  HardCrashTest() : HostTest(ZT_CRASH_HOST) {}
};

TEST_F(HardCrashTest, ConversionOfTimesIsLocked) {
  const TraceSettings settings(kFileTrace | kTraceCrashDump, 0);
  EXPECT_NE(Run("zone"), 0);
  EXPECT_EQ(Dumps().size(), 1U);
  EXPECT_TRUE(Log().ends_with("[zteng 1277] trace stopped\r\n"));
}

TEST_F(HardCrashTest, NobodyReadsTheOutputs) {
  const TraceSettings settings(kFileTrace | kTraceToConsole | kTraceToDebugger | kTraceCrashDump, 0);
  EXPECT_NE(Run("full"), 0);
  EXPECT_EQ(Dumps().size(), 1U);
  EXPECT_TRUE(Log().ends_with("[zteng 1277] trace stopped\r\n"));
}

// What is given up is the lines: the dump is there.
TEST_F(HardCrashTest, AnotherThreadHasTheLockAndWaitsForAReader) {
  const TraceSettings settings(kTraceDebug | kTraceToConsole | kTraceCrashDump, 0);
  EXPECT_NE(Run("full-and-held"), 0);
  EXPECT_EQ(Dumps().size(), 1U);
}

}  // namespace
}  // namespace zt::testing
