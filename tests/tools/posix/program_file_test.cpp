// What the program's file says of itself.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dll/posix/elf_file.h"

namespace replay {
namespace {

using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::Not;

// The compiler's own parts may let symbols of theirs leave.
TEST(ProgramFileTest, TheEngineInItDoesNotLeaveIt) {
  EXPECT_THAT(zt::testing::ElfFile(ZTREPLAY_PROGRAM).ExportedSymbols(), Each(Not(HasSubstr("Zt"))));
}

}  // namespace
}  // namespace replay
