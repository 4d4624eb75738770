#include "tests/engine/failing_allocator.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <memory>
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

// An aligned block lies in a larger one, whose address stands in front of it.
void* AllocateAligned(std::size_t size, std::size_t alignment) {
  std::size_t space = size + alignment;
  void* const block = Allocate(sizeof(void*) + space);
  void* aligned = static_cast<void**>(block) + 1;
  std::align(alignment, size, aligned, space);
  static_cast<void**>(aligned)[-1] = block;
  return aligned;
}

void FreeAligned(void* aligned) {
  if (aligned != nullptr) {
    Free(static_cast<void**>(aligned)[-1]);
  }
}

}  // namespace

std::int64_t LiveAllocations() { return live_allocations; }

AllocationFailure::AllocationFailure(std::uint64_t number, Extent extent) { request = {number, extent, false}; }
AllocationFailure::~AllocationFailure() { request = {}; }
bool AllocationFailure::HasFailed() { return request.has_failed; }

}  // namespace zt::testing

// Every form that the engine or the standard library calls, so that no block of one allocator is freed by another.
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
void* operator new(std::size_t size, std::align_val_t alignment) {
  return zt::testing::AllocateAligned(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* block, std::align_val_t /*alignment*/) noexcept { zt::testing::FreeAligned(block); }
void operator delete(void* block, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
  zt::testing::FreeAligned(block);
}
