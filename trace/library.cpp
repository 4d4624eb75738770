#include "trace/library.h"

#include "platform/fork.h"
#include "platform/last_error.h"
#include "platform/periodic_worker.h"
#include "trace/crash_filter.h"
#include "trace/library_lines.h"
#include "trace/lock_user.h"
#include "trace/log_file.h"
#include "trace/log_files.h"
#include "trace/log_folder.h"
#include "trace/settings.h"
#include "trace/settings_worker.h"
#include "trace/start_stop.h"
#include "trace/trace.h"
#include "trace/trace_state.h"

namespace zt {
namespace {

constexpr const char kLogName[] = "zteng.log";

// Chooses the log file and deletes old ones where that is wished. A name that is no file name leaves the library without a
// file.
bool PrepareFiles(const PathText& folder, std::uint32_t size_limit) {
  LogFiles& files = SharedLogFiles();
  files.SetPlace(folder.view(), kLogName);
  if (!IsFileName(kLogName)) {
    return true;
  }
  if (!TraceBuildLogPaths(folder.c_str(), kLogName, size_limit)) {
    return false;
  }
  if ((TraceFlags.load(std::memory_order_relaxed) & kTraceDeleteAtStart) != 0) {
    TraceDeleteLogFiles();
  }
  return true;
}

// A forked process has neither the worker nor the log file, and the pending lines are its parent's to write.
void ForgetInForkedProcesses() {
  static const bool kIsArranged = [] {
    CallInForkedProcesses([] {
      SharedTraceState().started = false;
      SharedTraceState().is_worker_left = false;
    });
    return true;
  }();
  static_cast<void>(kIsArranged);
}

void StartWorker(const TraceEnvironment& environment) {
  TraceBeginSettingsPeriod();
  static_cast<void>(environment.start_worker(kWorkerPeriodMs, &TraceSettingsWorker));
}

void PrintBanner(TraceState& state, const LibraryMoment& start) {
  const CriticalSectionLock lock(state.lock);
  if ((TraceFlags.load(std::memory_order_relaxed) & kTraceInfo) != 0) {
    PrintLibraryLine(kStartedLine, kStartedFormat, start);
  }
}

// REQUIRES: the trace lock is held.
void SayGoodbye(TraceState& state) {
  TraceFlags.fetch_or(kTraceInfo, std::memory_order_relaxed);
  TracePrint(nullptr, 0, kStoppedLine, "", "trace stopped");
  TraceFlushFile(nullptr);
  if (state.stream != nullptr) {
    state.stream->Close();
  }
}

// REQUIRES: the trace lock is held.
void DeleteUnwantedFiles(const TraceState& state, std::uint64_t flags) {
  auto wanted = static_cast<std::uint32_t>(flags);
  if (state.settings_key == nullptr) {
    return;
  }
  std::uint32_t unused_size = 0;
  static_cast<void>(TraceReadSettings(&wanted, &unused_size));
  if ((wanted & kTraceToFile) == 0) {
    TraceDeleteLogFiles();
  }
}

// `close_state` is TraceCloseState or its sibling. REQUIRES: the trace lock is held.
void Close(TraceState& state, void (*close_state)()) {
  const std::uint64_t flags = TraceFlags.load(std::memory_order_relaxed);
  SayGoodbye(state);
  DeleteUnwantedFiles(state, flags);
  close_state();
  SharedLogFiles().ClearCurrent();
}

void StopLeftWorker(TraceState& state) {
  if (state.is_worker_left.exchange(false)) {
    state.environment->stop_worker();
  }
}

// How long a crash waits for another thread. Twice that is less than a second crash waits for the first one.
constexpr std::uint32_t kCrashPatienceMs = 2000;

}  // namespace

void TraceStart() {
  TraceState& state = SharedTraceState();
  if (state.started) {
    SetLastErrorCode(ErrorCode::kAlreadyExists);
    return;
  }
  StopLeftWorker(state);
  const PathText configured = ConfiguredLogFolder();
  if (configured.empty()) {
    return;
  }
  std::uint32_t flags = kDefaultFlag;
  std::uint32_t size_limit = kDefaultSizeLimit;
  static_cast<void>(TraceReadSettings(&flags, &size_limit));
  const PathText folder = ResolveLogFolder(configured.view());
  if (!IsFolderPath(folder.view())) {
    SetLastErrorCode(ErrorCode::kNotReady);
    return;
  }
  const LibraryMoment start = LibraryMomentNow(*state.environment);
  TraceOpenState(flags, &SharedLogFiles());
  state.size_limit = size_limit;
  state.settings_key = kTraceSettingsKey;
  if (!PrepareFiles(folder, size_limit)) {
    TraceCloseState();
    TraceMarkStopped();
    return;
  }
  TraceMarkStarted();
  ForgetInForkedProcesses();
  StartWorker(*state.environment);
  // Also without the filter: the worker may install it later, on its own thread.
  state.environment->prepare_thread_for_crashes();
  if ((flags & kTraceCrashDump) != 0) {
    TraceMatchCrashFilter();
  }
  TraceMatchRing();
  PrintBanner(state, start);
}

void TraceStop() {
  TraceState& state = SharedTraceState();
  if (!state.started) {
    StopLeftWorker(state);
    return;
  }
  if (state.stopping.exchange(true)) {
    return;
  }
  {
    const CriticalSectionLock lock(state.lock);
    Close(state, &TraceCloseState);
  }
  state.environment->stop_worker();
  TraceMarkStopped();
}

void TraceStopInCrash(void (*print_last_words)()) {
  TraceState& state = SharedTraceState();
  const LockUser user(state);
  if (!state.started || state.stopping.exchange(true)) {
    return;
  }
  if (state.lock.TryEnterFor(kCrashPatienceMs)) {
    state.in_crash = true;
    print_last_words();
    Close(state, &TraceCloseStateButRing);
    state.lock.Leave();
  }
  state.is_worker_left = true;
  state.environment->halt_worker(kCrashPatienceMs);
  TraceMarkStopped();
}

void TraceStopWithoutThreads() {
  AbandonPeriodicWorker();
  TraceState& state = SharedTraceState();
  if (!state.started || !state.lock.TryEnter()) {
    return;
  }
  state.lock.Leave();
  TraceStop();
}

}  // namespace zt
