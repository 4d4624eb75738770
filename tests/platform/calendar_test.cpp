#include "platform/calendar.h"

#include <gtest/gtest.h>

namespace zt {
namespace {

// Days since 1970: 20284 = 55 * 365 + 14 leap days + 195 days of 2025, and so on.
constexpr struct {
  std::int64_t seconds;
  LocalTime time;
} kMoments[] = {
    {0, {1970, 1, 1, 0, 0, 0}},
    {-1, {1969, 12, 31, 23, 59, 59}},
    {1752571463, {2025, 7, 15, 9, 24, 23}},
    {std::int64_t{11016} * 86400 + 86399, {2000, 2, 29, 23, 59, 59}},
    {std::int64_t{47540} * 86400, {2100, 2, 28, 0, 0, 0}},
    {std::int64_t{47541} * 86400, {2100, 3, 1, 0, 0, 0}},
};

TEST(CalendarTest, SecondsAreDateAndTimeOfDay) {
  for (const auto& moment : kMoments) {
    EXPECT_EQ(CalendarTime(moment.seconds), moment.time) << moment.seconds;
  }
}

TEST(CalendarTest, DateAndTimeOfDayAreSeconds) {
  for (const auto& moment : kMoments) {
    EXPECT_EQ(SecondsUntil(moment.time), moment.seconds);
  }
}

// Zones with leap seconds tell of a 60th second.
TEST(CalendarTest, LeapSecondIsTheNextMinutesFirst) { EXPECT_EQ(SecondsUntil({1970, 1, 1, 0, 0, 60}), 60); }

}  // namespace
}  // namespace zt
