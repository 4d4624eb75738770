#include "platform/posix/crash_registers.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <set>

namespace zt {
namespace {

TEST(CrashRegistersTest, PointersOfThisVeryPlace) {
  ucontext_t context = {};
  ASSERT_EQ(getcontext(&context), 0);
  const CrashRegisters registers = RegistersOf(context);

  const auto frame = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  EXPECT_LE(registers.stack_pointer, frame);
  EXPECT_LT(frame - registers.stack_pointer, 0x10000u);
  Dl_info here = {};
  Dl_info counter = {};
  ASSERT_NE(dladdr(reinterpret_cast<const void*>(&RegistersOf), &here), 0);
  ASSERT_NE(dladdr(reinterpret_cast<const void*>(registers.program_counter), &counter), 0);
  EXPECT_EQ(counter.dli_fbase, here.dli_fbase);
}

TEST(CrashRegistersTest, EachRegisterHasANameOfItsOwn) {
  ucontext_t context = {};
  const CrashRegisters registers = RegistersOf(context);
  ASSERT_GE(registers.count, 20u);
  std::set<std::string_view> names;
  for (std::size_t i = 0; i < registers.count; ++i) {
    EXPECT_NE(registers.registers[i].name, "");
    names.insert(registers.registers[i].name);
  }
  EXPECT_EQ(names.size(), registers.count);
}

TEST(CrashRegistersTest, AddressesHaveNoSignature) {
  EXPECT_EQ(WithoutSignature(0x00007FFFFFFFFFF8), 0x00007FFFFFFFFFF8u);
  EXPECT_EQ(WithoutSignature(0x0000000000401000), 0x0000000000401000u);
}

}  // namespace
}  // namespace zt
