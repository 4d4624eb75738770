#include "tools/replay/reset_timer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace replay {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();

TEST(ResetTimer, StartsWithTheFirstEvent) {
  ResetTimer timer(100);
  EXPECT_THAT(timer.Advance(1000), IsEmpty());
  EXPECT_THAT(timer.Advance(1099), IsEmpty());
  EXPECT_THAT(timer.Advance(1100), ElementsAre(1100));
}

TEST(ResetTimer, TicksOncePerInterval) {
  ResetTimer timer(100);
  timer.Advance(0);
  EXPECT_THAT(timer.Advance(150), ElementsAre(100));
  EXPECT_THAT(timer.Advance(199), IsEmpty());
  EXPECT_THAT(timer.Advance(201), ElementsAre(200));
}

TEST(ResetTimer, GivesTheLastTwoTicksOfAGap) {
  ResetTimer timer(100);
  timer.Advance(0);
  EXPECT_THAT(timer.Advance(250), ElementsAre(100, 200));
  EXPECT_THAT(timer.Advance(1'000'050), ElementsAre(999'900, 1'000'000));
}

TEST(ResetTimer, DoesNotTickForEventsOfThePast) {
  ResetTimer timer(100);
  timer.Advance(1000);
  EXPECT_THAT(timer.Advance(kMin), IsEmpty());
  EXPECT_THAT(timer.Advance(1100), ElementsAre(1100));
}

TEST(ResetTimer, SpansAllOfTime) {
  ResetTimer timer(1);
  timer.Advance(kMin);
  EXPECT_THAT(timer.Advance(kMax), ElementsAre(kMax - 1, kMax));
  EXPECT_THAT(timer.Advance(kMax), IsEmpty());
}

}  // namespace
}  // namespace replay
