#include "platform/append_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace zt {
namespace {

// Not by way of a stdio stream: closing one gives memory back, which a process that crashed in its heap cannot do.
int OpenForAppending(const char* path) {
  int descriptor = -1;
  do {
    descriptor =
        open(path, O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, S_IRUSR | S_IWUSR | S_IRGRP);
  } while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

// Takes the lock if nobody has it. File systems without such locks have no others that ask for one.
bool IsHeldByOthers(int descriptor) { return flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK; }

// Writes all of the text unless that fails; returns the number of bytes written.
std::size_t WriteAll(int descriptor, std::string_view text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t count = write(descriptor, text.data() + done, text.size() - done);
    if (count > 0) {
      done += static_cast<std::size_t>(count);
    } else if (count == 0 || errno != EINTR) {
      break;
    }
  }
  return done;
}

}  // namespace

std::optional<std::uint64_t> AppendFile::Open(const char* path) {
  const int descriptor = OpenForAppending(path);
  if (descriptor < 0) {
    return std::nullopt;
  }
  struct stat facts = {};
  if (fstat(descriptor, &facts) != 0 || !S_ISREG(facts.st_mode) || IsHeldByOthers(descriptor)) {
    close(descriptor);
    return std::nullopt;
  }
  handle_ = descriptor + 1;
  buffered_ = 0;
  return static_cast<std::uint64_t>(facts.st_size);
}

std::size_t AppendFile::Append(std::string_view text) {
  const int descriptor = static_cast<int>(handle_ - 1);
  std::size_t taken = 0;
  while (taken < text.size()) {
    const std::size_t count = text.copy(buffer_ + buffered_, kBufferSize - buffered_, taken);
    buffered_ += count;
    taken += count;
    if (buffered_ == kBufferSize) {
      const std::size_t written = WriteAll(descriptor, {buffer_, kBufferSize});
      buffered_ = 0;
      if (written < kBufferSize) {
        const std::size_t lost = kBufferSize - written;
        return taken > lost ? taken - lost : 0;
      }
    }
  }
  return taken;
}

void AppendFile::Close() {
  if (!IsOpen()) {
    return;
  }
  const int descriptor = static_cast<int>(handle_ - 1);
  static_cast<void>(WriteAll(descriptor, {buffer_, buffered_}));
  // A process that was forked meanwhile has the descriptor too, and would keep the lock.
  flock(descriptor, LOCK_UN);
  close(descriptor);
  handle_ = 0;
  buffered_ = 0;
}

}  // namespace zt
