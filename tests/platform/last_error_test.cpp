#include "platform/last_error.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <thread>

namespace zt::testing {
namespace {

TEST(LastErrorTest, IsTheOneThatWasSetLast) {
  SetLastErrorCode(ErrorCode::kNotReady);
  EXPECT_EQ(LastErrorCode(), 21u);
  SetLastErrorCode(ErrorCode::kInvalidParameter);
  EXPECT_EQ(LastErrorCode(), 87u);
}

TEST(LastErrorTest, EachThreadHasItsOwn) {
  // The system may set it in any of its calls, so the threads wait for each other without one.
  std::atomic<bool> is_set{false};
  std::atomic<bool> is_set_by_the_other{false};
  std::thread other([&] {
    while (!is_set) {
    }
    SetLastErrorCode(ErrorCode::kAlreadyExists);
    EXPECT_EQ(LastErrorCode(), 183u);
    is_set_by_the_other = true;
  });
  SetLastErrorCode(ErrorCode::kNotReady);
  is_set = true;
  while (!is_set_by_the_other) {
  }
  const std::uint32_t mine = LastErrorCode();
  other.join();
  EXPECT_EQ(mine, 21u);
}

}  // namespace
}  // namespace zt::testing
