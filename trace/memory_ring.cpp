#include "trace/memory_ring.h"

#include <new>

namespace zt {

TraceMemLogHead* CreateMemoryRing() {
  constexpr std::string_view kTag = "TraceMemLogHead";
  static_assert(kTag.size() + 1 == sizeof(TraceMemLogHead::tag));
  auto* const ring = new (std::nothrow) TraceMemLogHead{};
  if (ring != nullptr) {
    kTag.copy(ring->tag, kTag.size());
  }
  return ring;
}

void FreeMemoryRing(TraceMemLogHead* ring) { delete ring; }

void StoreInRing(TraceMemLogHead& ring, std::string_view line) {
  char* const slot = ring.slots[ring.count % kRingSlotCount];
  ++ring.count;
  const std::size_t copied = line.copy(slot, kRingSlotSize);
  slot[copied == 0 ? 0 : copied - 1] = '\0';
}

}  // namespace zt
