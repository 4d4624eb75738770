#include "platform/posix/crash_registers.h"

namespace zt {

#if defined(__x86_64__)

CrashRegisters RegistersOf(const ucontext_t& context) {
  struct Place {
    std::string_view name;
    int index;
  };
  constexpr Place kPlaces[] = {
      {"rax", REG_RAX},     {"rbx", REG_RBX}, {"rcx", REG_RCX},    {"rdx", REG_RDX},         {"rsi", REG_RSI},
      {"rdi", REG_RDI},     {"rbp", REG_RBP}, {"rsp", REG_RSP},    {"r8", REG_R8},           {"r9", REG_R9},
      {"r10", REG_R10},     {"r11", REG_R11}, {"r12", REG_R12},    {"r13", REG_R13},         {"r14", REG_R14},
      {"r15", REG_R15},     {"rip", REG_RIP}, {"eflags", REG_EFL}, {"cs/gs/fs", REG_CSGSFS}, {"error", REG_ERR},
      {"trap", REG_TRAPNO}, {"cr2", REG_CR2},
  };
  const auto& values = context.uc_mcontext.gregs;
  CrashRegisters result;
  for (const Place& place : kPlaces) {
    result.registers[result.count++] = {place.name, static_cast<std::uint64_t>(values[place.index])};
  }
  result.program_counter = static_cast<std::uintptr_t>(values[REG_RIP]);
  result.stack_pointer = static_cast<std::uintptr_t>(values[REG_RSP]);
  result.frame_pointer = static_cast<std::uintptr_t>(values[REG_RBP]);
  return result;
}

std::uintptr_t WithoutSignature(std::uintptr_t return_address) { return return_address; }

#elif defined(__aarch64__)

CrashRegisters RegistersOf(const ucontext_t& context) {
  constexpr std::string_view kNames[] = {"x0",  "x1",  "x2",  "x3",  "x4",  "x5",  "x6",  "x7",  "x8",  "x9",  "x10",
                                         "x11", "x12", "x13", "x14", "x15", "x16", "x17", "x18", "x19", "x20", "x21",
                                         "x22", "x23", "x24", "x25", "x26", "x27", "x28", "x29", "x30"};
  const mcontext_t& machine = context.uc_mcontext;
  CrashRegisters result;
  for (const std::string_view name : kNames) {
    result.registers[result.count] = {name, machine.regs[result.count]};
    ++result.count;
  }
  result.registers[result.count++] = {"sp", machine.sp};
  result.registers[result.count++] = {"pc", machine.pc};
  result.registers[result.count++] = {"pstate", machine.pstate};
  result.registers[result.count++] = {"fault", machine.fault_address};
  result.program_counter = machine.pc;
  result.stack_pointer = machine.sp;
  result.frame_pointer = machine.regs[29];
  return result;
}

std::uintptr_t WithoutSignature(std::uintptr_t return_address) {
  constexpr std::uintptr_t kAddressBits = (std::uintptr_t{1} << 48) - 1;
  return return_address & kAddressBits;
}

#else

CrashRegisters RegistersOf(const ucontext_t&) { return {}; }

std::uintptr_t WithoutSignature(std::uintptr_t return_address) { return return_address; }

#endif

}  // namespace zt
