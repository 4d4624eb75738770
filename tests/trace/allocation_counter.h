// Counts what a test program takes from the heap.

#ifndef ZT_TESTS_TRACE_ALLOCATION_COUNTER_H
#define ZT_TESTS_TRACE_ALLOCATION_COUNTER_H

namespace zt::testing {

/// How often the calling thread has used operator new.
int AllocationCount();

}  // namespace zt::testing

#endif  // ZT_TESTS_TRACE_ALLOCATION_COUNTER_H
