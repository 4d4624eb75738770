#include "platform/clock.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>
#include <optional>
#include <string>

namespace zt {
namespace {

// Puts the process into a time zone for the length of a test.
class TimeZoneTest : public ::testing::Test {
 protected:
  TimeZoneTest() {
    if (const char* const zone = std::getenv("TZ"); zone != nullptr) {
      saved_ = zone;
    }
  }
  ~TimeZoneTest() override {
    if (saved_.has_value()) {
      setenv("TZ", saved_->c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }
  static void UseZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }

 private:
  std::optional<std::string> saved_;
};

TEST_F(TimeZoneTest, UniversalTime) {
  UseZone("UTC0");
  EXPECT_EQ(ToLocalTime(0), (LocalTime{1970, 1, 1, 0, 0, 0}));
  EXPECT_EQ(ToLocalTime(1752571463), (LocalTime{2025, 7, 15, 9, 24, 23}));
}

TEST_F(TimeZoneTest, ZoneWithSummerTime) {
  UseZone("CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(ToLocalTime(1752571463), (LocalTime{2025, 7, 15, 11, 24, 23}));
  EXPECT_EQ(ToLocalTime(1736899200), (LocalTime{2025, 1, 15, 1, 0, 0}));
}

TEST_F(TimeZoneTest, TimeThatHasNoCalendarDateIsAllZero) {
  UseZone("UTC0");
  EXPECT_EQ(ToLocalTime(std::numeric_limits<std::int64_t>::max()), LocalTime{});
}

}  // namespace
}  // namespace zt
