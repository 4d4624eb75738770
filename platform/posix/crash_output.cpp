#include "platform/posix/crash_output.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>

namespace zt {
namespace {

// `write` is called with what is left, until it is all written or the call fails.
void WriteWhileItCan(std::string_view text, const auto& write) {
  while (!text.empty()) {
    const ssize_t count = write(text);
    if (count > 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return;
    }
  }
}

void Write(int descriptor, std::string_view text) {
  WriteWhileItCan(text, [descriptor](std::string_view left) { return write(descriptor, left.data(), left.size()); });
}

void Send(int socket, std::string_view text) {
  WriteWhileItCan(
      text, [socket](std::string_view left) { return send(socket, left.data(), left.size(), MSG_DONTWAIT | MSG_NOSIGNAL); });
}

// For a scope, the thread does not see the signal that a write to a pipe without readers raises.
class WithoutPipeSignal {
 public:
  WithoutPipeSignal() {
    sigset_t pending;
    sigpending(&pending);
    was_pending_ = sigismember(&pending, SIGPIPE) == 1;
    sigemptyset(&pipe_signal_);
    sigaddset(&pipe_signal_, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe_signal_, &before_);
  }
  ~WithoutPipeSignal() {
    constexpr timespec kAtOnce = {0, 0};
    while (!was_pending_ && sigtimedwait(&pipe_signal_, nullptr, &kAtOnce) < 0 && errno == EINTR) {
    }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  WithoutPipeSignal(const WithoutPipeSignal&) = delete;
  WithoutPipeSignal& operator=(const WithoutPipeSignal&) = delete;

 private:
  sigset_t pipe_signal_;
  sigset_t before_;
  bool was_pending_;
};

// Whether writes wait is a matter of the opening, which the process shares with those that it was inherited from: this takes an
// opening of its own.
void WriteAnew(int descriptor, std::string_view text) {
  char path[] = "/proc/self/fd/0";
  path[sizeof path - 2] = static_cast<char>('0' + descriptor);
  const int own = open(path, O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (own >= 0) {
    const WithoutPipeSignal no_signal;
    Write(own, text);
    close(own);
  }
}

}  // namespace

void WriteWithoutWaiting(int descriptor, std::string_view text) {
  struct stat facts = {};
  if (fstat(descriptor, &facts) != 0) {
    return;
  }
  if (S_ISREG(facts.st_mode)) {
    Write(descriptor, text);
  } else if (S_ISSOCK(facts.st_mode)) {
    Send(descriptor, text);
  } else {
    WriteAnew(descriptor, text);
  }
}

}  // namespace zt
