#include "tests/platform/posix/child_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace zt::testing {

ChildProcess::ChildProcess(const std::vector<std::string>& command) {
  std::array<int, 2> ends = {};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe2");
  }
  std::vector<char*> arguments;
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));  // Unchanged: the type is that of C's main.
  }
  arguments.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  const int error = posix_spawn(&id_, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  output_ = ends[0];
  if (error != 0) {
    close(output_);
    throw std::system_error(error, std::generic_category(), command[0]);
  }
}

ChildProcess::~ChildProcess() {
  Wait();
  close(output_);
}

std::string ChildProcess::ReadLine() {
  std::string line;
  char character = 0;
  while (read(output_, &character, 1) == 1 && character != '\n') {
    line += character;
  }
  return line;
}

int ChildProcess::Wait() {
  if (id_ != -1 && waitpid(id_, &status_, 0) == id_) {
    id_ = -1;
  }
  return status_;
}

}  // namespace zt::testing
