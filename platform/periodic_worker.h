// One function of the library, called again and again in the background.

#ifndef ZT_PLATFORM_PERIODIC_WORKER_H
#define ZT_PLATFORM_PERIODIC_WORKER_H

#include <cstdint>

namespace zt {

/// There is one worker in a process. Start and stop it from one thread at a time.
///
/// On Windows the ticks are callbacks of a timer of the system's thread pool. A thread of the library's own would not do: the
/// library is freed under the loader lock, which a thread needs for its first and its last steps, so whoever waits for its end
/// there waits for ever. Elsewhere the worker is a thread that waits for a condition.
///
/// Calls `tick` after `period_ms` milliseconds, and again that long after each return of it, never twice at a time. `tick` must
/// not need the loader lock. Returns false when the system has no means for it. REQUIRES: no worker is started.
bool StartPeriodicWorker(std::uint32_t period_ms, void (*tick)());

/// Ends the worker: no tick runs, and none will, when this returns; but called from within a tick it returns while that one
/// runs. Nothing when none is started. REQUIRES: the caller holds no lock that a tick takes.
void StopPeriodicWorker();

/// For a crash: has no tick begin from now on, and waits for one that runs, but for so many milliseconds at most. Called from
/// within a tick it does not wait. Takes no lock and ends nothing: StopPeriodicWorker is still to be called before the library
/// is unloaded. Nothing when no worker is started.
void HaltPeriodicWorker(std::uint32_t patience_ms);

/// Forgets the worker without waiting. For a process whose other threads the system has ended already, maybe in the middle of a
/// tick, which will then never return.
void AbandonPeriodicWorker();

}  // namespace zt

#endif  // ZT_PLATFORM_PERIODIC_WORKER_H
