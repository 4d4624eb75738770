#include "trace/settings_worker.h"

#include "trace/crash_filter.h"
#include "trace/library_lines.h"
#include "trace/lock_user.h"
#include "trace/log_file.h"
#include "trace/log_files.h"
#include "trace/settings.h"
#include "trace/start_stop.h"
#include "trace/trace.h"
#include "trace/trace_state.h"

namespace zt {
namespace {

// Performance counter at the last look at the settings. The worker's own.
std::int64_t last_look = 0;

std::int64_t MillisecondsBetween(const TraceEnvironment& environment, std::int64_t from, std::int64_t to) {
  return (to - from) * 1000 / environment.performance_frequency();
}

void CloseIdleFile(TraceState& state) {
  const std::int64_t now = state.environment->performance_counter();
  if (MillisecondsBetween(*state.environment, state.last_print.load(std::memory_order_relaxed), now) <= kIdleMs) {
    return;
  }
  const CriticalSectionLock lock(state.lock);
  if (state.started && state.stream != nullptr) {
    TraceFlushFile(nullptr);
    state.stream->Close();
  }
}

// REQUIRES, as for the functions below: the trace lock is held.
void ChangeFlags(std::uint32_t flags) {
  TraceFlags.store(flags, std::memory_order_relaxed);
  if ((flags & kTraceToFile) == 0) {
    TraceDeleteLogFiles();
  }
  TraceMatchRing();
  TraceMatchCrashFilter();
}

void ChangeSizeLimit(TraceState& state, std::uint32_t size_limit) {
  state.size_limit = size_limit;
  const LogFiles& files = SharedLogFiles();
  static_cast<void>(TraceBuildLogPaths(files.folder().c_str(), files.name().c_str(), size_limit));
}

void PrintChange(const TraceState& state) {
  const std::uint64_t flags = TraceFlags.load(std::memory_order_relaxed);
  TraceFlags.store(flags | kTraceInfo, std::memory_order_relaxed);
  PrintLibraryLine(kSettingChangedLine, kSettingChangedFormat, LibraryMomentNow(*state.environment));
  TraceFlags.store(flags, std::memory_order_relaxed);
}

void FollowSettings(TraceState& state, std::uint32_t flags, std::uint32_t size_limit) {
  const CriticalSectionLock lock(state.lock);
  // A stop since the settings were read has taken the key away: what it cleared stays clear.
  if (state.settings_key == nullptr) {
    return;
  }
  const bool is_flag_new = flags != TraceFlags.load(std::memory_order_relaxed);
  const bool is_size_new = size_limit != state.size_limit;
  if (!is_flag_new && !is_size_new) {
    return;
  }
  if (state.stream != nullptr) {
    state.stream->Close();
  }
  if (is_flag_new) {
    ChangeFlags(flags);
  }
  if (is_size_new) {
    ChangeSizeLimit(state, size_limit);
  }
  PrintChange(state);
}

}  // namespace

void TraceBeginSettingsPeriod() { last_look = SharedTraceState().environment->performance_counter(); }

void TraceSettingsWorker() {
  TraceState& state = SharedTraceState();
  // A stop waits for the tick, but for one that crashed and stops the library itself.
  const LockUser user(state);
  if (!state.started) {
    return;
  }
  CloseIdleFile(state);
  const std::int64_t now = state.environment->performance_counter();
  if (state.settings_key == nullptr || MillisecondsBetween(*state.environment, last_look, now) < kSettingsPeriodMs) {
    return;
  }
  last_look = now;
  std::uint32_t flags = kDefaultFlag;
  std::uint32_t size_limit = kDefaultSizeLimit;
  static_cast<void>(TraceReadSettings(&flags, &size_limit));
  FollowSettings(state, flags, size_limit);
}

}  // namespace zt
