#include "platform/critical_section.h"

#include <pthread.h>

#include <algorithm>
#include <ctime>
#include <new>

namespace zt {
namespace {

// Init made the mutex in the storage, so the storage holds one wherever this is called.
pthread_mutex_t* MutexIn(std::byte* storage) { return std::launder(reinterpret_cast<pthread_mutex_t*>(storage)); }

// Tells the processor that this thread only waits.
void Pause() {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#elif defined(__aarch64__)
  asm volatile("isb");
#endif
}

}  // namespace

CriticalSection::~CriticalSection() { Delete(); }

void CriticalSection::Init() {
  static_assert(sizeof(pthread_mutex_t) <= sizeof(storage_));
  auto* const mutex = new (storage_) pthread_mutex_t;
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(mutex, &attributes);
  pthread_mutexattr_destroy(&attributes);
  initialised_ = true;
}

void CriticalSection::Delete() {
  if (initialised_) {
    initialised_ = false;
    pthread_mutex_destroy(MutexIn(storage_));
  }
}

void CriticalSection::Enter() {
  // What the lock guards is mostly done within a microsecond or two, which is less than it takes to fall asleep and be woken.
  // The pauses grow: each try takes the lock's cache line from its holder, and a holder that comes back at once finds in its
  // own cache what the lock guards.
  constexpr int kTries = 14;
  constexpr int kLongestPause = 1024;
  int pause = 1;
  for (int i = 0; i < kTries; ++i) {
    if (TryEnter()) {
      return;
    }
    for (int left = pause; left > 0; --left) {
      Pause();
    }
    pause = std::min(pause * 2, kLongestPause);
  }
  pthread_mutex_lock(MutexIn(storage_));
}

bool CriticalSection::TryEnter() { return pthread_mutex_trylock(MutexIn(storage_)) == 0; }

// Not by the call that waits until a point in time: a change of the system's clock would move it, and the one that goes by the
// steady clock is unknown to ThreadSanitizer.
bool CriticalSection::TryEnterFor(std::uint32_t milliseconds) {
  for (std::uint32_t waited = 0; !TryEnter(); ++waited) {
    if (waited == milliseconds) {
      return false;
    }
    constexpr timespec kMillisecond = {0, 1000000};
    nanosleep(&kMillisecond, nullptr);
  }
  return true;
}

void CriticalSection::Leave() { pthread_mutex_unlock(MutexIn(storage_)); }

}  // namespace zt
