// The system's command line, so that tests start programs as a user does.

#ifndef ZT_TESTS_TOOLS_SHELL_H
#define ZT_TESTS_TOOLS_SHELL_H

#include <string>

namespace replay::testing {

/// `text` as one word of a command. On Windows it holds no quotation mark.
std::string Quoted(const std::string& text);

/// Runs a command line and returns its exit status.
int RunCommandLine(const std::string& command);

/// The file that is always empty.
extern const char* const kEmptyFile;

}  // namespace replay::testing

#endif  // ZT_TESTS_TOOLS_SHELL_H
