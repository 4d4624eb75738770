// Ends of a program by a fault.

#ifndef ZT_TESTS_DLL_CRASH_H
#define ZT_TESTS_DLL_CRASH_H

namespace zt::testing {

/// To be called before Crash, while all is well: a crash then leaves nothing but what the library writes.
void PrepareForCrash();

/// Writes to where no memory is.
void Crash();

/// Calls itself until the calling thread's stack is used up.
void OverflowStack();

}  // namespace zt::testing

#endif  // ZT_TESTS_DLL_CRASH_H
