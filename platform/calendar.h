// Calendar arithmetic without any time zone: no locks, no heap, no system.

#ifndef ZT_PLATFORM_CALENDAR_H
#define ZT_PLATFORM_CALENDAR_H

#include <chrono>
#include <cstdint>

#include "platform/clock.h"

namespace zt {

/// The date and the time of day that many seconds after the beginning of 1970. REQUIRES: the years from 1 to 9999.
constexpr LocalTime CalendarTime(std::int64_t seconds) {
  const std::chrono::sys_seconds moment{std::chrono::seconds(seconds)};
  const auto day = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(moment - day);
  return {static_cast<int>(date.year()),
          static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day())),
          static_cast<int>(time.hours().count()),
          static_cast<int>(time.minutes().count()),
          static_cast<int>(time.seconds().count())};
}

/// The seconds from the beginning of 1970 to this date and time of day. REQUIRES: as for CalendarTime.
constexpr std::int64_t SecondsUntil(const LocalTime& time) {
  const std::chrono::sys_days day = std::chrono::year(time.year) / std::chrono::month(static_cast<unsigned>(time.month)) /
                                    std::chrono::day(static_cast<unsigned>(time.day));
  return std::chrono::sys_seconds(day).time_since_epoch().count() + std::int64_t{3600} * time.hour + 60 * time.minute +
         time.second;
}

}  // namespace zt

#endif  // ZT_PLATFORM_CALENDAR_H
