#include "tools/replay/input/procmon_clock.h"

#include <gtest/gtest.h>

#include "tools/replay/input/row_error.h"

namespace replay {
namespace {

constexpr std::int64_t kSecond = 10'000'000;
constexpr std::int64_t kMinute = 60 * kSecond;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

constexpr std::int64_t At(int hours, int minutes, int seconds, int ticks = 0) {
  return hours * kHour + minutes * kMinute + seconds * kSecond + ticks;
}

struct TimeCase {
  int line;
  const char* text;
  std::int64_t ticks;
};

TEST(ProcmonClockTest, TimesOfEveryLocale) {
  const TimeCase cases[] = {
      {__LINE__, "7:21:49.0877812 AM", At(7, 21, 49, 877812)},  // English (US)
      {__LINE__, "16:53:03,6001516", At(16, 53, 3, 6001516)},   // Polish, Spanish, Russian
      {__LINE__, "16.53.03,6001516", At(16, 53, 3, 6001516)},   // Finnish
      {__LINE__, "12:00:00.0000001 AM", At(0, 0, 0, 1)},
      {__LINE__, "12:00:00.0000000 PM", At(12, 0, 0)},
      {__LINE__, "11:59:59.9999999 PM", At(23, 59, 59, 9999999)},
      {__LINE__, "1:05:06.5000000\u202FPM", At(13, 5, 6, 5000000)},        // Newer systems: narrow no-break space
      {__LINE__, "1:05:06,5000000 p.\u00A0m.", At(13, 5, 6, 5000000)},     // Spanish (Mexico)
      {__LINE__, "7:21:49,0877812 \u03BC\u03BC", At(19, 21, 49, 877812)},  // Greek
      {__LINE__, "\u4E0B\u5348 7:21:49.0877812", At(19, 21, 49, 877812)},  // Chinese
      {__LINE__, "\uC624\uC804 7:21:49.0877812", At(7, 21, 49, 877812)},   // Korean
      {__LINE__, "00:00:01.6986769", At(0, 0, 1, 6986769)},
      {__LINE__, "7:21:49 AM", At(7, 21, 49)},
      {__LINE__, "7:21 AM", At(7, 21, 0)},
      {__LINE__, "16:53:03,6", At(16, 53, 3, 6000000)},
      {__LINE__, "16:53:03,60015169", At(16, 53, 3, 6001516)},
  };
  for (const TimeCase& c : cases) {
    EXPECT_EQ(RowClock().Next(c.text, "", ""), c.ticks) << "line " << c.line;
  }
}

TEST(ProcmonClockTest, WhatIsNoTimeIsAnError) {
  for (const char* text : {"x", "7", "24:00:00.0", "7:60:00.0 AM", "7:21:60.0 AM", "7-21-49", "7:21:49.0877812 XM", "7::21:49",
                           "7:21:49.08.77 AM", "7:21:49.1:2 AM", "99999999999:21:49"}) {
    EXPECT_THROW(RowClock().Next(text, "", ""), RowError) << text;
  }
}

TEST(ProcmonClockTest, PastMidnightADayIsAdded) {
  RowClock clock;
  EXPECT_EQ(clock.Next("11:59:59.0000000 PM", "", ""), At(23, 59, 59));
  EXPECT_EQ(clock.Next("12:00:01.0000000 AM", "", ""), kDay + At(0, 0, 1));
  EXPECT_EQ(clock.Next("11:00:00.0000000 PM", "", ""), kDay + At(23, 0, 0));
  EXPECT_EQ(clock.Next("1:00:00.0000000 AM", "", ""), 2 * kDay + At(1, 0, 0));
}

TEST(ProcmonClockTest, ASmallStepBackIsKept) {
  RowClock clock;
  EXPECT_EQ(clock.Next("16:53:03,5", "", ""), At(16, 53, 3, 5000000));
  EXPECT_EQ(clock.Next("16:53:03,4", "", ""), At(16, 53, 3, 4000000));
}

TEST(ProcmonClockTest, ADateGivesTicksSince1601) {
  // 153,229 days lie between 1 January 1601 and 12 July 2020.
  EXPECT_EQ(RowClock().Next("1:18:10.7752429 AM", "7/12/2020 1:18:10 AM", ""), 132389902907752429);
  EXPECT_EQ(RowClock().Next("", "7/12/2020 1:18:10 AM", ""), 132389902900000000);
  EXPECT_EQ(RowClock().Next("16:53:03,6001516", "12.07.2020 16:53:03", ""), 132390463836001516);
  EXPECT_EQ(RowClock().Next("1:59:59,0000000", "01/01/1601 1:59:59", ""), At(1, 59, 59));
}

TEST(ProcmonClockTest, DatesOfEveryLocale) {
  const TimeCase cases[] = {
      {__LINE__, "7/12/2020 1:18:00 AM", 153229},             // English (US)
      {__LINE__, "12/07/2020 1:18:00", 153229},               // Spanish
      {__LINE__, "13/07/2020 1:18:00 am", 153230},            // English (Australia)
      {__LINE__, "12.07.2020 1:18:00", 153229},               // Polish, Russian
      {__LINE__, "12-07-2020 1:18:00", 153229},               // Dutch
      {__LINE__, "2020-07-12 1:18:00", 153229},               // Swedish
      {__LINE__, "12. 7. 2020 1:18:00", 153229},              // Czech
      {__LINE__, "2020. 07. 12. 1:18:00", 153229},            // Hungarian
      {__LINE__, "12.07.20 1:18:00", 153229},                 // Two digits of the year
      {__LINE__, "2020-07-12 \uC624\uC804 1:18:00", 153229},  // Korean
  };
  for (const TimeCase& c : cases) {
    EXPECT_EQ(RowClock().Next("", c.text, ""), c.ticks * kDay + At(1, 18, 0)) << "line " << c.line;
  }
}

TEST(ProcmonClockTest, TheOrderOfDayAndMonthStaysOnceItIsKnown) {
  RowClock clock;
  EXPECT_EQ(clock.Next("", "1/13/2020 1:00:00", ""), 153048 * kDay + kHour);  // No thirteenth month.
  EXPECT_EQ(clock.Next("", "7/12/2020 1:00:00", ""), 153229 * kDay + kHour);
}

TEST(ProcmonClockTest, WhatIsNoDateIsAnError) {
  for (const char* text : {"x", "7/12", "13/13/2020 1:00:00", "31.06.2020 1:00:00", "0/1/2020 1:00:00", "1/1/1600 1:00:00"}) {
    EXPECT_THROW(RowClock().Next("", text, ""), RowError) << text;
  }
}

// A spreadsheet keeps minutes, seconds and tenths.
TEST(ProcmonClockTest, CutTimesKeepTheOrderOfTheRows) {
  RowClock clock;
  EXPECT_EQ(clock.Next("44:57.9", "", ""), At(0, 44, 57, 9000000));
  EXPECT_EQ(clock.Next("44:57.9", "", ""), At(0, 44, 57, 9000000));
  EXPECT_EQ(clock.Next("44:57.8", "", ""), At(0, 44, 57, 9000000));  // Never back.
  EXPECT_EQ(clock.Next("59:59.9", "", ""), At(0, 59, 59, 9000000));
  EXPECT_EQ(clock.Next("00:00.1", "", ""), At(1, 0, 0, 1000000));
}

TEST(ProcmonClockTest, ADateTellsTheHourOfACutTime) {
  EXPECT_EQ(RowClock().Next("18:10.8", "12.07.2020 13:18", ""), 153229 * kDay + At(13, 18, 10, 8000000));
}

TEST(ProcmonClockTest, TheRelativeTimeServesWhereNoOtherIsShown) {
  EXPECT_EQ(RowClock().Next("", "", "00:00:01.6986769"), At(0, 0, 1, 6986769));
}

TEST(ProcmonClockTest, WithoutAnyTimeRowsAreATickApart) {
  RowClock clock;
  EXPECT_EQ(clock.Next("", "", ""), 0);
  EXPECT_EQ(clock.Next("", "", ""), 1);
}

}  // namespace
}  // namespace replay
