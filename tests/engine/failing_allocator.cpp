#include "tests/engine/failing_allocator.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace zt::testing {
namespace {

std::atomic<std::int64_t> live_allocations = 0;

// What an AllocationFailure of this thread asks for. `left` counts down to the allocation that fails; 0: none is to fail.
struct Request {
  std::uint64_t left;
  AllocationFailure::Extent extent;
  bool has_failed;
};
thread_local Request request = {};

bool MustFail() {
  if (request.left == 0 || --request.left > 0) {
    return false;
  }
  request.has_failed = true;
  request.left = request.extent == AllocationFailure::Extent::kFromThenOn ? 1 : 0;
  return true;
}

void* AllocateOrNull(std::size_t size) {
  void* block = MustFail() ? nullptr : std::malloc(std::max<std::size_t>(size, 1));
  if (block != nullptr) {
    ++live_allocations;
  }
  return block;
}

void* Allocate(std::size_t size) {
  if (void* block = AllocateOrNull(size); block != nullptr) {
    return block;
  }
  throw std::bad_alloc();
}

void Free(void* block) {
  if (block != nullptr) {
    --live_allocations;
    std::free(block);
  }
}

}  // namespace

std::int64_t LiveAllocations() { return live_allocations; }

AllocationFailure::AllocationFailure(std::uint64_t number, Extent extent) { request = {number, extent, false}; }
AllocationFailure::~AllocationFailure() { request = {}; }
bool AllocationFailure::HasFailed() { return request.has_failed; }

}  // namespace zt::testing

// Every form that takes no alignment, so that no block of one allocator is freed by another.
void* operator new(std::size_t size) { return zt::testing::Allocate(size); }
void* operator new[](std::size_t size) { return zt::testing::Allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return zt::testing::AllocateOrNull(size); }
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return zt::testing::AllocateOrNull(size); }
void operator delete(void* block) noexcept { zt::testing::Free(block); }
void operator delete[](void* block) noexcept { zt::testing::Free(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept { zt::testing::Free(block); }
void operator delete[](void* block, std::size_t /*size*/) noexcept { zt::testing::Free(block); }
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept { zt::testing::Free(block); }
void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept { zt::testing::Free(block); }
