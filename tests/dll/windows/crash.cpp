#include "tests/dll/crash.h"

#include <windows.h>
// After windows.h, whose types it uses.
#include <dbghelp.h>

#include <cstdint>

namespace zt::testing {

void PrepareForCrash() {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  // Where the process's memory cannot be read from outside, as in emulation, a dump needs this done beforehand.
  SymInitialize(GetCurrentProcess(), nullptr, FALSE);
}

void Crash() {
  volatile std::uintptr_t address = 0x10;
  *reinterpret_cast<volatile int*>(address) = 1;
}

}  // namespace zt::testing
