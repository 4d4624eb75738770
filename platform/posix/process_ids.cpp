#include "platform/process_ids.h"

#include <unistd.h>

#if !defined(__linux__)
#include <pthread.h>
#endif

namespace zt {

std::uint32_t CurrentProcessId() { return static_cast<std::uint32_t>(getpid()); }

std::uint32_t CurrentThreadId() {
#if defined(__linux__)
  return static_cast<std::uint32_t>(gettid());
#else
  // POSIX itself has no thread numbers; the low half of the handle tells live threads apart.
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pthread_self()));
#endif
}

}  // namespace zt
