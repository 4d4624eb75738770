#include "platform/terminal.h"

#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <windows.h>

#include <initializer_list>

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
  for (FILE* const stream : {stdin, stdout, stderr}) {
    _setmode(_fileno(stream), _O_BINARY);
  }
}

}  // namespace zt
