#include "tests/dll/crash.h"

#include <windows.h>
// After windows.h, whose types it uses.
#include <dbghelp.h>

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
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  // Where the process's memory cannot be read from outside, as in emulation, a dump needs this done beforehand.
  SymInitialize(GetCurrentProcess(), nullptr, FALSE);
}

void Crash() {
  volatile std::uintptr_t address = 0x10;
  *reinterpret_cast<volatile int*>(address) = 1;
}

void OverflowStack() { static_cast<void>(Recurse(0)); }

}  // namespace zt::testing
