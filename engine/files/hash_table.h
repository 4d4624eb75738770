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

#include "engine/files/segment_pool.h"
#include "engine/files/text_hash.h"
#include "platform/prefetch.h"

namespace zt {

/// Values under hashes as TextHash makes them; several may have one hash. Keeps no text: whoever searches says which of the
/// values under a hash is meant.
///
/// The slots lie in segments of 48, each of which holds the hashes that begin with its own bits. A segment has a tag of one
/// byte for each slot, and the segments of a table lie close together: a question for a hash that is not there mostly reads one
/// line of memory. A segment that is five sixths full is split in two by one more bit; two halves that are together nearly
/// empty become one again. So no insertion or erasure moves more than the slots of two segments, however large the table is.
/// (The directory of the segments doubles now and then: 8 bytes for some 30 values.)
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
        size_(std::exchange(other.size_, 0)),
        pool_(std::move(other.pool_)) {}
  HashTable& operator=(HashTable&& other) noexcept {
    HashTable taken(std::move(other));
    std::swap(directory_, taken.directory_);
    std::swap(depth_, taken.depth_);
    std::swap(capacity_, taken.capacity_);
    std::swap(size_, taken.size_);
    std::swap(pool_, taken.pool_);
    return *this;
  }
  HashTable(const HashTable&) = delete;
  HashTable& operator=(const HashTable&) = delete;
  ~HashTable() {
    ForEachSegment([](Segment* segment, std::size_t) { delete[] segment->entries; });
  }

  [[nodiscard]] std::size_t size() const noexcept { return size_; }

  /// The value under `hash` for which is(value) is true, or null. Valid until the table changes.
  template <typename Is>
  [[nodiscard]] Value* Find(std::uint64_t hash, const Is& is) noexcept {
    if (directory_.empty()) {
      return nullptr;
    }
    const Segment& segment = *directory_[IndexOf(hash)];
    const std::uint8_t tag = TagOf(hash);
    for (std::size_t at = HomeOf(hash); segment.tags[at] != kEmpty; at = Next(at)) {
      if (segment.tags[at] == tag && segment.entries[at].hash == hash && is(segment.entries[at].value)) {
        return &segment.entries[at].value;
      }
    }
    return nullptr;
  }

  // Most of a large table is not in the processor's caches. A caller with several questions calls FetchDirectory for all of
  // them, then FetchSegment for all of them, and only then Find: so their memory is fetched at the same time.

  void FetchDirectory(std::uint64_t hash) const noexcept {
    if (!directory_.empty()) {
      Prefetch(&directory_[IndexOf(hash)], sizeof(Segment*));
    }
  }
  void FetchSegment(std::uint64_t hash) const noexcept {
    if (!directory_.empty()) {
      Prefetch(directory_[IndexOf(hash)], sizeof(Segment));
    }
  }

  /// Throws std::bad_alloc with nothing changed.
  void Insert(std::uint64_t hash, Value value) {
    if (directory_.empty()) {
      MakeFirst();
    }
    while (directory_[IndexOf(hash)]->used >= capacity_ / 6 * 5) {
      MakeRoom(IndexOf(hash));
    }
    Put(*directory_[IndexOf(hash)], {value, hash});
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
    EraseSlot(segment, static_cast<std::size_t>(reinterpret_cast<Entry*>(found) - segment.entries));
    MergeAt(index, true);
    return true;
  }

  /// Calls goes(value) for every value, in no order, and removes those for which it returns true. `goes` may not use the table.
  template <typename Goes>
  void EraseIf(const Goes& goes) noexcept {
    ForEachSegment([&](Segment* segment, std::size_t index) {
      for (std::size_t at = 0; at < capacity_;) {
        if (segment->tags[at] != kEmpty && goes(segment->entries[at].value)) {
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
      const Segment& segment = *directory_[index];
      for (std::size_t at = 0; at < capacity_; ++at) {
        if (segment.tags[at] != kEmpty) {
          visit(segment.entries[at].value);
        }
      }
    }
  }

 private:
  static constexpr std::uint8_t kEmpty = 0;  ///< No hash has this tag.
  static constexpr std::size_t kFirstCapacity = 6;
  static constexpr std::size_t kCapacity = 48;
  static constexpr unsigned kHashBits = 61;

  struct Entry {
    Value value;  // First: a value's address is its entry's.
    std::uint64_t hash;
  };
  struct Segment {
    union {
      Entry* entries = nullptr;  ///< As many as the capacity; set where the tag is not kEmpty.
      Segment* next_free;
    };
    std::uint8_t used = 0;
    std::uint8_t depth = 0;  ///< How many first bits all its hashes have in common.
    std::array<std::uint8_t, kCapacity> tags = {};
  };

  static std::uint8_t TagOf(std::uint64_t hash) { return static_cast<std::uint8_t>(hash >> 16 | 0x80); }
  /// The slot that a hash goes to if it is free.
  [[nodiscard]] std::size_t HomeOf(std::uint64_t hash) const { return (hash & 0xFFFF) * capacity_ >> 16; }
  [[nodiscard]] std::size_t IndexOf(std::uint64_t hash) const { return static_cast<std::size_t>(hash >> (kHashBits - depth_)); }
  [[nodiscard]] std::size_t Next(std::size_t at) const { return at + 1 == capacity_ ? 0 : at + 1; }
  /// How many elements of the directory a segment has.
  [[nodiscard]] std::size_t WidthOf(const Segment& segment) const { return std::size_t{1} << (depth_ - segment.depth); }

  /// An empty segment. Throws std::bad_alloc with nothing changed.
  Segment* Make(std::size_t capacity, std::uint8_t depth) {
    auto entries = std::make_unique_for_overwrite<Entry[]>(capacity);
    Segment* const segment = pool_.Take();
    segment->entries = entries.release();
    segment->depth = depth;
    return segment;
  }

  void MakeFirst() {
    directory_.reserve(1);
    directory_.push_back(Make(kFirstCapacity, 0));
    capacity_ = kFirstCapacity;
  }

  // REQUIRES: the segment has an empty slot.
  void Put(Segment& segment, const Entry& entry) noexcept {
    std::size_t at = HomeOf(entry.hash);
    while (segment.tags[at] != kEmpty) {
      at = Next(at);
    }
    segment.tags[at] = TagOf(entry.hash);
    segment.entries[at] = entry;
    ++segment.used;
  }

  // Moves entries after the hole into it where their searches would pass it, so that a search can end at the first empty slot.
  void EraseSlot(Segment& segment, std::size_t hole) noexcept {
    const auto distance = [this](std::size_t from, std::size_t to) { return to >= from ? to - from : to + capacity_ - from; };
    for (std::size_t at = Next(hole); segment.tags[at] != kEmpty; at = Next(at)) {
      if (distance(HomeOf(segment.entries[at].hash), at) >= distance(hole, at)) {
        segment.tags[hole] = segment.tags[at];
        segment.entries[hole] = segment.entries[at];
        hole = at;
      }
    }
    segment.tags[hole] = kEmpty;
    --segment.used;
    --size_;
  }

  /// Takes all entries out of a segment and stores them in `entries`. Returns how many they are.
  std::size_t TakeOut(Segment& segment, std::array<Entry, kCapacity>& entries) const noexcept {
    std::size_t count = 0;
    for (std::size_t at = 0; at < capacity_; ++at) {
      if (segment.tags[at] != kEmpty) {
        entries[count++] = segment.entries[at];
      }
    }
    segment.tags = {};
    segment.used = 0;
    return count;
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
    auto wide = std::make_unique_for_overwrite<Entry[]>(2 * capacity_);
    Segment& segment = *directory_.front();
    std::array<Entry, kCapacity> entries;
    const std::size_t count = TakeOut(segment, entries);
    delete[] std::exchange(segment.entries, wide.release());
    capacity_ *= 2;
    for (std::size_t entry = 0; entry < count; ++entry) {
      Put(segment, entries[entry]);
    }
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
    Segment& high = *Make(kCapacity, static_cast<std::uint8_t>(low.depth + 1));
    const std::size_t width = WidthOf(low);
    const std::size_t first = index & ~(width - 1);
    std::array<Entry, kCapacity> entries;
    const std::size_t count = TakeOut(low, entries);
    ++low.depth;
    std::fill_n(directory_.begin() + static_cast<std::ptrdiff_t>(first + width / 2), width / 2, &high);
    for (std::size_t entry = 0; entry < count; ++entry) {
      Put(*directory_[IndexOf(entries[entry].hash)], entries[entry]);
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
      std::array<Entry, kCapacity> entries;
      for (std::size_t entry = TakeOut(other, entries); entry-- > 0;) {
        Put(segment, entries[entry]);
      }
      --segment.depth;
      std::fill_n(directory_.begin() + static_cast<std::ptrdiff_t>(index ^ width), width, &segment);
      delete[] other.entries;
      pool_.GiveBack(&other);
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
  SegmentPool<Segment> pool_;
};

}  // namespace zt

#endif  // ZT_ENGINE_FILES_HASH_TABLE_H
