#include "tools/replay/options.h"

#include <gtest/gtest.h>

#include <variant>

namespace replay {
namespace {

TEST(ParseOptions, TwoOutputsMayGoToOneDevice) {
  const char* const arguments[] = {"ztreplay", "c", "--results", "/dev/null", "--events", "/dev/null"};
  const std::variant<Options, Reply> parsed = ParseOptions(6, arguments);
  ASSERT_TRUE(std::holds_alternative<Options>(parsed));
  EXPECT_EQ(std::get<Options>(parsed).results, "/dev/null");
  EXPECT_EQ(std::get<Options>(parsed).events, "/dev/null");
}

}  // namespace
}  // namespace replay
