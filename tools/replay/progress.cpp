#include "tools/replay/progress.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>

namespace replay {
namespace {

using namespace std::chrono_literals;

constexpr std::uint64_t kEventsBetweenLooks = 1024;
constexpr const char* kClearLine = "\r\x1b[K";

std::string Amount(std::uint64_t bytes) {
  constexpr std::array<const char*, 4> kUnits = {"KiB", "MiB", "GiB", "TiB"};
  constexpr double kStep = 1024;
  double amount = static_cast<double>(bytes) / kStep;
  std::size_t unit = 0;
  for (; amount >= kStep && unit + 1 < kUnits.size(); ++unit) {
    amount /= kStep;
  }
  return fmt::format("{:.1f} {}", amount, kUnits.at(unit));
}

}  // namespace

std::string ProgressText(std::uint64_t consumed, std::uint64_t total, std::uint64_t events, double seconds) {
  const std::string share =
      total == 0
          ? Amount(consumed)
          : fmt::format("{:.0f} % of {}", 100 * static_cast<double>(consumed) / static_cast<double>(total), Amount(total));
  return fmt::format("{}, {} events, {:.0f} events per second", share, events,
                     seconds > 0 ? static_cast<double>(events) / seconds : 0);
}

Progress::Progress(const ByteSource& source, ByteSink sink, Clock clock)
    : source_(source), sink_(std::move(sink)), clock_(std::move(clock)), start_(clock_()), next_(start_ + 1s) {}

Progress::~Progress() {
  if (shown_) {
    sink_(kClearLine);
  }
}

void Progress::Tell(std::uint64_t events) {
  if (events % kEventsBetweenLooks != 0) {
    return;
  }
  const auto now = clock_();
  if (now < next_) {
    return;
  }
  next_ = now + 200ms;
  shown_ = true;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  sink_(kClearLine + ProgressText(source_.consumed(), source_.total(), events, seconds));
}

}  // namespace replay
