// The times of Process Monitor's rows, as every locale writes them.

#ifndef ZT_TOOLS_REPLAY_INPUT_PROCMON_CLOCK_H
#define ZT_TOOLS_REPLAY_INPUT_PROCMON_CLOCK_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace replay {

/// A time of day. A spreadsheet that saved the capture again cuts the hours off ("44:57.9").
struct ClockTime {
  std::optional<unsigned> hours;
  std::int64_t ticks_in_hour = 0;
  bool has_designator = false;  ///< AM or PM in some language.
};

/// Reads "7:21:49.0877812 AM", "16:53:03,6001516", "16.53.03,6001516", "7:21", "44:57.9" and their kin with an AM or PM of
/// other languages, before or behind. Throws RowError.
ClockTime ParseClockTime(std::string_view text);

/// Turns the time columns of row after row into event times.
///
/// With a date ("Date & Time") these are ticks since 1601 in the local time of the viewer, whose zone a capture does not tell;
/// without one, ticks since the midnight before the first row. Then a day is added when the time falls by more than 12 hours.
/// Where the hours are cut off and no date tells them, an hour is added when the time falls by more than half an hour, and
/// smaller steps back count as no step, for only the order of the rows is certain. Without any time column each row is a tick
/// later.
///
/// "7/12/2020" and "12/7/2020" may be the same day. A part above 12 is the day; until one is seen, a date with slashes and an
/// AM or PM behind has the month first, any other the day.
class RowClock {
 public:
  /// The columns; empty where the capture lacks one. Throws RowError.
  std::int64_t Next(std::string_view time_of_day, std::string_view date_and_time, std::string_view relative_time);

 private:
  enum class Order { kUnknown, kDayFirst, kMonthFirst };

  // Reads the date in front of `text` and removes it; gives its days since 1601.
  std::int64_t TakeDate(std::string_view& text);
  [[nodiscard]] std::int64_t DatedTicks(std::string_view time_of_day, std::string_view date_and_time);
  [[nodiscard]] std::int64_t UndatedTicks(const ClockTime& clock);

  Order order_ = Order::kUnknown;
  std::int64_t last_ = -1;  // The last time given; -1 before the first.
  std::int64_t base_ = 0;   // Added to undated times: whole days, or whole hours where these are cut off.
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_PROCMON_CLOCK_H
