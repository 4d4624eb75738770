// The library's entry point: starts the trace library when this library is loaded and stops it when it is unloaded.

#include "platform/crash_filter.h"
#include "trace/library.h"

namespace {

[[gnu::constructor]] void OnLoad() { zt::TraceStart(); }

[[gnu::destructor]] void OnUnload() {
  zt::TraceStop();
  zt::RemoveOwnCrashFilter();
}

}  // namespace
