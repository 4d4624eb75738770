#include "platform/console.h"

#include <unistd.h>

#include <cstdio>

#include "platform/posix/crash_output.h"

namespace zt {
namespace {

// Terminals have no way to ask for the current color; what is restored is their default.
constexpr std::uint16_t kTerminalDefault = 0;

constexpr std::string_view EscapeSequence(ConsoleColor color) {
  switch (color) {
    case ConsoleColor::kBrightGreen:
      return "\x1b[92m";
    case ConsoleColor::kBrightRed:
      return "\x1b[91m";
    case ConsoleColor::kBrightYellow:
      return "\x1b[93m";
  }
  return {};
}

}  // namespace

void WriteConsoleText(std::string_view text) {
  // Through stdio, so that the text keeps its place among what the program itself prints. Never waiting for it: a thread that
  // crashed in the middle of a print has it for ever.
  if (ftrylockfile(stdout) == 0) {
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stdout));
    static_cast<void>(std::fflush(stdout));
    funlockfile(stdout);
    return;
  }
  while (!text.empty()) {
    const ssize_t count = write(STDOUT_FILENO, text.data(), text.size());
    if (count <= 0) {
      return;
    }
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

void WriteConsoleTextInCrash(std::string_view text) { WriteWithoutWaiting(STDOUT_FILENO, text); }

SavedConsoleColor SetConsoleColor(ConsoleColor color) {
  if (isatty(STDOUT_FILENO) == 0) {
    return std::nullopt;
  }
  WriteConsoleText(EscapeSequence(color));
  return kTerminalDefault;
}

void RestoreConsoleColor(SavedConsoleColor saved) {
  if (saved.has_value()) {
    WriteConsoleText("\x1b[0m");
  }
}

}  // namespace zt
