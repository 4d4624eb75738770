// A hash table of paths that stand elsewhere.

#ifndef ZTENG_ZT_PATH_HASH_H
#define ZTENG_ZT_PATH_HASH_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

/// A hash of a path, never 0. Has a secret of the process's own, so that nobody can choose paths that meet.
std::uint32_t ZtPathTag(std::wstring_view path) noexcept;

/// What finds values by their path without keeping the path: each value leads to where it stands. A search reads one cache line
/// of the table as a rule, and the path that it finds.
///
/// A bucket is one cache line, where a value has eight bytes. What finds no room in its own bucket goes to the next one that
/// has some, and every bucket on the way counts how many went past it: a search ends at the first bucket that none went past,
/// if not before, or has seen all.
///
/// Threads: none of its own.
///
/// @tparam Value  a pointer or an iterator; several may have one path
template <typename Value>
class ZtPathHash {
 public:
  ZtPathHash() = default;
  ZtPathHash(ZtPathHash&& other) noexcept : buckets_(std::move(other.buckets_)), size_(std::exchange(other.size_, 0)) {}
  ZtPathHash& operator=(ZtPathHash&& other) noexcept {
    buckets_ = std::exchange(other.buckets_, {});
    size_ = std::exchange(other.size_, 0);
    return *this;
  }
  ZtPathHash(const ZtPathHash&) = delete;  // Nobody copies what it leads to with it.
  ZtPathHash& operator=(const ZtPathHash&) = delete;
  ~ZtPathHash() = default;

  /// The value under `path` for which is_same(value) is true, or null. Valid until the table changes.
  template <typename IsSame>
  [[nodiscard]] const Value* Find(std::wstring_view path, const IsSame& is_same) const {
    const Place place = FindPlace(ZtPathTag(path), is_same);
    return place.slot == kSlots ? nullptr : &buckets_[place.bucket].values[place.slot];
  }

  /// Throws std::bad_alloc with nothing changed.
  void Insert(std::wstring_view path, Value value) {
    if (size_ + 1 > buckets_.size() * (kSlots - 1)) {
      Grow();
    }
    Put(ZtPathTag(path), value);
    ++size_;
  }

  /// Removes what Find finds; returns whether there was something.
  template <typename IsSame>
  bool Erase(std::wstring_view path, const IsSame& is_same) {
    const std::uint32_t tag = ZtPathTag(path);
    const Place place = FindPlace(tag, is_same);
    if (place.slot == kSlots) {
      return false;
    }
    buckets_[place.bucket].tags[place.slot] = 0;
    for (std::size_t bucket = HomeOf(tag); bucket != place.bucket; bucket = Next(bucket)) {
      --buckets_[bucket].passed;
    }
    --size_;
    return true;
  }

 private:
  static constexpr std::size_t kSlots = 5;
  static constexpr std::size_t kFirstBuckets = 2;

  struct alignas(64) Bucket {
    std::array<std::uint32_t, kSlots> tags = {};  ///< Of what stands in the slots; 0 for an empty one.
    std::uint32_t passed = 0;                     ///< Values that stand further on for want of room here.
    std::array<Value, kSlots> values = {};
  };
  struct Place {
    std::size_t bucket;
    std::size_t slot;  ///< kSlots for nowhere.
  };

  [[nodiscard]] std::size_t HomeOf(std::uint32_t tag) const {
    return static_cast<std::size_t>(std::uint64_t{tag} * buckets_.size() >> 32);
  }
  [[nodiscard]] std::size_t Next(std::size_t bucket) const { return bucket + 1 < buckets_.size() ? bucket + 1 : 0; }

  template <typename IsSame>
  [[nodiscard]] Place FindPlace(std::uint32_t tag, const IsSame& is_same) const {
    std::size_t at = HomeOf(tag);
    for (std::size_t left = buckets_.size(); left > 0; --left, at = Next(at)) {
      const Bucket& bucket = buckets_[at];
      for (std::size_t slot = 0; slot < kSlots; ++slot) {
        if (bucket.tags[slot] == tag && is_same(bucket.values[slot])) {
          return {at, slot};
        }
      }
      if (bucket.passed == 0) {
        break;
      }
    }
    return {at, kSlots};
  }

  // REQUIRES: there is an empty slot.
  void Put(std::uint32_t tag, Value value) {
    for (std::size_t at = HomeOf(tag);; at = Next(at)) {
      Bucket& bucket = buckets_[at];
      const auto empty = std::find(bucket.tags.begin(), bucket.tags.end(), 0U);
      if (empty != bucket.tags.end()) {
        *empty = tag;
        bucket.values[static_cast<std::size_t>(empty - bucket.tags.begin())] = value;
        return;
      }
      ++bucket.passed;
    }
  }

  // The tags tell where values go, so no path is read.
  void Grow() {
    std::vector<Bucket> buckets(std::max(kFirstBuckets, buckets_.size() + buckets_.size() / 4 + 1));
    buckets.swap(buckets_);
    for (const Bucket& bucket : buckets) {
      for (std::size_t slot = 0; slot < kSlots; ++slot) {
        if (bucket.tags[slot] != 0) {
          Put(bucket.tags[slot], bucket.values[slot]);
        }
      }
    }
  }

  std::vector<Bucket> buckets_;
  std::size_t size_ = 0;
};

#endif  // ZTENG_ZT_PATH_HASH_H
