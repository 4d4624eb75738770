// The steps of the trace library's life: unstarted, started, unstarted. trace/library.h puts them together for hosts.
//
// TraceBringUp and TraceTakeDown are made of steps, because what belongs to the start of a log file stands between them: the
// state is made, then files are chosen, then the library counts as started; and it is emptied under the lock, then helpers are
// ended without the lock, then the lock goes.
//
// The lock outlives a stop while other threads are printing. Each print counts itself in TraceState::lock_users before it looks
// at `started`; a stop clears `started` before it looks at the count. A stop that finds a user leaves the lock initialised,
// and the next start takes it as it is. Nobody waits, so a thread that broke off in the middle of a print cannot block the
// stop.

#ifndef ZT_TRACE_START_STOP_H
#define ZT_TRACE_START_STOP_H

#include <cstdint>

#include "trace/append_stream.h"

namespace zt {

/// The name that this library's lines carry.
inline constexpr const char kTraceModuleName[] = "zteng";

/// Brings the library up with these flag bits: TraceOpenState, TraceMarkStarted, TraceMatchRing. False, and nothing is done,
/// when it is started already. As for all functions here that start or stop, one thread at a time.
bool TraceBringUp(std::uint64_t flags, AppendStream* stream);

/// Takes the library down: TraceCloseState, TraceMarkStopped. Pending lines are written first. Nothing when it is not started.
void TraceTakeDown();

/// Makes the lock and stores flags, module name and log file (not owned; null for none). Prints still do nothing.
/// REQUIRES: the library is not started.
void TraceOpenState(std::uint64_t flags, AppendStream* stream);

/// From here on prints are written. REQUIRES: TraceOpenState was called.
void TraceMarkStarted();

/// Makes the memory ring if TraceFlags asks for it and it is missing; frees it if TraceFlags does not. Without memory there is
/// no ring. Takes the lock. REQUIRES: TraceOpenState was called.
void TraceMatchRing();

/// Writes what is pending, closes the log file, frees the ring, clears flags, settings and module name. Takes the
/// lock.
/// REQUIRES: the library is started.
void TraceCloseState();

/// TraceCloseState without the ring, which stays as it is.
void TraceCloseStateButRing();

/// Prints do nothing from here on. Ends the lock. REQUIRES: the calling thread does not hold the lock.
void TraceMarkStopped();

}  // namespace zt

#endif  // ZT_TRACE_START_STOP_H
