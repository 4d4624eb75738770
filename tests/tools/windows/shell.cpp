#include "tests/tools/shell.h"

#include <cstdlib>

namespace replay::testing {

const char* const kEmptyFile = "NUL";

std::string Quoted(const std::string& text) { return '"' + text + '"'; }

int RunCommandLine(const std::string& command) {
  // The command processor takes one pair of quotation marks off the whole.
  return std::system(Quoted(command).c_str());
}

}  // namespace replay::testing
