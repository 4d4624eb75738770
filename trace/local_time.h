// Local time, also where the system cannot be asked for it.
//
// The system's conversion takes a lock, and a thread that crashed in the middle of it holds that lock for ever. So the offset
// from UTC is noted while all is well, and in a crash local time is reckoned from it.

#ifndef ZT_TRACE_LOCAL_TIME_H
#define ZT_TRACE_LOCAL_TIME_H

#include <cstdint>

#include "trace/trace_environment.h"

namespace zt {

/// Notes by how much local time is ahead of UTC at present. What was noted stays where the system does not know the time.
void NoteUtcOffset(const TraceEnvironment& environment);

/// Seconds since 1 January 1970 UTC to local calendar time, by the offset that was noted last: UTC where none was. Safe in a
/// crash.
LocalTime LocalTimeByNotedOffset(std::int64_t unix_seconds);

/// The same by the system's conversion, but in a crash by the noted offset.
LocalTime TraceLocalTime(const TraceEnvironment& environment, std::int64_t unix_seconds);

}  // namespace zt

#endif  // ZT_TRACE_LOCAL_TIME_H
