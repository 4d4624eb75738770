// The library as a host sees it that loads it at run time, also with tracing on.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/dll/host_fixture.h"
#include "tests/dll/trace_settings.h"

namespace zt::testing {
namespace {

// One file is overwritten, so the score goes from 1 to 2, the process is a suspicious one of its family and the file is to be
// restored. A score of 0 or 1 is not suspicious.
constexpr const char kResults[] =
    "init 1\n"
    "insert 0\n"
    "insert 0\n"
    "insert 0\n"
    "insert 2\n"
    "line 41\n"
    "family 100 100=C:\\Tools\\Lock.exe\n"
    "final state 1, file c:\\docs\\plan.docx = 7 C:\\Docs\\Plan.docx 1, path c:\\docs\\plan.docx\n"
    "similar c:\\docs\\plan.docx\n"
    "family\n"
    "family 100 100=C:\\Tools\\Lock.exe\n"
    "family\n"
    "after clean-up 0\n";

TEST_F(HostTest, EveryExportCanBeCalled) {
  EXPECT_EQ(Run("calls"), 0);
  EXPECT_EQ(Output(), kResults);
  EXPECT_EQ(Log(), "");
}

TEST_F(HostTest, TracingChangesNoResult) {
  const TraceSettings settings(kFileTrace, 0);
  EXPECT_EQ(Run("calls"), 0);
  EXPECT_EQ(Output(), kResults);
  EXPECT_EQ(Count(Log(), "memory: "), 1U);
  EXPECT_EQ(Count(Log(), "trace stopped"), 1U);
}

TEST_F(HostTest, CanBeLoadedAndFreedAgainAndAgain) {
  const TraceSettings settings(kFileTrace, 0);
  EXPECT_EQ(Run("cycles"), 0);
  EXPECT_EQ(Output(), "200 cycles\n");
  EXPECT_EQ(Count(Log(), "memory: "), 200U);
  EXPECT_EQ(Count(Log(), "trace stopped"), 200U);
}

TEST_F(HostTest, CanBeFreedAsSoonAsItIsLoaded) {
  const TraceSettings settings(kFileTrace, 0);
  EXPECT_EQ(Run("hasty"), 0);
  EXPECT_EQ(Output(), "200 hasty cycles\n");
  EXPECT_EQ(Count(Log(), "memory: "), 200U);
  EXPECT_EQ(Count(Log(), "trace stopped"), 200U);
}

TEST_F(HostTest, CanBeFreedAfterItsWorkerHasTicked) {
  const TraceSettings settings(kFileTrace, 0);
  EXPECT_EQ(Run("ticks"), 0);
  EXPECT_EQ(Output(), "5 ticking cycles\n");
  EXPECT_EQ(Count(Log(), "memory: "), 5U);
  EXPECT_EQ(Count(Log(), "trace stopped"), 5U);
}

TEST_F(HostTest, ExitsWithTracingOn) {
  const TraceSettings settings(kFileTrace, 0);
  EXPECT_EQ(Run("exit"), 5);
  EXPECT_EQ(Output(), "exits\n");
  EXPECT_EQ(Count(Log(), "memory: "), 1U);
  EXPECT_EQ(Count(Log(), "trace stopped"), 1U);
}

TEST_F(HostTest, CrashLeavesTheLastLinesAndADump) {
  const TraceSettings settings(kFileTrace | kTraceCrashDump, 0);
  EXPECT_NE(Run("crash"), 0);
  ASSERT_EQ(Dumps().size(), 1U);
  EXPECT_GT(Dumps().front(), 1000U);
  const std::string log = Log();
  // The host's path, from the filter, is the last line but one.
  EXPECT_EQ(Count(log, "[zteng 380] "), 1U);
  EXPECT_TRUE(log.ends_with("[zteng 1277] trace stopped\r\n"))
      << log.substr(log.size() - std::min<std::size_t>(log.size(), 200));
}

TEST_F(HostTest, CrashLeavesNoDumpWhereNoneIsAskedFor) {
  const TraceSettings settings(kFileTrace, 0);
  EXPECT_NE(Run("crash"), 0);
  EXPECT_EQ(Dumps().size(), 0U);
}

TEST_F(HostTest, CrashAfterTheLibraryWasFreedIsNotItsMatter) {
  const TraceSettings settings(kFileTrace | kTraceCrashDump, 0);
  EXPECT_NE(Run("freed"), 0);
  EXPECT_EQ(Dumps().size(), 0U);
}

}  // namespace
}  // namespace zt::testing
