#include "platform/terminal.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string_view>

namespace zt {

bool IsTerminal(StandardStream stream) {
  return isatty(stream == StandardStream::kOutput ? STDOUT_FILENO : STDERR_FILENO) == 1;
}

bool ShowsColors(StandardStream stream) {
  if (!IsTerminal(stream)) {
    return false;
  }
  const char* terminal = std::getenv("TERM");
  return terminal != nullptr && std::string_view(terminal) != "dumb";
}

void PrepareStandardStreams() {
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));  // Fails for unknown signals only.
}

}  // namespace zt
