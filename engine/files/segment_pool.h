// Memory for many small objects of one type.

#ifndef ZT_ENGINE_FILES_SEGMENT_POOL_H
#define ZT_ENGINE_FILES_SEGMENT_POOL_H

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace zt {

/// Objects that lie close together, so that many of them share few pages and lines of memory. Memory that is given back is
/// used again, and freed with the pool.
///
/// @tparam Segment  has a default value, and a member `next_free` that the pool may use while the object is free
template <typename Segment>
class SegmentPool {
 public:
  SegmentPool() = default;
  SegmentPool(SegmentPool&& other) noexcept
      : blocks_(std::exchange(other.blocks_, {})), free_(std::exchange(other.free_, nullptr)) {}
  SegmentPool& operator=(SegmentPool&& other) noexcept {
    blocks_ = std::exchange(other.blocks_, {});
    free_ = std::exchange(other.free_, nullptr);
    return *this;
  }
  SegmentPool(const SegmentPool&) = delete;
  SegmentPool& operator=(const SegmentPool&) = delete;
  ~SegmentPool() = default;

  /// Throws std::bad_alloc with nothing changed.
  Segment* Take() {
    if (free_ == nullptr) {
      AddBlock();
    }
    Segment* const taken = std::exchange(free_, free_->next_free);
    *taken = Segment();
    return taken;
  }
  void GiveBack(Segment* segment) noexcept { segment->next_free = std::exchange(free_, segment); }

 private:
  static constexpr std::size_t kLargestBlock = 64;

  // Each block is as large as all before it, so that a small table takes little.
  void AddBlock() {
    const std::size_t size = std::min(kLargestBlock, std::size_t{1} << std::min<std::size_t>(blocks_.size(), 6));
    blocks_.reserve(blocks_.size() + 1);
    blocks_.push_back(std::make_unique<Segment[]>(size));
    for (std::size_t segment = size; segment-- > 0;) {
      GiveBack(&blocks_.back()[segment]);
    }
  }

  std::vector<std::unique_ptr<Segment[]>> blocks_;
  Segment* free_ = nullptr;  ///< The first of a list of free objects.
};

}  // namespace zt

#endif  // ZT_ENGINE_FILES_SEGMENT_POOL_H
