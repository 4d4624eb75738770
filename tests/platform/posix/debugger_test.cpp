#include "platform/debugger.h"

#include <gtest/gtest.h>

namespace zt {
namespace {

TEST(DebuggerTest, TextGoesToStandardError) {
  ::testing::internal::CaptureStderr();
  WriteDebuggerText("one %s\r\n");
  WriteDebuggerText("two");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "one %s\r\ntwo");
}

}  // namespace
}  // namespace zt
