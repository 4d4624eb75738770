#include "tools/replay/input/procmon_clock.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

#include "tools/replay/input/ascii.h"
#include "tools/replay/input/row_error.h"
#include "tools/replay/input/ticks.h"

namespace replay {
namespace {

// Digits and what stands before them.
struct Group {
  std::string_view before;
  std::string_view digits;
};

// Cuts the first group off; its digits are empty when none are left.
Group TakeGroup(std::string_view& text) {
  const auto* const first = std::find_if(text.begin(), text.end(), IsDigit);
  const auto* const last = std::find_if_not(first, text.end(), IsDigit);
  const Group group = {text.substr(0, static_cast<std::size_t>(first - text.begin())),
                       text.substr(static_cast<std::size_t>(first - text.begin()), static_cast<std::size_t>(last - first))};
  text.remove_prefix(static_cast<std::size_t>(last - text.begin()));
  return group;
}

// A number of few digits; one that is too long for any time is 1,000,000, which no part of a time may be.
unsigned NumberOf(std::string_view digits) {
  unsigned number = 1'000'000;
  if (digits.size() <= 6) {
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
  }
  return number;
}

std::int64_t FractionTicks(std::string_view digits) {
  std::string seven(digits.substr(0, 7));
  seven.resize(7, '0');
  return static_cast<std::int64_t>(std::stoul(seven));
}

// The designator without blanks, full stops and marks of writing direction.
std::string Bare(std::string_view text) {
  constexpr std::array<std::string_view, 7> kDropped = {" ", ".", "\t", "\u00A0", "\u202F", "\u200E", "\u200F"};
  std::string bare;
  while (!text.empty()) {
    const auto* const dropped =
        std::find_if(kDropped.begin(), kDropped.end(), [text](std::string_view mark) { return text.starts_with(mark); });
    if (dropped == kDropped.end()) {
      bare += LowerCase(text.front());
    }
    text.remove_prefix(dropped == kDropped.end() ? 1 : dropped->size());
  }
  return bare;
}

enum class Half { kNone, kMorning, kAfternoon };

std::optional<Half> HalfOf(std::string_view text) {
  // English, Greek, Chinese, Japanese, Korean, Arabic, Persian, Albanian, Vietnamese, Hungarian, Afrikaans.
  constexpr std::array<std::string_view, 11> kMorning = {
      "am", "\u03C0\u03BC", "\u4E0A\u5348", "\u5348\u524D", "\uC624\uC804", "\u0635", "\u0642\u0638", "pd", "sa", "de", "vm"};
  constexpr std::array<std::string_view, 11> kAfternoon = {
      "pm", "\u03BC\u03BC", "\u4E0B\u5348", "\u5348\u5F8C", "\uC624\uD6C4", "\u0645", "\u0628\u0638", "md", "ch", "du", "nm"};
  const std::string bare = Bare(text);
  const auto is = [&bare](std::string_view known) { return bare == known; };
  if (bare.empty()) {
    return Half::kNone;
  }
  if (std::any_of(kMorning.begin(), kMorning.end(), is)) {
    return Half::kMorning;
  }
  if (std::any_of(kAfternoon.begin(), kAfternoon.end(), is)) {
    return Half::kAfternoon;
  }
  return std::nullopt;
}

unsigned HoursOfDay(unsigned hours, Half half) {
  if (half == Half::kMorning && hours == 12) {
    return 0;
  }
  if (half == Half::kAfternoon && hours < 12) {
    return hours + 12;
  }
  return hours;
}

bool IsSeparator(std::string_view text) { return text == ":" || text == "." || text == ","; }

// The parts of a time as they are written: two to four groups and the text around them.
struct ClockParts {
  std::array<Group, 4> groups;
  std::size_t count = 0;
  std::string around;
};

ClockParts SplitClock(std::string_view text) {
  const std::string_view whole = text;
  ClockParts parts;
  while (parts.count < parts.groups.size()) {
    const Group group = TakeGroup(text);
    if (group.digits.empty()) {
      parts.around += group.before;
      break;
    }
    if (parts.count > 0 && !IsSeparator(group.before)) {
      throw RowError("cannot read the time " + Quoted(whole));
    }
    if (parts.count == 0) {
      parts.around = group.before;
    }
    parts.groups[parts.count++] = group;
  }
  parts.around += text;
  if (parts.count < 2) {
    throw RowError("cannot read the time " + Quoted(whole));
  }
  return parts;
}

}  // namespace

ClockTime ParseClockTime(std::string_view text) {
  const ClockParts parts = SplitClock(text);
  const auto& groups = parts.groups;
  const std::optional<Half> half = HalfOf(parts.around);
  // Minutes and seconds are joined by another character than seconds and tenths: the hours are gone.
  const bool cut = parts.count == 3 && groups[1].before != groups[2].before;
  const std::size_t minutes_at = cut ? 0 : 1;
  const unsigned hours = cut ? 0 : NumberOf(groups[0].digits);
  const unsigned minutes = NumberOf(groups[minutes_at].digits);
  const unsigned seconds = parts.count > minutes_at + 1 ? NumberOf(groups[minutes_at + 1].digits) : 0;
  const std::int64_t fraction = parts.count > minutes_at + 2 ? FractionTicks(groups[minutes_at + 2].digits) : 0;
  if (!half || hours > 23 || minutes > 59 || seconds > 59) {
    throw RowError("cannot read the time " + Quoted(text));
  }

  ClockTime clock;
  if (!cut) {
    clock.hours = HoursOfDay(hours, *half);
  }
  clock.ticks_in_hour = (minutes * 60 + seconds) * kTicksPerSecond + fraction;
  clock.has_designator = *half != Half::kNone;
  return clock;
}

std::int64_t RowClock::Next(std::string_view time_of_day, std::string_view date_and_time, std::string_view relative_time) {
  if (!date_and_time.empty()) {
    last_ = DatedTicks(time_of_day, date_and_time);
  } else if (!time_of_day.empty() || !relative_time.empty()) {
    last_ = UndatedTicks(ParseClockTime(time_of_day.empty() ? relative_time : time_of_day));
  } else {
    ++last_;
  }
  return last_;
}

std::int64_t RowClock::DatedTicks(std::string_view time_of_day, std::string_view date_and_time) {
  const std::int64_t day = TakeDate(date_and_time) * kTicksPerDay;
  const bool has_clock = std::any_of(date_and_time.begin(), date_and_time.end(), IsDigit);
  const ClockTime coarse = has_clock ? ParseClockTime(date_and_time) : ClockTime{0, 0, false};
  const ClockTime clock = time_of_day.empty() ? coarse : ParseClockTime(time_of_day);
  const unsigned hours = clock.hours.value_or(coarse.hours.value_or(0));
  return day + hours * kTicksPerHour + clock.ticks_in_hour;
}

std::int64_t RowClock::UndatedTicks(const ClockTime& clock) {
  const std::int64_t period = clock.hours ? kTicksPerDay : kTicksPerHour;
  std::int64_t time = base_ + clock.hours.value_or(0) * kTicksPerHour + clock.ticks_in_hour;
  if (last_ - time > period / 2) {
    base_ += period;
    time += period;
  }
  return clock.hours ? time : std::max(time, last_);
}

std::int64_t RowClock::TakeDate(std::string_view& text) {
  const std::string_view whole = text;
  const Group first = TakeGroup(text);
  const Group second = TakeGroup(text);
  const Group third = TakeGroup(text);
  const unsigned a = NumberOf(first.digits);
  const unsigned b = NumberOf(second.digits);
  const unsigned c = NumberOf(third.digits);
  while (text.starts_with('.') || text.starts_with(',')) {
    text.remove_prefix(1);  // "12. 7. 2020., 16:53"
  }

  std::optional<std::int64_t> days;
  if (first.digits.size() == 4) {
    days = DaysSince1601(static_cast<int>(a), b, c);
  } else {
    const int year = static_cast<int>(third.digits.size() == 2 ? 2000 + c : c);
    if (order_ == Order::kUnknown) {
      const bool american = second.before == "/" && text.find_first_not_of(" 0123456789:.,") != std::string_view::npos;
      order_ = american ? Order::kMonthFirst : Order::kDayFirst;
    }
    if (a > 12) {
      order_ = Order::kDayFirst;
    }
    if (b > 12) {
      order_ = Order::kMonthFirst;
    }
    const bool month_first = order_ == Order::kMonthFirst;
    days = DaysSince1601(year, month_first ? a : b, month_first ? b : a);
  }
  if (!days) {
    throw RowError("cannot read the date " + Quoted(whole));
  }
  return *days;
}

}  // namespace replay
