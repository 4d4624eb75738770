// A program that is run as a child, to see how it ends.

#ifndef ZT_TESTS_PLATFORM_POSIX_CHILD_PROCESS_H
#define ZT_TESTS_PLATFORM_POSIX_CHILD_PROCESS_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace zt::testing {

/// A running child whose standard output is read here.
class ChildProcess {
 public:
  /// Starts `command`, a path and arguments. Throws std::system_error when that fails.
  explicit ChildProcess(const std::vector<std::string>& command);
  ChildProcess(const ChildProcess&) = delete;  // Owns the process.
  ChildProcess& operator=(const ChildProcess&) = delete;
  /// Waits for the child's end.
  ~ChildProcess();

  [[nodiscard]] pid_t id() const { return id_; }

  /// The next line of the child's output, without its end; empty when there are no more.
  std::string ReadLine();

  /// Waits for the child's end, and returns its status as waitpid gives it.
  int Wait();

 private:
  pid_t id_ = -1;
  int output_ = -1;
  int status_ = -1;
};

}  // namespace zt::testing

#endif  // ZT_TESTS_PLATFORM_POSIX_CHILD_PROCESS_H
