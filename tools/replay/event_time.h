// Event times for people.

#ifndef ZT_TOOLS_REPLAY_EVENT_TIME_H
#define ZT_TOOLS_REPLAY_EVENT_TIME_H

#include <cstdint>
#include <string>

namespace replay {

/// Event time ticks (100 ns) in a second.
inline constexpr std::int64_t kTicksPerSecond = 10'000'000;

/// `ticks` for people. From the year 2000 on, counted from 1601 as hosts on Windows count, it is a date:
/// "2024-05-01 12:34:56.789 UTC". Other clocks start anywhere, so smaller values stay a number: "15000000 ticks (1.500 s)".
std::string FormatEventTime(std::int64_t ticks);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_EVENT_TIME_H
