#include "platform/posix/own_memory.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace zt {

// By way of a pipe: a system call that meets bad memory fails, and does not fault. The call that copies between processes would
// need no pipe, but is forbidden in many containers.
std::size_t ReadOwnMemory(std::uintptr_t address, std::span<std::uintptr_t> words) {
  // Every pipe takes this much at once; and a page is readable as a whole or not at all.
  constexpr std::size_t kPartSize = 4096;
  std::array<int, 2> ends = {};
  if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    return 0;
  }
  auto* const target = reinterpret_cast<char*>(words.data());
  std::size_t done = 0;
  while (done < words.size_bytes()) {
    const std::uintptr_t source = address + done;
    const std::size_t size = std::min(words.size_bytes() - done, kPartSize - source % kPartSize);
    // Past the C library, whose checked forms would look at the memory themselves.
    if (syscall(SYS_write, ends[1], source, size) != static_cast<long>(size) ||
        read(ends[0], target + done, size) != static_cast<ssize_t>(size)) {
      break;
    }
    done += size;
  }
  close(ends[0]);
  close(ends[1]);
  return done / sizeof(std::uintptr_t);
}

}  // namespace zt
