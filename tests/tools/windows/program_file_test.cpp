// What the program's file says of itself.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dll/windows/pe_file.h"

namespace replay {
namespace {

TEST(ProgramFileTest, NothingLeavesIt) {
  const zt::testing::PeFile file(ZTREPLAY_PROGRAM);
  ASSERT_TRUE(file.IsOpen());
  EXPECT_THAT(file.Exports(), ::testing::IsEmpty());
}

}  // namespace
}  // namespace replay
