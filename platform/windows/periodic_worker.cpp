#include "platform/periodic_worker.h"

#include <windows.h>

#include <atomic>

namespace zt {
namespace {

struct Worker {
  SRWLOCK lock = SRWLOCK_INIT;
  PTP_TIMER timer = nullptr;
  std::uint32_t period_ms = 0;
  void (*tick)() = nullptr;
  bool must_stop = false;  // Protected by `lock`, as is arming the timer.
  // A tick sets the first of these before it looks at the second, and whoever sets the second looks at the first afterwards, so
  // that one of the two sees the other.
  std::atomic<DWORD> ticking_thread{0};  // The thread that is in a tick.
  std::atomic<bool> is_halted{false};
};

Worker worker;

// Arms the timer for one callback. A period of the timer's own would start a second one while the first still runs.
// REQUIRES: the lock is held.
void Arm() {
  // Negative: from now on, in units of 100 ns.
  ULARGE_INTEGER due = {};
  due.QuadPart = static_cast<ULONGLONG>(-static_cast<LONGLONG>(worker.period_ms) * 10000);
  FILETIME time = {};
  time.dwLowDateTime = due.LowPart;
  time.dwHighDateTime = due.HighPart;
  SetThreadpoolTimer(worker.timer, &time, 0, 0);
}

void CALLBACK OnTimer(PTP_CALLBACK_INSTANCE /*instance*/, void* /*context*/, PTP_TIMER /*timer*/) {
  worker.ticking_thread = GetCurrentThreadId();
  if (!worker.is_halted) {
    worker.tick();
  }
  worker.ticking_thread = 0;
  AcquireSRWLockExclusive(&worker.lock);
  if (!worker.must_stop) {
    Arm();
  }
  ReleaseSRWLockExclusive(&worker.lock);
}

}  // namespace

bool StartPeriodicWorker(std::uint32_t period_ms, void (*tick)()) {
  worker.period_ms = period_ms;
  worker.tick = tick;
  worker.must_stop = false;
  worker.is_halted = false;
  worker.timer = CreateThreadpoolTimer(&OnTimer, nullptr, nullptr);
  if (worker.timer == nullptr) {
    return false;
  }
  AcquireSRWLockExclusive(&worker.lock);
  Arm();
  ReleaseSRWLockExclusive(&worker.lock);
  return true;
}

void StopPeriodicWorker() {
  if (worker.timer == nullptr) {
    return;
  }
  AcquireSRWLockExclusive(&worker.lock);
  worker.must_stop = true;
  SetThreadpoolTimer(worker.timer, nullptr, 0, 0);
  ReleaseSRWLockExclusive(&worker.lock);
  if (worker.ticking_thread != GetCurrentThreadId()) {
    // With callbacks that have not begun yet cancelled, since they might need the loader lock to begin.
    WaitForThreadpoolTimerCallbacks(worker.timer, TRUE);
  }
  CloseThreadpoolTimer(worker.timer);
  worker.timer = nullptr;
}

// Counted in steps: the time for which a dump's writer suspends this thread is none.
void HaltPeriodicWorker(std::uint32_t patience_ms) {
  constexpr std::uint32_t kStepMs = 10;
  worker.is_halted = true;
  const DWORD own = GetCurrentThreadId();
  for (std::uint32_t waited = 0; waited < patience_ms; waited += kStepMs) {
    const DWORD ticking = worker.ticking_thread;
    if (ticking == 0 || ticking == own) {
      return;
    }
    Sleep(kStepMs);
  }
}

void AbandonPeriodicWorker() { worker.timer = nullptr; }

}  // namespace zt
