#include "platform/clock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>

namespace zt {
namespace {

TEST(ClockTest, SteadyClockAdvancesAndNeverStepsBack) {
  const std::int64_t start = SteadyNanoseconds();
  std::int64_t last = start;
  while (last == start) {
    const std::int64_t now = SteadyNanoseconds();
    ASSERT_GE(now, last);
    last = now;
  }
}

TEST(ClockTest, PerformanceCounterIsTheSteadyClockInTicks) {
  const auto to_nanoseconds = [](std::int64_t ticks) {
    return static_cast<long double>(ticks) * 1e9L / static_cast<long double>(PerformanceFrequency());
  };
  const std::int64_t before = PerformanceCounter();
  const std::int64_t steady = SteadyNanoseconds();
  const std::int64_t after = PerformanceCounter();
  EXPECT_GE(static_cast<long double>(steady), to_nanoseconds(before) - 1);
  EXPECT_LE(static_cast<long double>(steady), to_nanoseconds(after) + 1);
}

TEST(ClockTest, FileTimeIsTheSystemsTime) {
  using Units = std::chrono::duration<std::int64_t, std::ratio<1, 10000000>>;
  const auto unix_units = [] {
    return std::chrono::duration_cast<Units>(std::chrono::system_clock::now().time_since_epoch()).count();
  };
  constexpr std::int64_t kFrom1601To1970 = 116444736000000000;
  constexpr std::int64_t kSecond = 10000000;  // The two may read clocks of different grain.
  const std::int64_t before = unix_units();
  const auto file_time = static_cast<std::int64_t>(FileTimeNow());
  const std::int64_t after = unix_units();
  EXPECT_GE(file_time, kFrom1601To1970 + before - kSecond);
  EXPECT_LE(file_time, kFrom1601To1970 + after + kSecond);
}

TEST(ClockTest, UptimeIsTheSystems) {
  // The steady clock tells that the second reading comes no more than its own measure later.
  const std::int64_t steady_before = SteadyNanoseconds();
  const std::uint32_t before = SystemUptimeMilliseconds();
  std::uint32_t after = before;
  while (after == before) {
    after = SystemUptimeMilliseconds();
  }
  const std::int64_t passed_ms = (SteadyNanoseconds() - steady_before) / 1000000;
  EXPECT_LE(std::int64_t{after - before}, passed_ms + 32);  // Some systems count in steps of 16 ms.
  EXPECT_GT(before, 0u);
}

TEST(ClockTest, LocalTimeAgreesWithTheCLibrary) {
  // Winter and summer, a leap day, the first and last second of a year, and beyond 2038.
  for (const std::int64_t seconds : {1752571463LL, 1736899200LL, 1709210096LL, 1735689599LL, 1735689600LL, 4102444800LL}) {
    const auto time = static_cast<std::time_t>(seconds);
    const std::tm* const expected = std::localtime(&time);
    ASSERT_NE(expected, nullptr);
    EXPECT_EQ(ToLocalTime(seconds), (LocalTime{expected->tm_year + 1900, expected->tm_mon + 1, expected->tm_mday,
                                               expected->tm_hour, expected->tm_min, expected->tm_sec}))
        << seconds;
  }
}

}  // namespace
}  // namespace zt
