// Short ways to write calls for tests.

#ifndef ZT_TESTS_TOOLS_CALLS_H
#define ZT_TESTS_TOOLS_CALLS_H

#include <cstdint>
#include <string>
#include <string_view>

#include "tests/support/events.h"
#include "tools/replay/input/call.h"

namespace replay::testing {

/// A ZtInsertLog of `record` at event time `time`.
inline Call Insert(std::uint64_t number, LOG_ITEM record, std::int64_t time) {
  Call call;
  call.number = number;
  call.record = record;
  call.record.Time = time;
  return call;
}

/// A call that takes a process id, and for kUpdateScore a value.
inline Call OnProcess(CallKind kind, std::uint64_t number, std::uint64_t pid, std::int32_t value = 0) {
  Call call;
  call.kind = kind;
  call.number = number;
  call.pid = pid;
  call.value = value;
  return call;
}

inline Call Reset(std::uint64_t number, std::int64_t now, std::int64_t score_age_limit) {
  Call call;
  call.kind = CallKind::kResetScore;
  call.number = number;
  call.now = now;
  call.score_age_limit = score_age_limit;
  return call;
}

/// Gathers what a writer writes.
class Sink {
 public:
  [[nodiscard]] auto Take() {
    return [this](std::string_view bytes) { text += bytes; };
  }
  std::string text;
};

}  // namespace replay::testing

#endif  // ZT_TESTS_TOOLS_CALLS_H
