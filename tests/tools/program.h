// Runs ztreplay as anybody would: by its command line.

#ifndef ZT_TESTS_TOOLS_PROGRAM_H
#define ZT_TESTS_TOOLS_PROGRAM_H

#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"

namespace replay::testing {

using zt::testing::ScratchFolder;

/// What a run of the program left.
struct RunResult {
  int status = -1;
  std::string out;
  std::string err;
};

/// Runs ztreplay with `arguments`; its standard input is the file `input`, or empty. Neither output is a terminal.
RunResult RunProgram(const std::vector<std::string>& arguments);
RunResult RunProgram(const std::vector<std::string>& arguments, const std::string& input);

/// Runs a command line, as tests/tools/shell.h has them, with the two outputs kept apart.
RunResult RunApart(const std::string& command);

/// The full path of a file in tests/scripts.
std::string ScriptPath(const std::string& name);

}  // namespace replay::testing

#endif  // ZT_TESTS_TOOLS_PROGRAM_H
