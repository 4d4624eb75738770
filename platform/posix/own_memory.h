// The process's own memory, read where it may not be there.

#ifndef ZT_PLATFORM_POSIX_OWN_MEMORY_H
#define ZT_PLATFORM_POSIX_OWN_MEMORY_H

#include <cstddef>
#include <cstdint>
#include <span>

namespace zt {

/// Copies memory of this process from `address` on until `words` is full or memory cannot be read any more, and returns how
/// many words were copied. Never faults. A signal handler may call it.
std::size_t ReadOwnMemory(std::uintptr_t address, std::span<std::uintptr_t> words);

}  // namespace zt

#endif  // ZT_PLATFORM_POSIX_OWN_MEMORY_H
