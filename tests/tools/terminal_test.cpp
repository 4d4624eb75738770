// The program on a terminal: colors, and when there are none.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <string>
#include <vector>

#include "tests/tools/program.h"

namespace replay {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using testing::ScriptPath;

/// Runs the program on a terminal of its own, where TERM is `term` and NO_COLOR is `no_color` unless null, and returns what
/// appears there. The alarm is 2, and `further` arguments follow.
std::string RunOnTerminal(const std::string& script, const char* term, const char* no_color,
                          const std::vector<std::string>& further = {}) {
  std::vector<std::string> words = {ZTREPLAY_PROGRAM, script, "--alarm", "2"};
  words.insert(words.end(), further.begin(), further.end());
  std::vector<char*> arguments;
  std::transform(words.begin(), words.end(), std::back_inserter(arguments), [](std::string& word) { return word.data(); });
  arguments.push_back(nullptr);
  int terminal = -1;
  const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) {
    setenv("TERM", term, 1);
    if (no_color == nullptr) {
      unsetenv("NO_COLOR");
    } else {
      setenv("NO_COLOR", no_color, 1);
    }
    execv(ZTREPLAY_PROGRAM, arguments.data());
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
  EXPECT_THAT(shown, HasSubstr("\x1B[1m\x1B[31m1 process reached the alarm (score 2)."));
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

TEST(OnATerminal, NothingOfACaptureSteersIt) {
  const testing::ScratchFolder folder;
  const std::string name = R"(C:\\Docs\\a\u001b\u009b31m\u202e.doc)";
  const std::string capture = folder.Write(
      "run.jsonl", R"({"time":1,"pid":4,"target_pid":9,"behavior":"BehaviorProcessCreate","target":")" + name + "\"}\n" +
                       R"({"time":2,"pid":9,"target_pid":10,"behavior":"BehaviorCreate","target":")" + name + "\"}\n" +
                       R"({"time":3,"pid":9,"target_pid":10,"behavior":"BehaviorRead","target":")" + name + "\"}\n" +
                       R"({"time":4,"pid":9,"behavior":"BehaviorWrite","target":")" + name + "|10\"}\n" +
                       R"({"call":"ZtGetFinalStateFileByPid","pid":9})");
  for (const std::vector<std::string>& further : std::vector<std::vector<std::string>>{
           {}, {"--json"}, {"--results", "-"}, {"--restore-list", "-"}, {"--events", "-"}, {"--explain", "-"}}) {
    const std::string shown = RunOnTerminal(capture, "dumb", nullptr, further);
    EXPECT_THAT(shown, HasSubstr("31m")) << ::testing::PrintToString(further);
    for (const char* steers : {"\x1B", "\xC2\x9B", "\xE2\x80\xAE"}) {
      EXPECT_THAT(shown, Not(HasSubstr(steers))) << ::testing::PrintToString(further);
    }
  }
}

}  // namespace
}  // namespace replay
