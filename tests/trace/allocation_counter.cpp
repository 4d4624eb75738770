// Replaces the allocation functions of the program. They stand apart from all code that uses them: inlined there, compilers
// warn of the free that does not match the new.

#include "tests/trace/allocation_counter.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int allocation_count = 0;

}  // namespace

int zt::testing::AllocationCount() { return allocation_count; }

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  ++allocation_count;
  return std::malloc(size == 0 ? 1 : size);
}
void* operator new(std::size_t size) {
  if (void* const memory = operator new(size, std::nothrow); memory != nullptr) {
    return memory;
  }
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { std::free(memory); }
