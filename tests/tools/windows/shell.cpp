#include "tests/tools/shell.h"

#include <cstdlib>

namespace replay::testing {

const char* const kEmptyFile = "NUL";

std::string Quoted(const std::string& text) { return '"' + text + '"'; }

int RunCommandLine(const std::string& command) {
  constexpr int kNotStarted = -1;  // As system() has it; no program here ends with it.
  constexpr int kTries = 5;
  // The command processor takes one pair of quotation marks off the whole.
  int status = std::system(Quoted(command).c_str());
  // Seen once, under Wine on a busy machine: this status after five milliseconds, with nothing written and no reason found.
  for (int tries = 1; status == kNotStarted && tries < kTries; ++tries) {
    status = std::system(Quoted(command).c_str());
  }
  return status;
}

}  // namespace replay::testing
