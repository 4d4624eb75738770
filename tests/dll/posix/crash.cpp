#include "tests/dll/crash.h"

#include <sys/resource.h>

#include <cstdint>

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
