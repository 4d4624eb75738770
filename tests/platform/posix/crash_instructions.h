// Instructions that end a process, each in one way that is known beforehand.

#ifndef ZT_TESTS_PLATFORM_POSIX_CRASH_INSTRUCTIONS_H
#define ZT_TESTS_PLATFORM_POSIX_CRASH_INSTRUCTIONS_H

#include <csignal>

namespace zt::testing {

#if defined(__x86_64__)

/// Writes to the address 0x10 while the register r12 holds 0x1122334455667788.
inline void WriteTo0x10() { asm volatile("movabs $0x1122334455667788, %%r12; movl $1, 0x10" ::: "r12", "memory"); }

/// SIGILL.
inline void RunIllegalInstruction() { asm volatile("ud2"); }

/// SIGFPE.
inline void DivideByZero() { asm volatile("xorl %%ecx, %%ecx; movl $1, %%eax; cltd; idivl %%ecx" ::: "eax", "ecx", "edx"); }

#elif defined(__aarch64__)

/// Writes to the address 0x10 while the register x12 holds 0x1122334455667788.
inline void WriteTo0x10() {
  asm volatile(
      "movz x12, #0x7788; movk x12, #0x5566, lsl #16; movk x12, #0x3344, lsl #32; movk x12, #0x1122, lsl #48;"
      "mov x13, #0x10; str wzr, [x13]" ::
          : "x12", "x13", "memory");
}

/// SIGILL.
inline void RunIllegalInstruction() { asm volatile(".inst 0x00000000"); }

/// SIGFPE, which this processor's division does not raise.
inline void DivideByZero() { raise(SIGFPE); }

#endif

}  // namespace zt::testing

#endif  // ZT_TESTS_PLATFORM_POSIX_CRASH_INSTRUCTIONS_H
