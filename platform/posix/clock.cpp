#include "platform/clock.h"

#include <ctime>

namespace zt {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1000000000;

timespec Read(clockid_t clock) {
  timespec now = {};
  clock_gettime(clock, &now);
  return now;
}

}  // namespace

std::int64_t SteadyNanoseconds() {
  const timespec now = Read(CLOCK_MONOTONIC);
  return static_cast<std::int64_t>(now.tv_sec) * kNanosecondsPerSecond + now.tv_nsec;
}

std::int64_t PerformanceCounter() { return SteadyNanoseconds(); }

std::int64_t PerformanceFrequency() { return kNanosecondsPerSecond; }

std::uint32_t SystemUptimeMilliseconds() {
#if defined(CLOCK_BOOTTIME)
  const timespec now = Read(CLOCK_BOOTTIME);
#else
  const timespec now = Read(CLOCK_MONOTONIC);
#endif
  return static_cast<std::uint32_t>(static_cast<std::uint64_t>(now.tv_sec) * 1000 +
                                    static_cast<std::uint64_t>(now.tv_nsec) / 1000000);
}

std::uint64_t FileTimeNow() {
  const timespec now = Read(CLOCK_REALTIME);
  return kUnixEpochAsFileTime + static_cast<std::uint64_t>(now.tv_sec) * kFileTimePerSecond +
         static_cast<std::uint64_t>(now.tv_nsec) / 100;
}

LocalTime ToLocalTime(std::int64_t unix_seconds) {
  const std::time_t seconds = unix_seconds;
  std::tm local = {};
  if (localtime_r(&seconds, &local) == nullptr) {
    return {};
  }
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

}  // namespace zt
