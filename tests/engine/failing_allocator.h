// A global operator new that counts and that fails when told to. A program that links failing_allocator.cpp has it.

#ifndef ZT_TESTS_ENGINE_FAILING_ALLOCATOR_H
#define ZT_TESTS_ENGINE_FAILING_ALLOCATOR_H

#include <cstdint>

namespace zt::testing {

/// Blocks of operator new, of all threads, that were not freed yet.
std::int64_t LiveAllocations();

/// While it lives, the `number`-th allocation of this thread, counted from 1, fails. One at a time in a thread.
class AllocationFailure {
 public:
  enum class Extent {
    kOnce,        ///< Only that allocation fails.
    kFromThenOn,  ///< It and all later ones fail.
  };

  AllocationFailure(std::uint64_t number, Extent extent);
  ~AllocationFailure();
  AllocationFailure(const AllocationFailure&) = delete;
  AllocationFailure& operator=(const AllocationFailure&) = delete;

  /// Whether an allocation failed.
  [[nodiscard]] static bool HasFailed();
};

}  // namespace zt::testing

#endif  // ZT_TESTS_ENGINE_FAILING_ALLOCATOR_H
