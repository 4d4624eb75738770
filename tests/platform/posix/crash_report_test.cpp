// Reports about crashes that did not happen.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <iterator>
#include <regex>
#include <string>

#include "platform/crash_filter.h"
#include "platform/posix/crash_details.h"
#include "tests/support/scratch_folder.h"

namespace zt {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;
using testing::ScratchFolder;

void SetStackPointer(ucontext_t& context, std::uintptr_t value) {
#if defined(__x86_64__)
  context.uc_mcontext.gregs[REG_RSP] = static_cast<greg_t>(value);
  context.uc_mcontext.gregs[REG_RBP] = 0;
#elif defined(__aarch64__)
  context.uc_mcontext.sp = value;
  context.uc_mcontext.regs[29] = 0;
#endif
}

class CrashReportTest : public ::testing::Test {
 protected:
  CrashReportTest() {
    getcontext(&context_);
    info_.si_code = SEGV_MAPERR;
  }

  std::string Report(int signal = SIGSEGV) {
    info_.si_signo = signal;
    WriteCrashDump(folder_.Path("report").c_str(), {signal, info_, context_});
    return folder_.Read("report");
  }

  ScratchFolder folder_;
  siginfo_t info_ = {};
  ucontext_t context_ = {};
};

TEST_F(CrashReportTest, BeginsWithTheSignal) {
  info_.si_addr = reinterpret_cast<void*>(0x123456789ABC);
  info_.si_code = BUS_ADRALN;
  EXPECT_THAT(Report(SIGBUS), ::testing::StartsWith("Crash report\n"
                                                    "============\n"
                                                    "\n"
                                                    "Signal      SIGBUS (7)\n"
                                                    "Code        BUS_ADRALN (1): the address is not aligned\n"
                                                    "Address     0x0000123456789abc\n"
                                                    "Time        "));
}

TEST_F(CrashReportTest, NoAddressWhereTheSystemTellsNone) {
  info_.si_code = SI_KERNEL;
  const std::string report = Report();
  EXPECT_THAT(report, HasSubstr("Code        SI_KERNEL (128): "));
  EXPECT_THAT(report, Not(HasSubstr("Address")));
  EXPECT_THAT(report, Not(HasSubstr("Sent by")));
}

TEST_F(CrashReportTest, SenderOfAQueuedSignal) {
  info_.si_code = SI_QUEUE;
  info_.si_pid = 4711;
  info_.si_uid = 1000;
  const std::string report = Report();
  EXPECT_THAT(report, HasSubstr("Sent by     process 4711, user 1000\n"));
  EXPECT_THAT(report, Not(HasSubstr("Address")));
}

TEST_F(CrashReportTest, TimeIsNowInBothForms) {
  const std::time_t before = std::time(nullptr);
  const std::string report = Report();
  const std::time_t after = std::time(nullptr);
  std::smatch parts;
  ASSERT_TRUE(std::regex_search(report, parts, std::regex("Time        (.*) UTC \\((\\d+) s since 1970\\)\n")));
  const std::time_t seconds = std::stoll(parts[2]);
  EXPECT_GE(seconds, before);
  EXPECT_LE(seconds, after);
  std::string calendar(19, '\0');
  std::strftime(calendar.data(), calendar.size() + 1, "%Y-%m-%d %H:%M:%S", std::gmtime(&seconds));
  EXPECT_EQ(parts[1], calendar);
}

TEST_F(CrashReportTest, StackPointerThatLeadsNowhere) {
  SetStackPointer(context_, 0x10);
  const std::string report = Report();
  EXPECT_THAT(report, HasSubstr("\nStack\n-----\nThe stack pointer leads to no memory.\n"));
  EXPECT_THAT(report, ContainsRegex("\nMappings\n--------\n[0-9a-f]+-"));
}

TEST_F(CrashReportTest, StackThatCannotBeRead) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* const memory = mmap(nullptr, page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  SetStackPointer(context_, reinterpret_cast<std::uintptr_t>(memory));
  EXPECT_THAT(Report(), HasSubstr("\nStack\n-----\nFrom here on the memory cannot be read.\n"));
  munmap(memory, page);
}

// An odd stack pointer, three words below the end of its mapping, behind which there is more memory to read.
TEST_F(CrashReportTest, StackEndsWithItsMapping) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* const memory = mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  ASSERT_EQ(mprotect(static_cast<char*>(memory) + page, page, PROT_READ), 0);  // Makes it a mapping of its own.
  auto* const end = reinterpret_cast<std::uintptr_t*>(static_cast<char*>(memory) + page);
  end[-3] = 0xA1;
  end[-2] = 0xA2;
  end[-1] = 0xA3;
  SetStackPointer(context_, reinterpret_cast<std::uintptr_t>(end - 3) - 5);
  EXPECT_THAT(Report(), ContainsRegex("\nStack\n-----\n"
                                      "0x[0-9a-f]+fe8  00000000000000a1\n"
                                      "0x[0-9a-f]+ff0  00000000000000a2\n"
                                      "0x[0-9a-f]+ff8  00000000000000a3\n"
                                      "\nMappings\n"));
  munmap(memory, 2 * page);
}

TEST_F(CrashReportTest, AtMost512StackWords) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* const memory = mmap(nullptr, 3 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  SetStackPointer(context_, reinterpret_cast<std::uintptr_t>(memory));
  std::string report = Report();
  munmap(memory, 3 * page);
  report = report.substr(report.find("\nStack\n"));
  report = report.substr(0, report.find("\nMappings\n"));
  EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 3 + 512);
}

TEST_F(CrashReportTest, ReplacesAFormerReport) {
  folder_.Write("report", std::string(1000000, 'x'));
  EXPECT_THAT(Report(), Not(HasSubstr("xxx")));
}

TEST_F(CrashReportTest, OnlyTheUserMayReadIt) {
  Report();
  struct stat status = {};
  ASSERT_EQ(stat(folder_.Path("report").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777u, 0600u);
}

TEST_F(CrashReportTest, LeavesNoDescriptorOpen) {
  const auto count = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
  };
  const auto before = count();
  Report();
  EXPECT_EQ(count(), before);
}

TEST_F(CrashReportTest, FollowsNoLink) {
  folder_.Write("target", "precious");
  std::filesystem::create_symlink(folder_.Path("target"), folder_.Path("report"));
  EXPECT_EQ(Report(), "precious");
}

TEST_F(CrashReportTest, IsNotHeldUpByAPipeThatNobodyReads) {
  ASSERT_EQ(mkfifo(folder_.Path("pipe").c_str(), 0600), 0);
  WriteCrashDump(folder_.Path("pipe").c_str(), {SIGSEGV, info_, context_});
}

TEST_F(CrashReportTest, PathThatCannotBeOpenedLeavesNothing) {
  WriteCrashDump(folder_.Path("missing/report").c_str(), {SIGSEGV, info_, context_});
  EXPECT_EQ(folder_.Size(), 0u);
}

}  // namespace
}  // namespace zt
