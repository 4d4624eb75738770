#include "tests/tools/shell.h"

#include <sys/wait.h>

#include <cstdlib>

namespace replay::testing {

const char* const kEmptyFile = "/dev/null";

std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char letter : text) {
    quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
  }
  return quoted + "'";
}

int RunCommandLine(const std::string& command) {
  // A test of a command line runs it as a shell does; every word of it is quoted.
  const int status = std::system(command.c_str());  // NOLINT(cert-env33-c)
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace replay::testing
