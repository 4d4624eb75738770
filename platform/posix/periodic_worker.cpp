#include "platform/periodic_worker.h"

#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <initializer_list>

#include "platform/posix/signal_stack.h"
#include "platform/process_ids.h"

namespace zt {
namespace {

struct Worker {
  pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
  pthread_cond_t stopping = PTHREAD_COND_INITIALIZER;  // On the steady clock while a worker is started.
  // Protected by `mutex`; period and tick stay the same while a worker is started.
  pthread_t thread = {};
  std::uint32_t period_ms = 0;
  void (*tick)() = nullptr;
  bool is_started = false;
  bool must_stop = false;

  // Not protected: a thread that crashed asks these. A tick sets the second before it looks at the first, and whoever sets the
  // first looks at the second afterwards, so that one of the two sees the other.
  std::atomic<bool> is_halted{false};
  std::atomic<std::uint32_t> ticking_thread{0};  // The id of the thread that is in a tick.
};

Worker worker;

timespec PeriodFromNow() {
  constexpr long kNanosecondsPerSecond = 1000000000;
  timespec time = {};
  clock_gettime(CLOCK_MONOTONIC, &time);
  const long nanoseconds = time.tv_nsec + static_cast<long>(worker.period_ms % 1000) * 1000000;
  time.tv_sec += static_cast<time_t>(worker.period_ms / 1000) + nanoseconds / kNanosecondsPerSecond;
  time.tv_nsec = nanoseconds % kNanosecondsPerSecond;
  return time;
}

// True when a period has passed, false when the worker is to stop.
bool WaitForPeriod() {
  const timespec end = PeriodFromNow();
  pthread_mutex_lock(&worker.mutex);
  int status = 0;
  while (!worker.must_stop && status == 0) {
    status = pthread_cond_timedwait(&worker.stopping, &worker.mutex, &end);
  }
  const bool must_stop = worker.must_stop;
  pthread_mutex_unlock(&worker.mutex);
  return !must_stop && status == ETIMEDOUT;
}

void* Run(void* /*unused*/) {
  while (WaitForPeriod()) {
    worker.ticking_thread = CurrentThreadId();
    if (!worker.is_halted) {
      worker.tick();
    }
    worker.ticking_thread = 0;
  }
  ReleaseSignalStack();  // A tick that installed the crash filter was given one.
  return nullptr;
}

// The host's signals are the host's: none is handled on this thread, but for those of its own faults.
bool CreateThreadWithoutSignals() {
  sigset_t all;
  sigfillset(&all);
  for (const int fault : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTRAP}) {
    sigdelset(&all, fault);
  }
  sigset_t before;
  pthread_sigmask(SIG_SETMASK, &all, &before);
  const int status = pthread_create(&worker.thread, nullptr, &Run, nullptr);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return status == 0;
}

void MakeCondition() {
  pthread_condattr_t attributes;
  pthread_condattr_init(&attributes);
  pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
  pthread_cond_init(&worker.stopping, &attributes);
  pthread_condattr_destroy(&attributes);
}

}  // namespace

bool StartPeriodicWorker(std::uint32_t period_ms, void (*tick)()) {
  MakeCondition();
  // The thread takes the mutex before its first tick, and so sees all of this.
  pthread_mutex_lock(&worker.mutex);
  worker.period_ms = period_ms;
  worker.tick = tick;
  worker.must_stop = false;
  worker.is_halted = false;
  worker.is_started = CreateThreadWithoutSignals();
  const bool is_started = worker.is_started;
  pthread_mutex_unlock(&worker.mutex);
  return is_started;
}

void StopPeriodicWorker() {
  pthread_mutex_lock(&worker.mutex);
  const bool was_started = worker.is_started;
  const pthread_t thread = worker.thread;
  worker.is_started = false;
  worker.must_stop = true;
  if (was_started) {
    pthread_cond_signal(&worker.stopping);
  }
  pthread_mutex_unlock(&worker.mutex);
  if (!was_started) {
    return;
  }
  if (pthread_equal(pthread_self(), thread) != 0) {
    pthread_detach(thread);
  } else {
    pthread_join(thread, nullptr);
    pthread_cond_destroy(&worker.stopping);
  }
}

void HaltPeriodicWorker(std::uint32_t patience_ms) {
  worker.is_halted = true;
  const std::uint32_t own = CurrentThreadId();
  for (std::uint32_t waited = 0; waited < patience_ms; ++waited) {
    const std::uint32_t ticking = worker.ticking_thread;
    if (ticking == 0 || ticking == own) {
      return;
    }
    constexpr timespec kMillisecond = {0, 1000000};
    nanosleep(&kMillisecond, nullptr);
  }
}

void AbandonPeriodicWorker() { worker.is_started = false; }

}  // namespace zt
