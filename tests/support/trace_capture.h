// Catches what the trace library writes, line by line.

#ifndef ZT_TESTS_SUPPORT_TRACE_CAPTURE_H
#define ZT_TESTS_SUPPORT_TRACE_CAPTURE_H

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace zt::testing {

/// One line that was traced.
struct TraceLine {
  std::int32_t line = 0;  ///< The source line it was written with.
  std::string level;      ///< The level word, e.g. "debug"; may be empty.
  std::string message;    ///< The message without prefix and without the closing line end.

  friend bool operator==(const TraceLine&, const TraceLine&) = default;
  friend std::ostream& operator<<(std::ostream& out, const TraceLine& traced) {
    return out << "[" << traced.line << " " << traced.level << "] " << traced.message;
  }
};

/// While it lives, the trace library is started with the given flag bits (of 0x1, 0x2, 0x4) and every line lands here instead
/// of in a log file. One at a time in a process.
class TraceCapture {
 public:
  explicit TraceCapture(std::uint64_t flags);
  ~TraceCapture();
  TraceCapture(const TraceCapture&) = delete;
  TraceCapture& operator=(const TraceCapture&) = delete;

  /// The lines since the last call.
  std::vector<TraceLine> Take();
  /// Their messages alone.
  std::vector<std::string> TakeMessages();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace zt::testing

#endif  // ZT_TESTS_SUPPORT_TRACE_CAPTURE_H
