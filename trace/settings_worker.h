// What the library does in the background: it closes the log file while nobody prints, and follows the settings.

#ifndef ZT_TRACE_SETTINGS_WORKER_H
#define ZT_TRACE_SETTINGS_WORKER_H

#include <cstdint>

namespace zt {

/// Milliseconds between two calls of TraceSettingsWorker.
inline constexpr std::uint32_t kWorkerPeriodMs = 300;
/// Milliseconds without a print after which the log file is closed.
inline constexpr std::int64_t kIdleMs = 100;
/// Milliseconds between two looks at the settings, at least.
inline constexpr std::int64_t kSettingsPeriodMs = 11000;

/// Makes the period of looks at the settings begin now. Called before the worker is started.
void TraceBeginSettingsPeriod();

/// One tick of the worker: writes what is pending and closes the file when nobody printed lately; notes the offset of local
/// time from UTC when the crash filter may want it; then, when it is time to, reads the settings and does what changed ones
/// want. With file output switched off the log files are deleted. One thread at a time; takes the trace lock.
void TraceSettingsWorker();

}  // namespace zt

#endif  // ZT_TRACE_SETTINGS_WORKER_H
