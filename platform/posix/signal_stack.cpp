#include "platform/posix/signal_stack.h"

#include <sys/mman.h>
#include <unistd.h>

#include <csignal>

namespace zt {
namespace {

// What the calling thread was given. Plain data: a thread-local destructor would keep the library loaded.
struct Provided {
  void* memory = nullptr;  // The guard page, then the stack.
  std::size_t size = 0;
  stack_t stack = {};
  stack_t former = {};
};
thread_local Provided provided;

bool IsNone(const stack_t& stack) { return (stack.ss_flags & SS_DISABLE) != 0; }

bool IsInstalled(const stack_t& stack) {
  stack_t current = {};
  return sigaltstack(nullptr, &current) == 0 && !IsNone(current) && current.ss_sp == stack.ss_sp;
}

std::size_t NeededSize() { return kSignalStackRoom + static_cast<std::size_t>(sysconf(_SC_MINSIGSTKSZ)); }

void Provide(const stack_t& former) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t needed = NeededSize();
  const std::size_t stack_size = (needed + page - 1) / page * page;
  const std::size_t size = page + stack_size;
  void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
  if (memory == MAP_FAILED) {
    return;
  }
  stack_t stack = {};
  stack.ss_sp = static_cast<char*>(memory) + page;
  stack.ss_size = stack_size;
  if (mprotect(memory, page, PROT_NONE) != 0 || sigaltstack(&stack, nullptr) != 0) {
    munmap(memory, size);
    return;
  }
  provided = {memory, size, stack, former};
}

}  // namespace

void ProvideSignalStack() {
  stack_t former = {};
  if (sigaltstack(nullptr, &former) == 0 && (IsNone(former) || former.ss_size < NeededSize())) {
    Provide(former);
  }
}

void ProvideSignalStackWhereNone() {
  stack_t former = {};
  if (sigaltstack(nullptr, &former) == 0 && IsNone(former)) {
    Provide(former);
  }
}

void ReleaseSignalStack() {
  if (provided.memory == nullptr || !IsInstalled(provided.stack)) {
    return;  // Whoever has put another stack in its place may yet put it back.
  }
  if (sigaltstack(&provided.former, nullptr) == 0) {  // Refused to a handler that runs on the stack.
    munmap(provided.memory, provided.size);
    provided = {};
  }
}

}  // namespace zt
