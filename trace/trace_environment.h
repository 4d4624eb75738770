// What the trace library asks of the system. Tests put their own in its place.

#ifndef ZT_TRACE_TRACE_ENVIRONMENT_H
#define ZT_TRACE_TRACE_ENVIRONMENT_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/clock.h"
#include "platform/console.h"
#include "platform/crash_filter.h"
#include "platform/debugger.h"
#include "platform/file_system.h"
#include "platform/periodic_worker.h"
#include "platform/process_ids.h"
#include "platform/settings_store.h"

namespace zt {

/// Plain functions, so that the library's state needs no construction and can be used before and after all other objects live.
/// All may be called from any thread; the writing ones are called under the trace lock.
struct TraceEnvironment {
  std::uint64_t (*file_time_now)() = &FileTimeNow;
  LocalTime (*to_local_time)(std::int64_t unix_seconds) = &ToLocalTime;
  std::int64_t (*performance_counter)() = &PerformanceCounter;
  std::uint32_t (*process_id)() = &CurrentProcessId;
  std::uint32_t (*thread_id)() = &CurrentThreadId;
  void (*write_console)(std::string_view text) = &WriteConsoleText;
  SavedConsoleColor (*set_console_color)(ConsoleColor color) = &SetConsoleColor;
  void (*restore_console_color)(SavedConsoleColor saved) = &RestoreConsoleColor;
  void (*write_debugger)(std::string_view text) = &WriteDebuggerText;
  void (*write_console_in_crash)(std::string_view text) = &WriteConsoleTextInCrash;
  void (*write_debugger_in_crash)(std::string_view text) = &WriteDebuggerTextInCrash;

  std::int64_t (*performance_frequency)() = &PerformanceFrequency;
  std::uint32_t (*uptime_milliseconds)() = &SystemUptimeMilliseconds;
  std::size_t (*executable_path)(char* buffer, std::size_t size) = &ExecutablePath;
  void (*read_settings)(const char* key, std::span<NumberSetting> settings) = &ReadNumberSettings;
  bool (*start_worker)(std::uint32_t period_ms, void (*tick)()) = &StartPeriodicWorker;
  void (*stop_worker)() = &StopPeriodicWorker;
  void (*halt_worker)(std::uint32_t patience_ms) = &HaltPeriodicWorker;
  void (*prepare_thread_for_crashes)() = &PrepareThreadForCrashes;
  void (*install_crash_filter)(CrashHandler handler) = &InstallCrashFilter;
  void (*remove_crash_filter)() = &RemoveCrashFilter;
  void (*write_crash_dump)(const char* path, const CrashDetails& details) = &WriteCrashDump;
};

inline constexpr TraceEnvironment kSystemEnvironment;

}  // namespace zt

#endif  // ZT_TRACE_TRACE_ENVIRONMENT_H
