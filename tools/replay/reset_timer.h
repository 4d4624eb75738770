// When a host would call ZtResetScore, told by the times of the events.

#ifndef ZT_TOOLS_REPLAY_RESET_TIMER_H
#define ZT_TOOLS_REPLAY_RESET_TIMER_H

#include <cstdint>
#include <optional>
#include <vector>

namespace replay {

/// A periodic timer that runs on event time. It starts with the first event and ticks every interval after it.
class ResetTimer {
 public:
  /// REQUIRES: interval_ticks > 0, in 100 ns.
  explicit ResetTimer(std::int64_t interval_ticks) : interval_(interval_ticks) {}

  /// The ticks that pass before an event at `time`, oldest first. Of a gap of many intervals only the last two: with no event
  /// between them, two resets leave what any number of them leaves, since an exited process outlives just one of them.
  std::vector<std::int64_t> Advance(std::int64_t time);

 private:
  std::int64_t interval_;
  std::optional<std::int64_t> last_;  ///< The last tick, at first the first event's time.
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_RESET_TIMER_H
