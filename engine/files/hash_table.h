// A hash table that grows and shrinks in small steps.

#ifndef ZT_ENGINE_FILES_HASH_TABLE_H
#define ZT_ENGINE_FILES_HASH_TABLE_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "engine/files/text_hash.h"

namespace zt {

/// Values under hashes as TextHash makes them; several may have one hash. Keeps no text: whoever searches says which of the
/// values under a hash is meant.
///
/// The slots lie in segments of 64, each of which holds the hashes that begin with its own bits. A segment that is three
/// quarters full is split in two by one more bit; two halves that are together nearly empty become one again. So no insertion
/// or erasure moves more than the slots of two segments, however large the table is. (The directory of the segments doubles now
/// and then: 8 bytes for some 30 values.)
///
/// Threads: none of its own.
///
/// @tparam Value  small and trivial, as a pointer is
template <typename Value>
class HashTable {
 public:
  HashTable() = default;
  HashTable(HashTable&& other) noexcept
      : directory_(std::exchange(other.directory_, {})),
        depth_(std::exchange(other.depth_, 0)),
        capacity_(std::exchange(other.capacity_, 0)),
        size_(std::exchange(other.size_, 0)) {}
  HashTable& operator=(HashTable&& other) noexcept {
    HashTable taken(std::move(other));
    std::swap(directory_, taken.directory_);
    std::swap(depth_, taken.depth_);
    std::swap(capacity_, taken.capacity_);
    std::swap(size_, taken.size_);
    return *this;
  }
  HashTable(const HashTable&) = delete;
  HashTable& operator=(const HashTable&) = delete;
  ~HashTable() {
    ForEachSegment([](Segment* segment, std::size_t) { Free(segment); });
  }

  [[nodiscard]] std::size_t size() const noexcept { return size_; }

  /// The value under `hash` for which is(value) is true, or null. Valid until the table changes.
  template <typename Is>
  [[nodiscard]] Value* Find(std::uint64_t hash, const Is& is) noexcept {
    if (directory_.empty()) {
      return nullptr;
    }
    Slot* const slots = directory_[IndexOf(hash)]->slots();
    for (std::size_t at = hash & (capacity_ - 1); slots[at].tag != kEmpty; at = Next(at)) {
      if (slots[at].tag == TagOf(hash) && is(slots[at].value)) {
        return &slots[at].value;
      }
    }
    return nullptr;
  }

  /// Throws std::bad_alloc with nothing changed.
  void Insert(std::uint64_t hash, Value value) {
    if (directory_.empty()) {
      MakeFirst();
    }
    while (directory_[IndexOf(hash)]->used >= capacity_ / 4 * 3) {
      MakeRoom(IndexOf(hash));
    }
    Put(*directory_[IndexOf(hash)], {value, TagOf(hash)});
    ++size_;
  }

  /// Removes what Find finds; returns whether there was something.
  template <typename Is>
  bool Erase(std::uint64_t hash, const Is& is) noexcept {
    Value* const found = Find(hash, is);
    if (found == nullptr) {
      return false;
    }
    const std::size_t index = IndexOf(hash);
    Segment& segment = *directory_[index];
    EraseSlot(segment, static_cast<std::size_t>(reinterpret_cast<Slot*>(found) - segment.slots()));
    MergeAt(index, true);
    return true;
  }

  /// Calls goes(value) for every value, in no order, and removes those for which it returns true. `goes` may not use the table.
  template <typename Goes>
  void EraseIf(const Goes& goes) noexcept {
    ForEachSegment([&](Segment* segment, std::size_t index) {
      for (std::size_t at = 0; at < capacity_;) {
        if (segment->slots()[at].tag != kEmpty && goes(segment->slots()[at].value)) {
          EraseSlot(*segment, at);  // Another value may have moved up to this place.
        } else {
          ++at;
        }
      }
      return MergeAt(index, false);  // Values of the half that comes next were not visited yet.
    });
  }

  /// Calls visit(value) for every value, in no order.
  template <typename Visit>
  void ForEach(const Visit& visit) const {
    for (std::size_t index = 0; index < directory_.size(); index += WidthOf(*directory_[index])) {
      for (std::size_t at = 0; at < capacity_; ++at) {
        if (directory_[index]->slots()[at].tag != kEmpty) {
          visit(directory_[index]->slots()[at].value);
        }
      }
    }
  }

 private:
  static constexpr std::uint64_t kEmpty = 0;
  static constexpr std::size_t kFirstCapacity = 8;
  static constexpr std::size_t kCapacity = 64;
  static constexpr unsigned kHashBits = 61;

  struct Slot {
    Value value;  // First: a value's address is its slot's.
    std::uint64_t tag;
  };
  struct Segment {
    std::uint32_t used;
    std::uint32_t depth;  ///< How many first bits all its hashes have in common.

    [[nodiscard]] Slot* slots() { return reinterpret_cast<Slot*>(this + 1); }
  };
  static_assert(sizeof(Segment) % alignof(Slot) == 0 && alignof(Slot) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

  /// What marks a slot that a hash uses.
  static std::uint64_t TagOf(std::uint64_t hash) { return hash + 1; }
  [[nodiscard]] std::size_t IndexOf(std::uint64_t hash) const { return static_cast<std::size_t>(hash >> (kHashBits - depth_)); }
  [[nodiscard]] std::size_t Next(std::size_t at) const { return (at + 1) & (capacity_ - 1); }
  /// How many elements of the directory a segment has.
  [[nodiscard]] std::size_t WidthOf(const Segment& segment) const { return std::size_t{1} << (depth_ - segment.depth); }

  static Segment* Make(std::size_t capacity, std::uint32_t depth) {
    auto* const segment = static_cast<Segment*>(::operator new(sizeof(Segment) + capacity * sizeof(Slot)));
    *segment = {0, depth};
    std::fill_n(segment->slots(), capacity, Slot{});
    return segment;
  }
  static void Free(Segment* segment) noexcept { ::operator delete(segment); }

  void MakeFirst() {
    directory_.reserve(1);
    directory_.push_back(Make(kFirstCapacity, 0));
    capacity_ = kFirstCapacity;
  }

  // REQUIRES: the segment has an empty slot.
  void Put(Segment& segment, const Slot& slot) noexcept {
    std::size_t at = (slot.tag - 1) & (capacity_ - 1);
    while (segment.slots()[at].tag != kEmpty) {
      at = Next(at);
    }
    segment.slots()[at] = slot;
    ++segment.used;
  }

  // Moves values after the hole into it where their searches would pass it, so that a search can end at the first empty slot.
  void EraseSlot(Segment& segment, std::size_t hole) noexcept {
    Slot* const slots = segment.slots();
    for (std::size_t at = Next(hole); slots[at].tag != kEmpty; at = Next(at)) {
      const std::size_t home = (slots[at].tag - 1) & (capacity_ - 1);
      if (((at - home) & (capacity_ - 1)) >= ((at - hole) & (capacity_ - 1))) {
        slots[hole] = slots[at];
        hole = at;
      }
    }
    slots[hole].tag = kEmpty;
    --segment.used;
    --size_;
  }

  // Throws std::bad_alloc with nothing changed but, perhaps, the size of the directory.
  void MakeRoom(std::size_t index) {
    if (capacity_ < kCapacity) {
      Widen();
      return;
    }
    if (directory_[index]->depth == depth_) {
      // Only hashes that agree in nearly all bits could ask for a directory much larger than the table.
      if ((directory_.size() >> 6) > size_) {
        throw std::bad_alloc();
      }
      DoubleDirectory();
      index *= 2;
    }
    Split(index);
  }

  // The first segment grows until it is as large as all others will be.
  void Widen() {
    Segment* const old = directory_.front();
    Segment* const wide = Make(2 * capacity_, 0);
    const std::size_t old_capacity = std::exchange(capacity_, 2 * capacity_);
    for (std::size_t at = 0; at < old_capacity; ++at) {
      if (old->slots()[at].tag != kEmpty) {
        Put(*wide, old->slots()[at]);
      }
    }
    directory_.front() = wide;
    Free(old);
  }

  void DoubleDirectory() {
    std::vector<Segment*> directory(2 * directory_.size());
    for (std::size_t index = 0; index < directory.size(); ++index) {
      directory[index] = directory_[index / 2];
    }
    directory_.swap(directory);
    ++depth_;
  }

  void Split(std::size_t index) {
    Segment& low = *directory_[index];
    Segment& high = *Make(kCapacity, low.depth + 1);
    const std::size_t width = WidthOf(low);
    const std::size_t first = index & ~(width - 1);
    std::array<Slot, kCapacity> slots;
    std::copy_n(low.slots(), kCapacity, slots.begin());
    std::fill_n(low.slots(), kCapacity, Slot{});
    low = {0, low.depth + 1};
    std::fill_n(directory_.begin() + static_cast<std::ptrdiff_t>(first + width / 2), width / 2, &high);
    for (const Slot& slot : slots) {
      if (slot.tag != kEmpty) {
        Put(*directory_[IndexOf(slot.tag - 1)], slot);
      }
    }
  }

  /// Makes one segment of the one at `index` and its other half where both are nearly empty, again and again; with a later
  /// half only if `with_later`. Returns the index after the merged segment.
  std::size_t MergeAt(std::size_t index, bool with_later) noexcept {
    for (;;) {
      Segment& segment = *directory_[index];
      const std::size_t width = WidthOf(segment);
      index &= ~(width - 1);
      if (segment.depth == 0 || ((index & width) == 0 && !with_later)) {
        return index + width;
      }
      Segment& other = *directory_[index ^ width];
      if (other.depth != segment.depth || other.used + segment.used > kCapacity / 4) {
        return index + width;
      }
      for (std::size_t at = 0; at < kCapacity; ++at) {
        if (other.slots()[at].tag != kEmpty) {
          Put(segment, other.slots()[at]);
        }
      }
      --segment.depth;
      std::fill_n(directory_.begin() + static_cast<std::ptrdiff_t>(index ^ width), width, &segment);
      Free(&other);
    }
  }

  /// Calls visit(segment, index) once for each segment, which returns the index to go on at.
  template <typename Visit>
  void ForEachSegment(const Visit& visit) {
    for (std::size_t index = 0; index < directory_.size();) {
      if constexpr (std::is_void_v<decltype(visit(directory_[index], index))>) {
        const std::size_t width = WidthOf(*directory_[index]);
        visit(directory_[index], index);
        index += width;
      } else {
        index = visit(directory_[index], index);
      }
    }
  }

  std::vector<Segment*> directory_;  ///< By the first `depth_` bits of a hash; a segment of fewer bits has several elements.
  unsigned depth_ = 0;
  std::size_t capacity_ = 0;  ///< Of every segment.
  std::size_t size_ = 0;
};

}  // namespace zt

#endif  // ZT_ENGINE_FILES_HASH_TABLE_H
