#include "trace/settings.h"

#include "tests/trace/library_test.h"

namespace zt::testing {
namespace {

using SettingsTest = LibraryTest;

TEST_F(SettingsTest, BothValuesAreRead) {
  FakeLibrary().settings = {{"flag", 0x107}, {"size", 3}};
  std::uint32_t flag = 1;
  std::uint32_t size = 2;
  EXPECT_TRUE(TraceReadSettings(&flag, &size));
  EXPECT_EQ(flag, 0x107u);
  EXPECT_EQ(size, 3u);
}

TEST_F(SettingsTest, MissingValueLeavesItsOutputUntouched) {
  std::uint32_t flag = 1;
  std::uint32_t size = 2;
  FakeLibrary().settings = {{"flag", 0x107}};
  EXPECT_TRUE(TraceReadSettings(&flag, &size));
  EXPECT_EQ(size, 2u);
  FakeLibrary().settings = {{"size", 9}};
  EXPECT_TRUE(TraceReadSettings(&flag, &size));
  EXPECT_EQ(flag, 0x107u);
  EXPECT_EQ(size, 9u);
}

TEST_F(SettingsTest, MissingKeyLeavesBothUntouched) {
  std::uint32_t flag = 1;
  std::uint32_t size = 2;
  EXPECT_FALSE(TraceReadSettings(&flag, &size));
  EXPECT_EQ(flag, 1u);
  EXPECT_EQ(size, 2u);
}

}  // namespace
}  // namespace zt::testing
