#include "tools/replay/event_time.h"

#include <fmt/format.h>

#include <chrono>
#include <ratio>

namespace replay {
namespace {

using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, kTicksPerSecond>>;

constexpr std::chrono::sys_days kFirstDay = std::chrono::year(1601) / std::chrono::January / 1;
constexpr Ticks kYear2000 = std::chrono::sys_days(std::chrono::year(2000) / std::chrono::January / 1) - kFirstDay;

}  // namespace

std::string FormatEventTime(std::int64_t ticks) {
  const Ticks since_first_day(ticks);
  if (since_first_day < kYear2000) {
    return fmt::format("{} ticks ({:.3f} s)", ticks, std::chrono::duration<double>(since_first_day).count());
  }
  const auto days = std::chrono::floor<std::chrono::days>(since_first_day);
  const std::chrono::year_month_day date(kFirstDay + days);
  const std::chrono::hh_mm_ss time(std::chrono::floor<std::chrono::milliseconds>(since_first_day - days));
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}.{:03} UTC", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), time.hours().count(),
                     time.minutes().count(), time.seconds().count(), time.subseconds().count());
}

}  // namespace replay
