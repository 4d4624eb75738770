// Clocks and calendar time.

#ifndef ZT_PLATFORM_CLOCK_H
#define ZT_PLATFORM_CLOCK_H

#include <cstdint>

namespace zt {

/// Nanoseconds of a clock that never steps back; its start is arbitrary.
std::int64_t SteadyNanoseconds();

/// Ticks of the system's finest steady counter. Cheaper to read than to convert: a reader divides by PerformanceFrequency.
std::int64_t PerformanceCounter();

/// Ticks of PerformanceCounter in a second; never 0 and the same for as long as the system runs.
std::int64_t PerformanceFrequency();

/// 1 January 1970 UTC in 100 ns units since 1 January 1601 UTC.
inline constexpr std::uint64_t kUnixEpochAsFileTime = 116444736000000000;
/// 100 ns units in a second.
inline constexpr std::uint64_t kFileTimePerSecond = 10000000;

/// Milliseconds since the system was started; wraps to 0 after 2^32 of them, some 49 days.
std::uint32_t SystemUptimeMilliseconds();

/// Current time in 100 ns units since 1 January 1601 UTC, as precise as the system gives it.
std::uint64_t FileTimeNow();

/// A time of day in the local time zone.
struct LocalTime {
  int year = 0;    ///< e.g. 2025
  int month = 0;   ///< 1 to 12
  int day = 0;     ///< 1 to 31
  int hour = 0;    ///< 0 to 23
  int minute = 0;  ///< 0 to 59
  int second = 0;  ///< 0 to 60

  friend bool operator==(const LocalTime&, const LocalTime&) = default;
};

/// Seconds since 1 January 1970 UTC to local calendar time; all zero when the system cannot convert it.
LocalTime ToLocalTime(std::int64_t unix_seconds);

}  // namespace zt

#endif  // ZT_PLATFORM_CLOCK_H
