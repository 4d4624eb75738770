// A stack for signal handlers, for when a thread's own has run out.

#ifndef ZT_PLATFORM_POSIX_SIGNAL_STACK_H
#define ZT_PLATFORM_POSIX_SIGNAL_STACK_H

#include <cstddef>

namespace zt {

/// Bytes that an alternate stack offers to handlers, beside the state that the system saves there.
inline constexpr std::size_t kSignalStackRoom = 128 * std::size_t{1024};

/// Gives the calling thread an alternate signal stack unless it has one with that much room. Below the stack is a page that
/// cannot be touched. A smaller one is put aside until ReleaseSignalStack. Without memory for it nothing happens.
void ProvideSignalStack();

/// The same, but a smaller one stays as well.
void ProvideSignalStackWhereNone();

/// Takes away, and frees, what the functions above gave to the calling thread. While the stack is in use, or another one in its
/// place, nothing happens. A thread that ends without this call leaves the memory behind.
void ReleaseSignalStack();

}  // namespace zt

#endif  // ZT_PLATFORM_POSIX_SIGNAL_STACK_H
