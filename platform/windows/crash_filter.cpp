#include "platform/crash_filter.h"

#include <windows.h>
// Needs the types of the header above.
#include <dbghelp.h>

#include <atomic>

namespace zt {

struct CrashDetails {
  EXCEPTION_POINTERS* exception;
};

namespace {

std::atomic<CrashHandler> crash_handler = nullptr;

// The filter from before this one; null for none.
LPTOP_LEVEL_EXCEPTION_FILTER previous_filter = nullptr;

SRWLOCK one_crash = SRWLOCK_INIT;
std::atomic<DWORD> crashing_thread = 0;

// Takes `one_crash`; false when another crash has been handled for five seconds and is not done: its handler may be waiting,
// against the rules, for something that the calling thread holds and will never give up now. The wait is counted in steps and
// has no point in time for an end, because writing a dump suspends this thread for as long as it takes.
bool WaitForOtherCrash() {
  constexpr DWORD kStepMs = 10;
  constexpr DWORD kPatienceMs = 5000;
  for (DWORD waited = 0; !TryAcquireSRWLockExclusive(&one_crash); waited += kStepMs) {
    if (waited == kPatienceMs) {
      return false;
    }
    Sleep(kStepMs);
  }
  return true;
}

// A thread that crashes while another one is handled waits for that; one that crashes in its own handler goes on.
LONG WINAPI OnUnhandledException(EXCEPTION_POINTERS* exception) {
  if (crashing_thread == GetCurrentThreadId() || !WaitForOtherCrash()) {
    return EXCEPTION_CONTINUE_SEARCH;
  }
  crashing_thread = GetCurrentThreadId();
  if (const CrashHandler handler = crash_handler; handler != nullptr) {
    handler({exception});
  }
  crashing_thread = 0;
  ReleaseSRWLockExclusive(&one_crash);
  return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

void PrepareThreadForCrashes() {}

void InstallCrashFilter(CrashHandler handler) {
  crash_handler = handler;
  const LPTOP_LEVEL_EXCEPTION_FILTER replaced = SetUnhandledExceptionFilter(&OnUnhandledException);
  if (replaced != &OnUnhandledException) {
    previous_filter = replaced;
  }
}

void RemoveCrashFilter() {
  SetUnhandledExceptionFilter(nullptr);
  crash_handler = nullptr;
}

void RemoveOwnCrashFilter() {
  if (crash_handler == nullptr) {
    return;  // Nothing of ours is installed.
  }
  // The system tells which filter is installed only to who replaces it.
  const LPTOP_LEVEL_EXCEPTION_FILTER installed = SetUnhandledExceptionFilter(previous_filter);
  if (installed != &OnUnhandledException) {
    SetUnhandledExceptionFilter(installed);
  }
  crash_handler = nullptr;
}

void WriteCrashDump(const char* path, const CrashDetails& details) {
  constexpr auto kContents = static_cast<MINIDUMP_TYPE>(MiniDumpWithFullMemory | MiniDumpWithHandleData | MiniDumpFilterMemory |
                                                        MiniDumpScanMemory | MiniDumpWithUnloadedModules |
                                                        MiniDumpWithIndirectlyReferencedMemory | MiniDumpFilterModulePaths |
                                                        MiniDumpWithProcessThreadData | MiniDumpWithPrivateReadWriteMemory);
  static_assert(kContents == 0x3FE);

  // Without a file the dump fails too, and there is nobody to tell.
  const HANDLE file = CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  MINIDUMP_EXCEPTION_INFORMATION exception = {};
  exception.ThreadId = GetCurrentThreadId();
  exception.ExceptionPointers = details.exception;
  exception.ClientPointers = TRUE;
  MiniDumpWriteDump(GetCurrentProcess(), GetCurrentProcessId(), file, kContents, &exception, nullptr, nullptr);
  CloseHandle(file);
}

}  // namespace zt
