#include "platform/console.h"

#include <gtest/gtest.h>

namespace zt {
namespace {

using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

TEST(ConsoleTest, TextGoesToStandardOutput) {
  CaptureStdout();
  WriteConsoleText("one %s\n");
  WriteConsoleText("");
  WriteConsoleText("two");
  EXPECT_EQ(GetCapturedStdout(), "one %s\ntwo");
}

TEST(ConsoleTest, OutputToAFileHasNoColor) {
  CaptureStdout();
  const SavedConsoleColor saved = SetConsoleColor(ConsoleColor::kBrightRed);
  WriteConsoleText("text");
  RestoreConsoleColor(saved);
  EXPECT_EQ(GetCapturedStdout(), "text");
  EXPECT_FALSE(saved.has_value());
}

}  // namespace
}  // namespace zt
