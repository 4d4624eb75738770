// The progress line of a long replay.

#ifndef ZT_TOOLS_REPLAY_PROGRESS_H
#define ZT_TOOLS_REPLAY_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "tools/replay/input/byte_source.h"
#include "tools/replay/results_writer.h"

namespace replay {

/// The line: "42 % of 1.0 GiB, 123456 events, 98765 events per second". `total` 0: not known, then the amount read stands
/// alone.
std::string ProgressText(std::uint64_t consumed, std::uint64_t total, std::uint64_t events, double seconds);

/// Keeps one line up to date on a terminal, from the moment that a replay has run for a second.
class Progress {
 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  /// `source` must outlive this object. `sink` gets the line with the control sequences around it.
  Progress(const ByteSource& source, ByteSink sink, Clock clock = std::chrono::steady_clock::now);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  /// Takes the line away.
  ~Progress();

  /// Tells how many events have been fed. Cheap: looks at the clock only now and then.
  void Tell(std::uint64_t events);

 private:
  const ByteSource& source_;
  ByteSink sink_;
  Clock clock_;
  std::chrono::steady_clock::time_point start_;
  std::chrono::steady_clock::time_point next_;
  bool shown_ = false;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_PROGRESS_H
