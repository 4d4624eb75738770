// A re-entrant lock with an explicit life.

#ifndef ZT_PLATFORM_CRITICAL_SECTION_H
#define ZT_PLATFORM_CRITICAL_SECTION_H

#include <cstddef>
#include <cstdint>

namespace zt {

/// A lock that its holder may take again. Unlike std::recursive_mutex its life is explicit: Init makes it, Delete ends it, and
/// an object that was never initialised, or was deleted, holds no system resource. On Windows a CRITICAL_SECTION, elsewhere a
/// recursive pthread mutex.
class CriticalSection {
 public:
  CriticalSection() = default;
  CriticalSection(const CriticalSection&) = delete;  // A lock has an identity.
  CriticalSection& operator=(const CriticalSection&) = delete;
  /// Deletes the lock if that has not been done. REQUIRES: nobody holds it.
  ~CriticalSection();

  /// Makes the lock. REQUIRES: not initialised. Never fails.
  void Init();
  /// Ends the lock; nothing when it is not initialised. REQUIRES: nobody holds it or waits for it.
  void Delete();
  /// Takes the lock, waiting without limit. REQUIRES: initialised.
  void Enter();
  /// Takes the lock if that needs no waiting, and returns whether it did. REQUIRES: initialised.
  bool TryEnter();
  /// Takes the lock, waiting for so many milliseconds at most, and returns whether it did: for a thread that crashed, and must
  /// not wait for what a thread that never goes on holds. REQUIRES: initialised.
  bool TryEnterFor(std::uint32_t milliseconds);
  /// Gives up one Enter or successful TryEnter or TryEnterFor. REQUIRES: the calling thread holds the lock.
  void Leave();
  [[nodiscard]] bool IsInitialised() const { return initialised_; }

 private:
  alignas(std::max_align_t) std::byte storage_[64] = {};
  bool initialised_ = false;
};

/// Holds a CriticalSection for a scope.
class CriticalSectionLock {
 public:
  explicit CriticalSectionLock(CriticalSection& section) : section_(section) { section_.Enter(); }
  ~CriticalSectionLock() { section_.Leave(); }
  CriticalSectionLock(const CriticalSectionLock&) = delete;
  CriticalSectionLock& operator=(const CriticalSectionLock&) = delete;

 private:
  CriticalSection& section_;
};

}  // namespace zt

#endif  // ZT_PLATFORM_CRITICAL_SECTION_H
