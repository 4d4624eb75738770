#include "trace/log_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace zt::testing {
namespace {

// The variable that Windows has for it; other systems have it when somebody sets it.
TEST(PosixLogFolderTest, ApplicationDataIsTheVariablesValue) {
  setenv("appdata", "/home/ann/data", 1);
  EXPECT_EQ(ResolveLogFolder("%APPDATA%").view(), "/home/ann/data/Orvanta/logs/trace/");
  unsetenv("appdata");
}

}  // namespace
}  // namespace zt::testing
