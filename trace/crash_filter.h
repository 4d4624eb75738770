// What the library does when the process crashes: it stops, so that the last lines reach the file, and leaves a dump.

#ifndef ZT_TRACE_CRASH_FILTER_H
#define ZT_TRACE_CRASH_FILTER_H

#include "platform/crash_filter.h"

namespace zt {

/// Stops the trace library and writes a dump of the process beside its executable: "host.exe [1234.5678] 2025-07-15
/// 09.24.23.dmp" with process id, thread id and local time. Runs on the thread that crashed and uses no heap, which may be what
/// is broken, and waits without a limit for nothing. With kTraceInfo the executable's path is printed first.
void TraceCrashFilter(const CrashDetails& details);

/// Installs the filter if TraceFlags asks for it, removes whatever filter is installed if it does not.
void TraceMatchCrashFilter();

}  // namespace zt

#endif  // ZT_TRACE_CRASH_FILTER_H
