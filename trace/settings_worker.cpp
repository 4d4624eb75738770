#include "trace/settings_worker.h"

#include "trace/crash_filter.h"
#include "trace/library_lines.h"
#include "trace/local_time.h"
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
  const std::int64_t frequency = environment.performance_frequency();
  const std::int64_t ticks = to - from;
  // Whole seconds and the rest apart: the product of months of ticks and 1000 would overflow.
  return ticks / frequency * 1000 + ticks % frequency * 1000 / frequency;
}

// The lock for a scope, if it was free. A tick never waits for the lock: a thread that crashed while it held it waits, as it
// stops the library, for the tick to end.
class LockIfFree {
 public:
  explicit LockIfFree(CriticalSection& section) : section_(section), is_held_(section.TryEnter()) {}
  ~LockIfFree() {
    if (is_held_) {
      section_.Leave();
    }
  }
  LockIfFree(const LockIfFree&) = delete;
  LockIfFree& operator=(const LockIfFree&) = delete;
  [[nodiscard]] bool IsHeld() const { return is_held_; }

 private:
  CriticalSection& section_;
  bool is_held_;
};

void CloseIdleFile(TraceState& state) {
  const std::int64_t now = state.environment->performance_counter();
  if (MillisecondsBetween(*state.environment, state.last_print.load(std::memory_order_relaxed), now) <= kIdleMs) {
    return;
  }
  const LockIfFree lock(state.lock);
  if (lock.IsHeld() && state.started && state.stream != nullptr) {
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

// False where the lock is not free: there will be another tick.
bool FollowSettings(TraceState& state, std::uint32_t flags, std::uint32_t size_limit) {
  const LockIfFree lock(state.lock);
  if (!lock.IsHeld()) {
    return false;
  }
  // A stop since the settings were read has taken the key away: what it cleared stays clear.
  if (state.settings_key == nullptr) {
    return true;
  }
  const bool is_flag_new = flags != TraceFlags.load(std::memory_order_relaxed);
  const bool is_size_new = size_limit != state.size_limit;
  if (!is_flag_new && !is_size_new) {
    return true;
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
  return true;
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
  if ((TraceFlags.load(std::memory_order_relaxed) & kTraceCrashDump) != 0) {
    NoteUtcOffset(*state.environment);
  }
  const std::int64_t now = state.environment->performance_counter();
  if (state.settings_key == nullptr || MillisecondsBetween(*state.environment, last_look, now) < kSettingsPeriodMs) {
    return;
  }
  std::uint32_t flags = kDefaultFlag;
  std::uint32_t size_limit = kDefaultSizeLimit;
  static_cast<void>(TraceReadSettings(&flags, &size_limit));
  if (FollowSettings(state, flags, size_limit)) {
    last_look = now;
  }
}

}  // namespace zt
