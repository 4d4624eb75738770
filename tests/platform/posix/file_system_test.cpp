#include "platform/file_system.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace zt::testing {
namespace {

TEST(PosixExpandEnvironmentTest, ValuesTakeThePlaceOfNames) {
  setenv("ZTENG_TEST_VALUE", "val", 1);
  char text[64];
  EXPECT_EQ(ExpandEnvironment("%ZTENG_TEST_VALUE%/x/%ZTENG_TEST_VALUE%", text, sizeof text), 9u);
  EXPECT_STREQ(text, "val/x/val");
  // The percent sign that ends one name without a value may begin another.
  EXPECT_EQ(ExpandEnvironment("50%%ZTENG_TEST_VALUE%", text, sizeof text), 6u);
  EXPECT_STREQ(text, "50%val");
  unsetenv("ZTENG_TEST_VALUE");
}

}  // namespace
}  // namespace zt::testing
