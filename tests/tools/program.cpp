#include "tests/tools/program.h"

#include "tests/tools/shell.h"

namespace replay::testing {

RunResult RunProgram(const std::vector<std::string>& arguments) { return RunProgram(arguments, kEmptyFile); }

RunResult RunProgram(const std::vector<std::string>& arguments, const std::string& input) {
  std::string command = Quoted(ZTREPLAY_PROGRAM);
  for (const std::string& argument : arguments) {
    command += " " + Quoted(argument);
  }
  return RunApart(command + " < " + Quoted(input));
}

RunResult RunApart(const std::string& command) {
  const ScratchFolder folder;
  RunResult result;
  result.status = RunCommandLine(command + " > " + Quoted(folder.Path("out")) + " 2> " + Quoted(folder.Path("err")));
  result.out = folder.Read("out");
  result.err = folder.Read("err");
  return result;
}

std::string ScriptPath(const std::string& name) { return std::string(ZT_SCRIPTS) + "/" + name; }

}  // namespace replay::testing
