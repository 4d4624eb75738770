#include "platform/console.h"

#include <windows.h>

#include <algorithm>

namespace zt {

void WriteConsoleText(std::string_view text) {
  // To the handle itself: the runtime library's stream would turn every "\r\n" into "\r\r\n".
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  if (output == nullptr || output == INVALID_HANDLE_VALUE) {
    return;
  }
  constexpr std::size_t kMaxPerCall = 0x8000;
  while (!text.empty()) {
    DWORD written = 0;
    const auto count = static_cast<DWORD>(std::min(text.size(), kMaxPerCall));
    if (!WriteFile(output, text.data(), count, &written, nullptr) || written == 0) {
      return;
    }
    text.remove_prefix(written);
  }
}

// Even the question whether there is room waits while another thread writes to the same pipe.
void WriteConsoleTextInCrash(std::string_view /*text*/) {}

SavedConsoleColor SetConsoleColor(ConsoleColor color) {
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  CONSOLE_SCREEN_BUFFER_INFO info = {};
  if (!GetConsoleScreenBufferInfo(output, &info)) {
    return std::nullopt;
  }
  SetConsoleTextAttribute(output, static_cast<WORD>(color));
  return info.wAttributes;
}

void RestoreConsoleColor(SavedConsoleColor saved) {
  if (saved.has_value()) {
    SetConsoleTextAttribute(GetStdHandle(STD_OUTPUT_HANDLE), *saved);
  }
}

}  // namespace zt
