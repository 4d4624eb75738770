#include "tests/dll/crash.h"

#include <sys/resource.h>

#include <cstdint>

// What the sanitizers' libraries ask for, where they are linked: they shall leave the signals alone, and make no alternate
// stack.
#define ZT_OPTIONS_OF(sanitizer)                                                                             \
  extern "C" [[gnu::visibility("default")]] const char* __##sanitizer##_default_options();                   \
  const char* __##sanitizer##_default_options() {                                                            \
    return "handle_segv=0:handle_sigbus=0:handle_sigill=0:handle_sigfpe=0:handle_abort=0:use_sigaltstack=0"; \
  }
ZT_OPTIONS_OF(asan)
ZT_OPTIONS_OF(ubsan)

namespace zt::testing {

namespace {

volatile bool goes_deeper = true;

// What it returns depends on all of its calls, so that none of them can be left out.
int Recurse(int depth) {
  volatile char frame[512] = {};
  frame[depth % 512] = 1;
  return goes_deeper ? Recurse(depth + 1) + frame[0] : depth;
}

}  // namespace

void PrepareForCrash() {
  const rlimit no_core = {0, 0};
  static_cast<void>(setrlimit(RLIMIT_CORE, &no_core));
}

void Crash() {
  volatile std::uintptr_t address = 0x10;
  *reinterpret_cast<volatile int*>(address) = 1;
}

void OverflowStack() { static_cast<void>(Recurse(0)); }

}  // namespace zt::testing
