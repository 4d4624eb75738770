#include "platform/terminal.h"

#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <windows.h>

namespace zt {
namespace {

HANDLE HandleOf(StandardStream stream) {
  return GetStdHandle(stream == StandardStream::kOutput ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

}  // namespace

bool IsTerminal(StandardStream stream) {
  // A console has a mode; files, pipes and the null device, which _isatty also counts, have none.
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

bool ShowsColors(StandardStream stream) {
  DWORD mode = 0;
  const HANDLE handle = HandleOf(stream);
  return GetConsoleMode(handle, &mode) != 0 && SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

void PrepareStandardStreams() {
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
}

}  // namespace zt
