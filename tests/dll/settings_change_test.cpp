// Settings that change while a host runs: the library's own worker sees them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

#include "tests/dll/host_fixture.h"
#include "tests/dll/trace_settings.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SettingsChangeTest : public HostTest {
 protected:
  /// Returns when the library has told in its log that it follows the change.
  void WaitForChange(std::future<int>& host) const {
    WaitUntil(host, [this] { return Count(Log(), "setting changed") == 1; });
  }
};

TEST_F(SettingsChangeTest, LogFileComesWithItsBitAndGoesWithoutIt) {
  const TraceSettings settings(kTraceWarning, 0);
  std::future<int> host = Start("watch-exit");
  settings.Change(kTraceWarning | kTraceToFile, 0);
  WaitUntil(host, [this] { return !LogNames().empty(); });
  EXPECT_THAT(LogNames(), ElementsAre("zteng.log"));
  settings.Change(kTraceWarning, 0);
  WaitUntil(host, [this] { return LogNames().empty(); });
  LetGo();
  EXPECT_EQ(host.get(), 0);
  EXPECT_THAT(LogNames(), IsEmpty());
}

TEST_F(SettingsChangeTest, CrashLeavesNoDumpOnceItsBitIsCleared) {
  const TraceSettings settings(kFileTrace | kTraceCrashDump, 0);
  std::future<int> host = Start("watch-crash");
  settings.Change(kFileTrace, 0);
  WaitForChange(host);
  LetGo();
  EXPECT_NE(host.get(), 0);
  EXPECT_EQ(Count(Log(), "setting changed"), 1U);
  EXPECT_THAT(Dumps(), IsEmpty());
}

TEST_F(SettingsChangeTest, CrashLeavesADumpOnceItsBitIsSet) {
  const TraceSettings settings(kFileTrace, 0);
  std::future<int> host = Start("watch-crash");
  settings.Change(kFileTrace | kTraceCrashDump, 0);
  WaitForChange(host);
  LetGo();
  EXPECT_NE(host.get(), 0);
  EXPECT_EQ(Dumps().size(), 1U);
}

}  // namespace
}  // namespace zt::testing
