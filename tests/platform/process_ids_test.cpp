#include "platform/process_ids.h"

#include <gtest/gtest.h>

#include <thread>

namespace zt {
namespace {

TEST(ProcessIdsTest, IdsAreStable) {
  EXPECT_NE(CurrentProcessId(), 0u);
  EXPECT_EQ(CurrentProcessId(), CurrentProcessId());
  EXPECT_EQ(CurrentThreadId(), CurrentThreadId());
}

TEST(ProcessIdsTest, ThreadsShareTheProcessAndHaveIdsOfTheirOwn) {
  std::uint32_t process = 0;
  std::uint32_t thread = CurrentThreadId();
  std::thread([&] {
    process = CurrentProcessId();
    thread = CurrentThreadId();
  }).join();
  EXPECT_EQ(process, CurrentProcessId());
  EXPECT_NE(thread, CurrentThreadId());
}

}  // namespace
}  // namespace zt
