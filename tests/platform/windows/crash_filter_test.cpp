// How a process with the filter dies, seen from its parent.

#include "platform/crash_filter.h"

#include <gtest/gtest.h>
#include <windows.h>
// Need the types of the header above.
#include <dbghelp.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tests/support/scratch_folder.h"

namespace zt {
namespace {

using testing::ScratchFolder;

class CrashFilterTest : public ::testing::Test {
 protected:
  // Runs zt_crash_child, which does what the words say, and returns its exit code.
  DWORD Run(const std::string& words) {
    // What a debugger of the system says about the crash belongs nowhere.
    SECURITY_ATTRIBUTES inherited = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const HANDLE nowhere = CreateFileA("NUL", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr);
    STARTUPINFOA startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = nowhere;
    startup.hStdError = nowhere;
    PROCESS_INFORMATION process = {};
    std::string command = "\"" + ChildPath() + "\" \"" + folder_.Path("dump") + "\" \"" + folder_.Path("said") + "\" " + words;
    DWORD exit_code = 0;
    if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
      WaitForSingleObject(process.hProcess, INFINITE);
      GetExitCodeProcess(process.hProcess, &exit_code);
      CloseHandle(process.hThread);
      CloseHandle(process.hProcess);
      thread_id_ = process.dwThreadId;
    }
    CloseHandle(nowhere);
    said_ = folder_.Read("said");
    return exit_code;
  }

  [[nodiscard]] MINIDUMP_EXCEPTION_STREAM ExceptionInDump() const {
    const std::string dump = folder_.Read("dump");
    MINIDUMP_EXCEPTION_STREAM exception = {};
    MINIDUMP_HEADER header = {};
    std::memcpy(&header, dump.data(), std::min(dump.size(), sizeof(header)));
    for (ULONG32 i = 0; i < header.NumberOfStreams; ++i) {
      MINIDUMP_DIRECTORY entry = {};
      std::memcpy(&entry, dump.data() + header.StreamDirectoryRva + i * sizeof(entry), sizeof(entry));
      if (entry.StreamType == ExceptionStream) {
        std::memcpy(&exception, dump.data() + entry.Location.Rva, sizeof(exception));
        return exception;
      }
    }
    ADD_FAILURE() << "the dump has no exception";
    return exception;
  }

  // Beside this program, wherever it was taken.
  static std::string ChildPath() {
    std::string path(MAX_PATH, '\0');
    path.resize(GetModuleFileNameA(nullptr, path.data(), MAX_PATH));
    return path.substr(0, path.rfind('\\') + 1) + "zt_crash_child.exe";
  }

  ScratchFolder folder_;
  std::string said_;
  DWORD thread_id_ = 0;
};

TEST_F(CrashFilterTest, ExceptionEndsTheProcessAfterTheHandler) {
  EXPECT_EQ(Run("install write"), EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(said_, "handler\n");
}

TEST_F(CrashFilterTest, DumpIsWholeAndTellsTheThread) {
  Run("install write");
  const std::string dump = folder_.Read("dump");
  MINIDUMP_HEADER header = {};
  ASSERT_GE(dump.size(), sizeof(header));
  std::memcpy(&header, dump.data(), sizeof(header));
  EXPECT_EQ(dump.substr(0, 4), "MDMP");
  EXPECT_EQ(header.Flags & 0x3FEu, 0x3FEu);
  EXPECT_EQ(ExceptionInDump().ThreadId, thread_id_);
}

TEST_F(CrashFilterTest, DumpTellsTheException) {
  if (std::getenv("ZT_EMULATED") != nullptr) {
    GTEST_SKIP() << "this emulation does not tell what the exception was";
  }
  Run("install write");
  const MINIDUMP_EXCEPTION exception = ExceptionInDump().ExceptionRecord;
  EXPECT_EQ(exception.ExceptionCode, EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(exception.ExceptionInformation[1], 0x10u);
}

TEST_F(CrashFilterTest, SecondInstallReplacesTheHandler) {
  EXPECT_EQ(Run("install-other install write"), EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(said_, "handler\n");
}

TEST_F(CrashFilterTest, RemovedFilterSeesNothing) {
  EXPECT_EQ(Run("install remove write"), EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(said_, "");
  EXPECT_EQ(Run("install remove-own write"), EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(said_, "");
  EXPECT_FALSE(folder_.Has("dump"));
}

TEST_F(CrashFilterTest, RemoveOwnGivesBackTheFilterFromBefore) {
  EXPECT_EQ(Run("foreign install remove-own write"), EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(said_, "foreign\n");
}

TEST_F(CrashFilterTest, SecondInstallKeepsTheFilterFromBefore) {
  EXPECT_EQ(Run("foreign install install remove-own write"), EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(said_, "foreign\n");
}

TEST_F(CrashFilterTest, FilterFromBeforeIsNotCalledWhileThisOneIsInstalled) {
  EXPECT_EQ(Run("foreign install write"), EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(said_, "handler\n");
}

TEST_F(CrashFilterTest, RemoveLeavesNoFilterAtAll) {
  EXPECT_EQ(Run("foreign install remove remove-own write"), EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(said_, "");
}

TEST_F(CrashFilterTest, FormerDumpIsReplaced) {
  // Longer than a dump of the child, whose memory has no such text.
  const std::string mark = "of the former dump;";
  std::string former;
  while (former.size() < 16000000) {
    former += mark;
  }
  folder_.Write("dump", former);
  Run("install write");
  const std::string dump = folder_.Read("dump");
  EXPECT_EQ(dump.substr(0, 4), "MDMP");
  EXPECT_EQ(dump.find(mark), std::string::npos);
}

// The second crash cannot wait for the first one's handler for ever.
TEST_F(CrashFilterTest, HandlerThatNeverReturnsDoesNotHoldUpAnotherCrash) {
  EXPECT_EQ(Run("install-stuck second-thread"), EXCEPTION_ILLEGAL_INSTRUCTION);
  EXPECT_EQ(said_, "stuck\n");
}

TEST_F(CrashFilterTest, RemoveTakesAwayWhatOthersInstalled) {
  EXPECT_EQ(Run("install foreign remove write"), EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(said_, "");
}

TEST_F(CrashFilterTest, RemoveOwnLeavesWhatOthersInstalled) {
  EXPECT_EQ(Run("install foreign remove-own write"), EXCEPTION_ACCESS_VIOLATION);
  EXPECT_EQ(said_, "foreign\n");
}

}  // namespace
}  // namespace zt
