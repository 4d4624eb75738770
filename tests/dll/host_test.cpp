// The library as a host sees it that loads it at run time, also with tracing on.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/dll/trace_settings.h"
#include "tests/support/scratch_folder.h"
#include "tests/tools/shell.h"
#include "trace/trace.h"

namespace zt::testing {
namespace {

constexpr std::uint32_t kFileTrace = kTraceInfo | kTraceDebug | kTraceWarning | kTraceToFile;

std::size_t Count(std::string_view text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + part.size())) {
    ++count;
  }
  return count;
}

// Runs the host from a folder of its own, beside which the library keeps its log files.
class HostTest : public ::testing::Test {
 protected:
  HostTest() { std::filesystem::copy_file(ZT_DLL_HOST, Host()); }

  /// Returns the host's exit status.
  [[nodiscard]] int Run(const std::string& word) const {
    using replay::testing::Quoted;
    return replay::testing::RunCommandLine(Quoted(Host()) + " " + Quoted(ZT_LIBRARY_FILE) + " " + word + " > " +
                                           Quoted(folder_.Path("out")) + " 2> " + Quoted(folder_.Path("err")));
  }
  /// What it said, with line ends as everywhere.
  [[nodiscard]] std::string Output() const {
    std::string text = folder_.Read("out") + folder_.Read("err");
    std::erase(text, '\r');
    return text;
  }
  [[nodiscard]] std::string Log() const { return folder_.Read("logs/trace/zteng.log"); }
  /// The sizes of the dumps beside the host.
  [[nodiscard]] std::vector<std::uintmax_t> Dumps() const {
    std::vector<std::uintmax_t> sizes;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      const std::string name = entry.path().filename().string();
      if (name.starts_with(std::filesystem::path(Host()).filename().string() + " [") && name.ends_with(".dmp")) {
        sizes.push_back(entry.file_size());
      }
    }
    return sizes;
  }

 private:
  [[nodiscard]] std::string Host() const {
    return folder_.Path("host" + std::filesystem::path(ZT_DLL_HOST).extension().string());
  }

  ScratchFolder folder_;
};

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
