#include "platform/console.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace zt {
namespace {

// Standard output is a terminal while this lives.
class Terminal {
 public:
  Terminal() : controller_(posix_openpt(O_RDWR | O_NOCTTY)), saved_output_(dup(STDOUT_FILENO)) {
    grantpt(controller_);
    unlockpt(controller_);
    terminal_ = open(ptsname(controller_), O_RDWR | O_NOCTTY);
    static_cast<void>(std::fflush(stdout));
    dup2(terminal_, STDOUT_FILENO);
  }
  ~Terminal() {
    static_cast<void>(std::fflush(stdout));
    dup2(saved_output_, STDOUT_FILENO);
    close(saved_output_);
    close(terminal_);
    close(controller_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  /// What arrived at the terminal, up to and with `last`.
  [[nodiscard]] std::string ReadUpTo(char last) const {
    std::string text;
    char byte = 0;
    while ((text.empty() || text.back() != last) && read(controller_, &byte, 1) == 1) {
      text += byte;
    }
    return text;
  }

 private:
  int controller_;
  int saved_output_;
  int terminal_;
};

std::string InColor(ConsoleColor color) {
  const Terminal terminal;
  const SavedConsoleColor saved = SetConsoleColor(color);
  WriteConsoleText("text");
  RestoreConsoleColor(saved);
  WriteConsoleText("!");
  return terminal.ReadUpTo('!');
}

TEST(TerminalColorTest, TextIsColoredAndTheColorTakenBack) {
  EXPECT_EQ(InColor(ConsoleColor::kBrightGreen), "\x1b[92mtext\x1b[0m!");
  EXPECT_EQ(InColor(ConsoleColor::kBrightRed), "\x1b[91mtext\x1b[0m!");
  EXPECT_EQ(InColor(ConsoleColor::kBrightYellow), "\x1b[93mtext\x1b[0m!");
}

}  // namespace
}  // namespace zt
