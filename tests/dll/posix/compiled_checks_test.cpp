// The checks that the compiler puts into the library's code call these functions of the C library.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dll/posix/elf_file.h"

namespace zt::testing {
namespace {

using ::testing::Contains;
using ::testing::EndsWith;

TEST(CompiledChecksTest, FunctionsNoticeOverwrittenReturnAddresses) {
  EXPECT_THAT(ElfFile(ZT_LIBRARY_FILE).ImportedSymbols(), Contains("__stack_chk_fail"));
}

TEST(CompiledChecksTest, CallsOfTheCLibraryNoticeTooSmallBuffers) {
  EXPECT_THAT(ElfFile(ZT_LIBRARY_FILE).ImportedSymbols(), Contains(EndsWith("_chk")));
}

}  // namespace
}  // namespace zt::testing
