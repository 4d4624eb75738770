// How a process with the filter dies, seen from its parent; and what installing and removing leave behind, seen from inside.

#include "platform/crash_filter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "tests/platform/posix/child_process.h"
#include "tests/support/scratch_folder.h"

namespace zt {
namespace {

using testing::ChildProcess;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using testing::ScratchFolder;
using ::testing::StartsWith;

// A run of zt_crash_child, which does what the words say.
class CrashFilterTest : public ::testing::Test {
 protected:
  ChildProcess Start(const std::vector<std::string>& words) {
    std::vector<std::string> command = {ZT_CRASH_CHILD, report_path_};
    command.insert(command.end(), words.begin(), words.end());
    return ChildProcess(command);
  }

  // Runs the child to its end and returns the signal that ended it, 0 when it was none.
  int EndOf(ChildProcess& child) {
    child_id_ = child.id();
    lines_.clear();
    for (std::string line = child.ReadLine(); !line.empty(); line = child.ReadLine()) {
      lines_.push_back(line);
    }
    const int status = child.Wait();
    report_ = folder_.Read("report");
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  }

  int EndOf(const std::vector<std::string>& words) {
    ChildProcess child = Start(words);
    return EndOf(child);
  }

  // What the child said after `word`, up to the end of the line; a test fails where it said nothing.
  std::string Said(const std::string& word) const {
    for (const std::string& line : lines_) {
      if (line.starts_with(word + " ")) {
        return line.substr(word.size() + 1);
      }
    }
    return "the child did not say " + word;
  }

  // The text behind a label of the report.
  std::string Field(const std::string& label) const {
    std::istringstream report(report_);
    for (std::string line; std::getline(report, line);) {
      if (line.starts_with(label + " ") && line.size() > 12) {
        return line.substr(12);
      }
    }
    return "the report has no " + label;
  }

  // The rows of a section of the report.
  std::vector<std::string> Section(const std::string& heading) const {
    std::vector<std::string> rows;
    const std::size_t start = report_.find("\n" + heading + "\n-");
    if (start != std::string::npos) {
      std::istringstream section(report_.substr(start + 1));
      std::string row;
      std::getline(section, row);
      std::getline(section, row);
      while (std::getline(section, row) && !row.empty()) {
        rows.push_back(row);
      }
    }
    return rows;
  }

  ScratchFolder folder_;
  std::string report_path_ = folder_.Path("report");
  pid_t child_id_ = 0;
  std::vector<std::string> lines_;
  std::string report_;
};

TEST_F(CrashFilterTest, WriteToUnmappedMemory) {
  EXPECT_EQ(EndOf({"install", "write"}), SIGSEGV);
  EXPECT_EQ(Field("Signal"), "SIGSEGV (11)");
  EXPECT_EQ(Field("Code"), "SEGV_MAPERR (1): nothing is mapped at the address");
  EXPECT_EQ(Field("Address"), "0x0000000000000010");
  EXPECT_EQ(Field("Process"), std::to_string(child_id_));
  EXPECT_EQ(Field("Thread"), std::to_string(child_id_) + " \"zt_crash_child\"");
  EXPECT_EQ(Field("Executable"), ZT_CRASH_CHILD);
}

TEST_F(CrashFilterTest, ReadBeyondTheEndOfAFile) {
  EXPECT_EQ(EndOf({"install", "bus"}), SIGBUS);
  EXPECT_EQ(Field("Signal"), "SIGBUS (7)");
  EXPECT_THAT(Field("Code"), StartsWith("BUS_ADRERR (2)"));
}

TEST_F(CrashFilterTest, IllegalInstruction) {
  EXPECT_EQ(EndOf({"install", "illegal"}), SIGILL);
  EXPECT_EQ(Field("Signal"), "SIGILL (4)");
  EXPECT_THAT(Field("Code"), StartsWith("ILL_"));
}

TEST_F(CrashFilterTest, DivisionByZero) {
  EXPECT_EQ(EndOf({"install", "divide"}), SIGFPE);
  EXPECT_EQ(Field("Signal"), "SIGFPE (8)");
}

TEST_F(CrashFilterTest, Abort) {
  EXPECT_EQ(EndOf({"install", "abort"}), SIGABRT);
  EXPECT_EQ(Field("Signal"), "SIGABRT (6)");
  EXPECT_THAT(Field("Code"), StartsWith("SI_TKILL (-6)"));
  EXPECT_EQ(Field("Sent by"), "process " + std::to_string(child_id_) + ", user " + std::to_string(getuid()));
}

TEST_F(CrashFilterTest, SignalFromAnotherProcess) {
  ChildProcess child = Start({"install", "wait"});
  ASSERT_EQ(child.ReadLine(), "ready " + std::to_string(child.id()));
  ASSERT_EQ(kill(child.id(), SIGFPE), 0);
  EXPECT_EQ(EndOf(child), SIGFPE);
  EXPECT_EQ(Field("Code"), "SI_USER (0): sent by kill");
  EXPECT_EQ(Field("Sent by"), "process " + std::to_string(getpid()) + ", user " + std::to_string(getuid()));
}

TEST_F(CrashFilterTest, StackOverflow) {
  EXPECT_EQ(EndOf({"install", "overflow"}), SIGSEGV);
  EXPECT_EQ(Field("Signal"), "SIGSEGV (11)");
  EXPECT_THAT(Section("Mappings"), ::testing::Contains(HasSubstr("[stack]")));
}

TEST_F(CrashFilterTest, StackOverflowOnAThreadThatWasPreparedBeforeAnotherInstalledTheFilter) {
  EXPECT_EQ(EndOf({"prepare", "install-on-thread", "overflow"}), SIGSEGV);
  EXPECT_EQ(Field("Signal"), "SIGSEGV (11)");
}

TEST_F(CrashFilterTest, CrashOnAnotherThread) {
  EXPECT_EQ(EndOf({"install", "thread"}), SIGSEGV);
  EXPECT_NE(Said("thread"), std::to_string(child_id_));
  EXPECT_EQ(Field("Thread"), Said("thread") + " \"worker ? 7\"") << "the name has a line break, which must not break the line";
  EXPECT_EQ(Field("Process"), std::to_string(child_id_));
}

TEST_F(CrashFilterTest, ReportShowsTheStateOfTheCrashedCode) {
  EXPECT_EQ(EndOf({"say-base", "install", "write"}), SIGSEGV);
  // The fourth number is where the instruction is.
  std::istringstream said(Said("handler"));
  std::string signal, code, address;
  std::uintptr_t program_counter = 0;
  said >> signal >> code >> address >> std::hex >> program_counter;
  ASSERT_NE(program_counter, 0u);
  std::ostringstream place;
  place << std::hex << "zt_crash_child+0x" << program_counter - std::stoull(Said("base"), nullptr, 16);

  EXPECT_THAT(Section("Registers"), ::testing::Contains(HasSubstr("12      1122334455667788")));
  const std::vector<std::string> calls = Section("Calls, as far as frame pointers lead");
  ASSERT_GE(calls.size(), 3u);
  EXPECT_THAT(calls[0], HasSubstr("  " + place.str()));
  EXPECT_THAT(calls[1], MatchesRegex("#01  0x[0-9a-f]+  zt_crash_child.0x[0-9a-f]+")) << "CallCrash";
  EXPECT_THAT(calls[2], MatchesRegex("#02  0x[0-9a-f]+  zt_crash_child.0x[0-9a-f]+")) << "main's call of it";

  const std::vector<std::string> stack = Section("Stack");
  EXPECT_LE(stack.size(), 512u);
  EXPECT_THAT(stack, ::testing::Contains(MatchesRegex("0x[0-9a-f]+  7a746d61726b3031")));
  EXPECT_THAT(stack, ::testing::Contains(MatchesRegex("0x[0-9a-f]+  [0-9a-f]+  zt_crash_child.0x[0-9a-f]+")));
  EXPECT_THAT(Section("Mappings"), ::testing::Contains(MatchesRegex("[0-9a-f]+-[0-9a-f]+ r-xp .*/zt_crash_child")));
}

TEST_F(CrashFilterTest, StackRowsBeginAtTheStackPointerAndAreWhole) {
  EXPECT_EQ(EndOf({"install", "thread"}), SIGSEGV);
  const std::vector<std::string> stack = Section("Stack");
  ASSERT_FALSE(stack.empty());
  std::uintptr_t address = std::stoull(stack.front(), nullptr, 16);
  EXPECT_THAT(Section("Registers"), ::testing::Contains(HasSubstr("sp      " + stack.front().substr(2, 16))));
  for (const std::string& row : stack) {
    ASSERT_EQ(std::stoull(row, nullptr, 16), address);
    address += 8;
  }
}

TEST_F(CrashFilterTest, PreviousActionGetsTheSameFaultAfterwards) {
  EXPECT_EQ(EndOf({"previous", "install", "write"}), SIGSEGV);
  EXPECT_THAT(lines_, ElementsAre(StartsWith("handler 11 1 10 "), "previous " + Said("handler")));
}

// The sender's ids are what shows whether the signal was passed on or made anew.
TEST_F(CrashFilterTest, PreviousActionGetsTheSameSentSignalAfterwards) {
  ChildProcess child = Start({"previous", "install", "wait"});
  ASSERT_EQ(child.ReadLine(), "ready " + std::to_string(child.id()));
  ASSERT_EQ(kill(child.id(), SIGFPE), 0);
  const std::string handler = child.ReadLine();
  const std::string previous = child.ReadLine();
  EXPECT_THAT(handler, StartsWith("handler 8 0 "));
  EXPECT_EQ(previous, "previous" + handler.substr(std::string("handler").size()));
  ASSERT_EQ(kill(child.id(), SIGKILL), 0) << "it went on, as the previous action lets it";
  EXPECT_EQ(EndOf(child), SIGKILL);
}

TEST_F(CrashFilterTest, PreviousActionGetsAnAbortAfterwards) {
  EXPECT_EQ(EndOf({"previous", "install", "abort"}), SIGABRT);
  EXPECT_THAT(lines_, ElementsAre(StartsWith("handler 6 -6 "), StartsWith("previous 6 -6 ")));
}

TEST_F(CrashFilterTest, ErrnoIsKept) {
  EXPECT_EQ(EndOf({"previous", "install", "raise-fpe"}), 0);
  EXPECT_THAT(lines_, ElementsAre(StartsWith("handler 8 "), StartsWith("previous 8 "), "errno 25"));
}

TEST_F(CrashFilterTest, FilterIsSpentAfterOneCrashAndCanBeInstalledAgain) {
  EXPECT_EQ(EndOf({"previous", "install", "raise-fpe", "raise-fpe", "install", "raise-fpe"}), 0);
  EXPECT_THAT(lines_, ElementsAre(StartsWith("handler 8 "), StartsWith("previous 8 "), "errno 25",  //
                                  StartsWith("previous 8 "), "errno 25",                            //
                                  StartsWith("handler 8 "), StartsWith("previous 8 "), "errno 25"));
}

TEST_F(CrashFilterTest, IgnoredSignalsAreNoCrash) {
  EXPECT_EQ(EndOf({"ignore-fpe", "install", "raise-fpe", "write"}), SIGSEGV);
  EXPECT_THAT(lines_, ElementsAre("errno 25", StartsWith("handler 11 ")));
}

TEST_F(CrashFilterTest, SecondInstallReplacesTheHandler) {
  EXPECT_EQ(EndOf({"install-other", "install", "write"}), SIGSEGV);
  EXPECT_THAT(lines_, ElementsAre(StartsWith("handler 11 ")));
}

TEST_F(CrashFilterTest, RemovedFilterSeesNothing) {
  EXPECT_EQ(EndOf({"previous", "install", "remove", "write"}), SIGSEGV);
  EXPECT_THAT(lines_, ElementsAre(StartsWith("previous 11 ")));
  EXPECT_EQ(EndOf({"install", "remove-own", "write"}), SIGSEGV);
  EXPECT_THAT(lines_, IsEmpty());
  EXPECT_FALSE(folder_.Has("report"));
}

TEST_F(CrashFilterTest, ActionInstalledLaterMayPassTheSignalOn) {
  EXPECT_EQ(EndOf({"previous", "install", "foreign", "write"}), SIGSEGV);
  EXPECT_THAT(lines_, ElementsAre(StartsWith("foreign 11 "), StartsWith("handler 11 "), StartsWith("previous 11 ")));
}

// The crash that is handled is not of their signal.
TEST_F(CrashFilterTest, ActionInstalledLaterStaysWhenAnotherSignalWasHandled) {
  EXPECT_EQ(EndOf({"previous", "install", "foreign", "raise-fpe", "write"}), SIGSEGV);
  EXPECT_THAT(lines_, ElementsAre(StartsWith("handler 8 "), StartsWith("previous 8 "), "errno 25", StartsWith("foreign 11 "),
                                  StartsWith("previous 11 ")));
}

TEST_F(CrashFilterTest, ActionLeftInPlaceMayPassTheSignalOn) {
  EXPECT_EQ(EndOf({"previous", "install", "foreign", "remove-own", "write"}), SIGSEGV);
  EXPECT_THAT(lines_, ElementsAre(StartsWith("foreign 11 "), StartsWith("previous 11 ")));
}

// The filter's previous action is the foreign one, and the foreign one's is the filter.
TEST_F(CrashFilterTest, ActionsThatPassTheSignalInACircleEnd) {
  EXPECT_EQ(EndOf({"install", "foreign", "remove-own", "install", "write"}), SIGSEGV);
  ASSERT_GE(lines_.size(), 2u);
  EXPECT_THAT(lines_[0], StartsWith("handler 11 "));
  EXPECT_THAT(lines_[1], StartsWith("foreign 11 "));
}

TEST_F(CrashFilterTest, HandlerThatAborts) {
  EXPECT_EQ(EndOf({"install-aborting", "write"}), SIGABRT);
  EXPECT_THAT(lines_, ElementsAre("aborting " + std::to_string(child_id_)));
}

TEST_F(CrashFilterTest, HandlerThatFaults) {
  EXPECT_EQ(EndOf({"install-faulting", "abort"}), SIGSEGV);
  EXPECT_THAT(lines_, ElementsAre("faulting " + std::to_string(child_id_)));
}

TEST_F(CrashFilterTest, TwoThreadsAtOnce) {
  for (int run = 0; run < 50; ++run) {
    ASSERT_EQ(EndOf({"install", "two-threads"}), SIGSEGV) << "run " << run;
    ASSERT_THAT(lines_, ElementsAre(StartsWith("handler 11 1 10 "))) << "run " << run;
    // Whole: nothing ended the process before the report's last section, where the system lists its own pages last.
    ASSERT_THAT(Section("Mappings"), ::testing::Contains(HasSubstr("[vdso]"))) << "run " << run;
  }
}

// The second crash cannot wait for the first one's handler for ever.
TEST_F(CrashFilterTest, HandlerThatNeverReturnsDoesNotHoldUpAnotherCrash) {
  EXPECT_EQ(EndOf({"install-stuck", "second-thread"}), SIGILL);
  EXPECT_THAT(lines_, ElementsAre("stuck " + std::to_string(child_id_)));
}

// What the process does on each of the signals, to be put back at the end.
class CrashActionsTest : public ::testing::Test {
 protected:
  static constexpr std::array kSignals = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};
  using Actions = std::array<struct sigaction, kSignals.size()>;

  ~CrashActionsTest() override {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      sigaction(kSignals[i], &before_[i], nullptr);
    }
  }

  static Actions Current() {
    Actions actions = {};
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      sigaction(kSignals[i], nullptr, &actions[i]);
    }
    return actions;
  }

  // How many signals have another handler or other flags. The system's own flags come with the first action that is set.
  static int CountDifferent(const Actions& a, const Actions& b) {
    constexpr int kFlags = SA_SIGINFO | SA_ONSTACK | SA_RESTART | SA_NODEFER | static_cast<int>(SA_RESETHAND);
    int count = 0;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      const bool differ = a[i].sa_handler != b[i].sa_handler || ((a[i].sa_flags ^ b[i].sa_flags) & kFlags) != 0;
      count += differ ? 1 : 0;
    }
    return count;
  }

  const Actions before_ = Current();
};

void HandleNothing(const CrashDetails&) {}
void IgnoreSignal(int) {}

TEST_F(CrashActionsTest, EachSignalGetsTheActionOnce) {
  InstallCrashFilter(&HandleNothing);
  const Actions installed = Current();
  EXPECT_EQ(CountDifferent(installed, before_), 5);
  for (const auto& action : installed) {
    EXPECT_EQ(action.sa_flags & (SA_SIGINFO | SA_ONSTACK), SA_SIGINFO | SA_ONSTACK);
    for (const int signal : kSignals) {
      EXPECT_EQ(sigismember(&action.sa_mask, signal), 1);
    }
  }
  InstallCrashFilter(&HandleNothing);
  EXPECT_EQ(CountDifferent(Current(), installed), 0);
  RemoveCrashFilter();
  EXPECT_EQ(CountDifferent(Current(), before_), 0);
}

TEST_F(CrashActionsTest, RemoveWithoutInstallDoesNothing) {
  std::signal(SIGFPE, &IgnoreSignal);
  const Actions current = Current();
  RemoveCrashFilter();
  RemoveOwnCrashFilter();
  EXPECT_EQ(CountDifferent(Current(), current), 0);
}

TEST_F(CrashActionsTest, RemoveLeavesWhatOthersInstalled) {
  for (void (*const remove)() : {&RemoveCrashFilter, &RemoveOwnCrashFilter}) {
    InstallCrashFilter(&HandleNothing);
    std::signal(SIGFPE, &IgnoreSignal);
    remove();
    EXPECT_EQ(CountDifferent(Current(), before_), 1);
    EXPECT_EQ(Current()[3].sa_handler, &IgnoreSignal);
    sigaction(SIGFPE, &before_[3], nullptr);
  }
}

TEST_F(CrashActionsTest, NothingIsLeftToRemoveAfterRemove) {
  InstallCrashFilter(&HandleNothing);
  RemoveCrashFilter();
  std::signal(SIGFPE, &IgnoreSignal);
  RemoveCrashFilter();
  EXPECT_EQ(Current()[3].sa_handler, &IgnoreSignal);
}

}  // namespace
}  // namespace zt
