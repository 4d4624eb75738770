#include "trace/start_stop.h"

#include "trace/log_file.h"
#include "trace/memory_ring.h"
#include "trace/trace.h"
#include "trace/trace_state.h"

namespace zt {
namespace {

void FreeRing(TraceState& state) {
  FreeMemoryRing(state.ring);
  state.ring = nullptr;
}

void CloseStream(TraceState& state) {
  if (state.stream != nullptr) {
    state.stream->Close();
  }
}

}  // namespace

bool TraceBringUp(std::uint64_t flags, AppendStream* stream) {
  if (SharedTraceState().started) {
    return false;
  }
  TraceOpenState(flags, stream);
  TraceMarkStarted();
  TraceMatchRing();
  return true;
}

void TraceTakeDown() {
  if (SharedTraceState().started) {
    TraceCloseState();
    TraceMarkStopped();
  }
}

void TraceOpenState(std::uint64_t flags, AppendStream* stream) {
  TraceState& state = SharedTraceState();
  if (!state.lock.IsInitialised()) {
    state.lock.Init();
  }
  const CriticalSectionLock lock(state.lock);
  state.stream = stream;
  state.stopping = false;
  state.in_crash = false;
  state.module_name = kTraceModuleName;
  TraceFlags.store(flags, std::memory_order_relaxed);
}

void TraceMarkStarted() { SharedTraceState().started = true; }

void TraceMatchRing() {
  TraceState& state = SharedTraceState();
  const CriticalSectionLock lock(state.lock);
  const bool is_wanted = (TraceFlags.load(std::memory_order_relaxed) & kTraceToRing) != 0;
  if (!is_wanted) {
    FreeRing(state);
  } else if (state.ring == nullptr) {
    state.ring = CreateMemoryRing();
  }
}

void TraceCloseState() {
  TraceState& state = SharedTraceState();
  const CriticalSectionLock lock(state.lock);
  TraceCloseStateButRing();
  FreeRing(state);
}

void TraceCloseStateButRing() {
  TraceState& state = SharedTraceState();
  const CriticalSectionLock lock(state.lock);
  TraceFlushFile(nullptr);
  CloseStream(state);
  state.stream = nullptr;
  TraceFlags.store(0, std::memory_order_relaxed);
  state.settings_key = nullptr;
  state.size_limit = 0;
  state.module_name = "";
}

void TraceMarkStopped() {
  TraceState& state = SharedTraceState();
  state.started = false;
  if (state.lock_users == 0) {
    state.lock.Delete();
  }
}

}  // namespace zt
