// The memory ring: the latest trace lines in one heap block, laid out so that a reader of a crash dump finds them by the tag.

#ifndef ZT_TRACE_MEMORY_RING_H
#define ZT_TRACE_MEMORY_RING_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zt {

inline constexpr std::size_t kRingSlotCount = 1024;
inline constexpr std::size_t kRingSlotSize = 1024;

/// The ring as it lies in memory. Readers of dumps know this layout: never change it.
struct TraceMemLogHead {
  char tag[16];                               ///< "TraceMemLogHead" and its NUL.
  std::uint64_t count;                        ///< Lines ever stored; the next one goes to slot count mod 1024.
  char slots[kRingSlotCount][kRingSlotSize];  ///< NUL-terminated lines.
};

static_assert(offsetof(TraceMemLogHead, tag) == 0);
static_assert(offsetof(TraceMemLogHead, count) == 16);
static_assert(offsetof(TraceMemLogHead, slots) == 24);
static_assert(sizeof(TraceMemLogHead) == 1048600);

/// An empty ring on the heap, to be given to FreeMemoryRing; null when memory is exhausted.
TraceMemLogHead* CreateMemoryRing();

/// Frees a ring; null is none.
void FreeMemoryRing(TraceMemLogHead* ring);

/// Stores the first 1024 characters of a line, without their last one: a NUL takes its place, so "abc" is kept as "ab". Readers
/// of dumps count on it. An empty line is kept as an empty one.
void StoreInRing(TraceMemLogHead& ring, std::string_view line);

}  // namespace zt

#endif  // ZT_TRACE_MEMORY_RING_H
