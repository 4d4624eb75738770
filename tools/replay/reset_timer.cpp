#include "tools/replay/reset_timer.h"

namespace replay {

std::vector<std::int64_t> ResetTimer::Advance(std::int64_t time) {
  if (!last_) {
    last_ = time;
  }
  if (time <= *last_) {
    return {};
  }
  // Unsigned, because the distance between two signed times need not be a signed number.
  const std::uint64_t passed = static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(*last_);
  const std::uint64_t count = passed / static_cast<std::uint64_t>(interval_);
  if (count == 0) {
    return {};
  }
  const std::uint64_t distance = count * static_cast<std::uint64_t>(interval_);
  last_ = static_cast<std::int64_t>(static_cast<std::uint64_t>(*last_) + distance);
  if (count == 1) {
    return {*last_};
  }
  return {*last_ - interval_, *last_};
}

}  // namespace replay
