#include "platform/last_error.h"

#include <gtest/gtest.h>

#include <thread>

namespace zt::testing {
namespace {

TEST(LastErrorTest, EachThreadHasItsOwn) {
  SetLastErrorCode(ErrorCode::kNotReady);
  std::thread([] {
    SetLastErrorCode(ErrorCode::kAlreadyExists);
    EXPECT_EQ(LastErrorCode(), 183u);
  }).join();
  EXPECT_EQ(LastErrorCode(), 21u);
  SetLastErrorCode(ErrorCode::kInvalidParameter);
  EXPECT_EQ(LastErrorCode(), 87u);
}

}  // namespace
}  // namespace zt::testing
