// The processor's registers where a signal met a thread.

#ifndef ZT_PLATFORM_POSIX_CRASH_REGISTERS_H
#define ZT_PLATFORM_POSIX_CRASH_REGISTERS_H

#include <ucontext.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zt {

/// The registers of one moment. On a processor that is not known here there are none, and all pointers are 0.
struct CrashRegisters {
  struct Register {
    std::string_view name;
    std::uint64_t value = 0;
  };

  std::array<Register, 40> registers = {};
  std::size_t count = 0;  ///< How many of `registers` count.

  std::uintptr_t program_counter = 0;
  std::uintptr_t stack_pointer = 0;
  std::uintptr_t frame_pointer = 0;
};

CrashRegisters RegistersOf(const ucontext_t& context);

/// The address that a return address found on the stack stands for: some processors sign them in bits that addresses leave
/// free.
std::uintptr_t WithoutSignature(std::uintptr_t return_address);

}  // namespace zt

#endif  // ZT_PLATFORM_POSIX_CRASH_REGISTERS_H
