// The checks that the compiler puts into released code call these functions of the C library.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>

#include "tests/dll/posix/elf_file.h"

namespace zt::testing {
namespace {

using ::testing::Contains;

TEST(CompiledChecksTest, FunctionsNoticeOverwrittenReturnAddresses) {
  EXPECT_THAT(ElfFile(ZT_LIBRARY_FILE).ImportedSymbols(), Contains("__stack_chk_fail"));
}

// Compilers differ in which calls of the library they can see to be safe, so this looks at a call that none can.
TEST(CompiledChecksTest, CallsOfTheCLibraryNoticeTooSmallBuffers) {
  volatile std::size_t size = 4;
  std::array<char, 8> buffer = {};
  std::memcpy(buffer.data(), "abcdefg", size);
  EXPECT_EQ(std::strlen(buffer.data()), 4U);
  EXPECT_THAT(ElfFile("/proc/self/exe").ImportedSymbols(), Contains("__memcpy_chk"));
}

}  // namespace
}  // namespace zt::testing
