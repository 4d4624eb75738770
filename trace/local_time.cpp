#include "trace/local_time.h"

#include "platform/calendar.h"
#include "trace/trace_state.h"

namespace zt {

void NoteUtcOffset(const TraceEnvironment& environment) {
  const auto now = static_cast<std::int64_t>((environment.file_time_now() - kUnixEpochAsFileTime) / kFileTimePerSecond);
  const LocalTime local = environment.to_local_time(now);
  if (local != LocalTime{}) {
    SharedTraceState().utc_offset = SecondsUntil(local) - now;
  }
}

LocalTime LocalTimeByNotedOffset(std::int64_t unix_seconds) {
  return CalendarTime(unix_seconds + SharedTraceState().utc_offset);
}

LocalTime TraceLocalTime(const TraceEnvironment& environment, std::int64_t unix_seconds) {
  return SharedTraceState().in_crash ? LocalTimeByNotedOffset(unix_seconds) : environment.to_local_time(unix_seconds);
}

}  // namespace zt
