// Tells the processor what will be read next.

#ifndef ZT_PLATFORM_PREFETCH_H
#define ZT_PLATFORM_PREFETCH_H

#include <cstddef>

#if defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
#endif

namespace zt {

/// Begins to load about `size` bytes from `memory` on into the cache, all lines at once. A hint: any address will do.
inline void Prefetch(const void* memory, std::size_t size) {
  constexpr std::size_t kLine = 64;
  const char* const bytes = static_cast<const char*>(memory);
  for (std::size_t offset = 0; offset < size; offset += kLine) {
#if defined(_MSC_VER) && !defined(__clang__)
#if defined(_M_ARM64)
    __prefetch(bytes + offset);
#else
    _mm_prefetch(bytes + offset, _MM_HINT_T0);
#endif
#else
    __builtin_prefetch(bytes + offset);
#endif
  }
}

}  // namespace zt

#endif  // ZT_PLATFORM_PREFETCH_H
