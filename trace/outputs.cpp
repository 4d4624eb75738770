#include "trace/outputs.h"

#include <cstddef>
#include <cstdint>
#include <optional>

#include "trace/trace.h"
#include "trace/trace_state.h"

namespace zt {
namespace {

bool IsOn(std::uint64_t bits) { return (TraceFlags.load(std::memory_order_relaxed) & bits) != 0; }

std::optional<ConsoleColor> ColorOf(std::string_view level) {
  switch (level.empty() ? '\0' : level.front()) {
    case 'd':
      return ConsoleColor::kBrightGreen;
    case 'e':
      return ConsoleColor::kBrightRed;
    case 'w':
      return ConsoleColor::kBrightYellow;
    default:
      return std::nullopt;
  }
}

// The text up to and with its first line end, or all of it.
std::string_view FirstLine(std::string_view text) {
  const std::size_t end = text.find("\r\n");
  return end == std::string_view::npos ? text : text.substr(0, end + 2);
}

void WriteInColor(ConsoleColor color, std::string_view text) {
  if (!IsOn(kTraceToConsole)) {
    TraceTextOut(text);  // Nothing of it reaches the console, so that is not touched.
    return;
  }
  const TraceEnvironment& environment = *SharedTraceState().environment;
  const SavedConsoleColor saved = environment.set_console_color(color);
  TraceTextOut(text);
  environment.restore_console_color(saved);
}

}  // namespace

void TraceConsoleOut(std::string_view level, bool continuation, std::string_view text) {
  const auto color = continuation || IsOn(kTraceNoColor) ? std::nullopt : ColorOf(level);
  if (!color.has_value()) {
    TraceTextOut(text);
    return;
  }
  const std::string_view first_line = FirstLine(text);
  WriteInColor(*color, first_line);
  TraceTextOut(text.substr(first_line.size()));
}

void TraceTextOut(std::string_view text) {
  if (text.empty()) {
    return;
  }
  const TraceEnvironment& environment = *SharedTraceState().environment;
  const bool in_crash = SharedTraceState().in_crash;
  if (IsOn(kTraceToConsole)) {
    (in_crash ? environment.write_console_in_crash : environment.write_console)(text);
  }
  if (IsOn(kTraceToDebugger)) {
    (in_crash ? environment.write_debugger_in_crash : environment.write_debugger)(text);
  }
}

}  // namespace zt
