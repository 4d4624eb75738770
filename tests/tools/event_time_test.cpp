#include "tools/replay/event_time.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace replay {
namespace {

TEST(FormatEventTime, ShowsTicksSince1601AsADate) {
  // 1714566896 s since 1970, and 11644473600 s from 1601 to 1970.
  EXPECT_EQ(FormatEventTime(133590404967891234), "2024-05-01 12:34:56.789 UTC");
}

TEST(FormatEventTime, BeginsWithDatesInTheYear2000) {
  EXPECT_EQ(FormatEventTime(125911584000000000), "2000-01-01 00:00:00.000 UTC");
  EXPECT_EQ(FormatEventTime(125911583999999999), "125911583999999999 ticks (12591158400.000 s)");
}

TEST(FormatEventTime, ShowsOtherClocksAsTicksAndSeconds) {
  EXPECT_EQ(FormatEventTime(0), "0 ticks (0.000 s)");
  EXPECT_EQ(FormatEventTime(15000000), "15000000 ticks (1.500 s)");
  EXPECT_EQ(FormatEventTime(-20000000), "-20000000 ticks (-2.000 s)");
}

TEST(FormatEventTime, ReachesTheGreatestTime) {
  // 2^63 - 1 ticks are 10675199 days and 2 h 48 min 5.477 s; day 10675199 from 1601 is 14 September 30828.
  EXPECT_EQ(FormatEventTime(std::numeric_limits<std::int64_t>::max()), "30828-09-14 02:48:05.477 UTC");
}

}  // namespace
}  // namespace replay
