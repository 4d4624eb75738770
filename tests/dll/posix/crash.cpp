#include "tests/dll/crash.h"

#include <sys/resource.h>

#include <cstdint>

namespace zt::testing {

void PrepareForCrash() {
  const rlimit no_core = {0, 0};
  static_cast<void>(setrlimit(RLIMIT_CORE, &no_core));
}

void Crash() {
  volatile std::uintptr_t address = 0x10;
  *reinterpret_cast<volatile int*>(address) = 1;
}

}  // namespace zt::testing
