// Event times: 100 ns ticks since the year 1601, as hosts on Windows count them.

#ifndef ZT_TOOLS_REPLAY_INPUT_TICKS_H
#define ZT_TOOLS_REPLAY_INPUT_TICKS_H

#include <chrono>
#include <cstdint>
#include <optional>

namespace replay {

inline constexpr std::int64_t kTicksPerSecond = 10'000'000;
inline constexpr std::int64_t kTicksPerHour = 3600 * kTicksPerSecond;
inline constexpr std::int64_t kTicksPerDay = 24 * kTicksPerHour;

/// Days from 1 January 1601 to a date of the Gregorian calendar, or nothing where there is no such date or it lies before.
inline std::optional<std::int64_t> DaysSince1601(int year, unsigned month, unsigned day) {
  using std::chrono::sys_days;
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month), std::chrono::day(day)};
  if (!date.ok() || year < 1601 || year > 9999) {
    return std::nullopt;
  }
  const sys_days first = std::chrono::year(1601) / 1 / 1;
  return (sys_days(date) - first).count();
}

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_TICKS_H
