// The program on a terminal: colors, and when there are none.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>

#include "tests/tools/program.h"

namespace replay {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using testing::ScriptPath;

/// Runs the program on a terminal of its own, where TERM is `term` and NO_COLOR is `no_color` unless null, and returns what
/// appears there.
std::string RunOnTerminal(const std::string& script, const char* term, const char* no_color) {
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) {
    setenv("TERM", term, 1);
    if (no_color == nullptr) {
      unsetenv("NO_COLOR");
    } else {
      setenv("NO_COLOR", no_color, 1);
    }
    execl(ZTREPLAY_PROGRAM, ZTREPLAY_PROGRAM, script.c_str(), "--alarm", "2", nullptr);
    _exit(127);
  }
  std::string shown;
  std::array<char, 4096> buffer{};
  for (ssize_t size = 0; (size = read(terminal, buffer.data(), buffer.size())) > 0;) {
    shown.append(buffer.data(), static_cast<std::size_t>(size));
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1);
  close(terminal);
  return shown;
}

TEST(OnATerminal, TheSummaryHasColors) {
  const std::string shown = RunOnTerminal(ScriptPath("overwrite_in_place.jsonl"), "xterm", nullptr);
  EXPECT_THAT(shown, HasSubstr("\x1B[1m\x1B[31m1 process reached the alarm (score 2):"));
}

TEST(OnATerminal, NoColorTurnsColorsOff) {
  for (const char* no_color : {"1", ""}) {
    const std::string shown = RunOnTerminal(ScriptPath("overwrite_in_place.jsonl"), "xterm", no_color);
    EXPECT_THAT(shown, HasSubstr("1 process reached the alarm"));
    EXPECT_THAT(shown, Not(HasSubstr("\x1B")));
  }
}

TEST(OnATerminal, ADumbTerminalGetsNoColors) {
  EXPECT_THAT(RunOnTerminal(ScriptPath("overwrite_in_place.jsonl"), "dumb", nullptr), Not(HasSubstr("\x1B")));
}

}  // namespace
}  // namespace replay
