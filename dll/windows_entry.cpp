// The library's entry point: starts the trace library when this library is loaded and stops it when it is unloaded.

#include <windows.h>

#include "platform/crash_filter.h"
#include "trace/library.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID reserved);

extern "C" BOOL WINAPI DllMain(HINSTANCE /*library*/, DWORD reason, LPVOID reserved) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      zt::TraceStart();
      break;
    case DLL_PROCESS_DETACH:
      if (reserved == nullptr) {
        zt::TraceStop();
        zt::RemoveOwnCrashFilter();
      } else {
        // The process ends, and the system has ended its other threads.
        zt::TraceStopWithoutThreads();
      }
      break;
    default:
      break;  // Threads come and go without the library.
  }
  return TRUE;
}
