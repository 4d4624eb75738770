#include "engine/file_tree.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <limits>
#include <utility>

#include "engine/paths.h"
#include "platform/prefetch.h"

namespace zt {
namespace {

constexpr std::size_t kHeadUnits = 4;
constexpr std::size_t kUnitBits = 16;

/// The four units of `path` behind its first `prefix` ones. Of two paths that share the prefix, one with the lesser head is the
/// lesser path; the same head tells nothing. Keys have units of 16 bits, but what is looked up may have a wider one, where
/// wchar_t is wider: the largest stands for all of these, and nothing behind it counts.
std::uint64_t HeadOf(std::wstring_view path, std::size_t prefix) {
  constexpr std::uint32_t kLargest = 0xFFFF;
  std::uint64_t head = 0;
  std::size_t shift = kUnitBits * kHeadUnits;
  for (const wchar_t unit : path.substr(prefix, kHeadUnits)) {
    const auto value = std::min(static_cast<std::uint32_t>(unit), kLargest);
    shift -= kUnitBits;
    head |= std::uint64_t{value} << shift;
    if (value == kLargest) {
      break;
    }
  }
  return head;
}

wchar_t UnitOf(std::uint64_t head, std::size_t unit) {
  return static_cast<wchar_t>(static_cast<std::uint16_t>(head >> (kUnitBits * (kHeadUnits - 1 - unit))));
}

// For paths that share `prefix` units.
bool IsLess(std::wstring_view a, std::wstring_view b, std::size_t prefix) { return a.substr(prefix) < b.substr(prefix); }

using Memory = std::pmr::polymorphic_allocator<>;

/// A copy in `memory`.
std::wstring_view Kept(std::wstring_view text, Memory memory) {
  auto* const units = memory.allocate_object<wchar_t>(text.size());
  std::copy(text.begin(), text.end(), units);
  return {units, text.size()};
}

template <typename Slots>
void MoveSlots(Slots& from, std::size_t first, std::size_t last, Slots& to, std::size_t slot) {
  std::move(from.begin() + static_cast<std::ptrdiff_t>(first), from.begin() + static_cast<std::ptrdiff_t>(last),
            to.begin() + static_cast<std::ptrdiff_t>(slot));
}

}  // namespace

struct FileTree::Node {
  static constexpr std::uint64_t kNoHead = std::numeric_limits<std::uint64_t>::max();

  explicit Node(std::uint32_t node_level) : level(node_level) { heads.fill(kNoHead); }
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;

  [[nodiscard]] bool IsFull() const { return count == kFanout; }

  /// What a split takes off a node: its upper part, and the separator in front of it.
  struct UpperPart {
    std::wstring_view separator;
    Node* node;
  };
  /// Splits a full node in halves, or so that it keeps most where `path`, for which room is wanted, shows that paths come in
  /// their order. Throws std::bad_alloc.
  ///
  /// @param is_last  whether no path comes behind those that lead to this node
  virtual UpperPart SplitFor(std::wstring_view path, bool is_last, Memory memory) = 0;

  /// To be called when the separators around the node have come closer together: all paths that lead here share `units` units
  /// now. Heads are made anew only where they gain by it, since that reads all paths.
  void SetPrefix(std::size_t units) {
    if (units > prefix + 1) {
      prefix = units;
      MakeHeads();
    }
  }

  /// The slots whose head is `head`, or where it would stand. Reads all heads, so that they come from memory at once and no
  /// branch waits for one.
  [[nodiscard]] std::pair<std::size_t, std::size_t> SlotsOf(std::uint64_t head) const {
    std::size_t first = 0;
    for (const std::uint64_t other : heads) {
      first += other < head ? 1 : 0;
    }
    std::size_t last = first;
    while (last < count && heads[last] == head) {
      ++last;
    }
    return {first, last};
  }

  /// Moves what stands in a slot and behind it one slot on. REQUIRES: the node is not full.
  template <typename Slots>
  void MakeRoom(Slots& slots, std::size_t slot) const {
    const auto begin = slots.begin();
    std::move_backward(begin + static_cast<std::ptrdiff_t>(slot), begin + count, begin + count + 1);
  }

  std::uint32_t level;  ///< 0 for a leaf.
  std::uint32_t count = 0;
  std::size_t prefix = 0;  ///< Units that all paths that lead here share, or fewer.
  /// Of the paths of a leaf, of the separators of an inner node; kNoHead behind them.
  std::array<std::uint64_t, kFanout> heads;

 protected:
  ~Node() = default;  // Nodes go with the memory that they stand in.

 private:
  virtual void MakeHeads() = 0;
};

struct FileTree::Leaf final : Node {
  /// Paths often come in their order. A leaf that is left behind then keeps some room: the names that a file's transformed
  /// copies get come next to its own.
  static constexpr std::size_t kFilled = kFanout - kFanout / 8;

  Leaf() : Node(0) {}

  [[nodiscard]] const std::wstring& PathAt(std::size_t slot) const { return entries[slot]->first; }

  /// The first slot whose path is not less than `path`.
  [[nodiscard]] std::size_t LowerBound(std::wstring_view path) const {
    auto [first, last] = SlotsOf(HeadOf(path, prefix));
    while (first < last) {
      const std::size_t middle = (first + last) / 2;
      if (IsLess(PathAt(middle), path, prefix)) {
        first = middle + 1;
      } else {
        last = middle;
      }
    }
    return first;
  }

  UpperPart SplitFor(std::wstring_view path, bool /*is_last*/, Memory memory) override {
    const std::size_t middle = LowerBound(path) == count ? kFilled : count / 2;
    const std::wstring_view separator = Kept(SeparatorAt(middle, path.substr(0, prefix)), memory);
    auto* const upper = memory.new_object<Leaf>();
    upper->prefix = prefix;
    upper->count = static_cast<std::uint32_t>(count - middle);
    MoveSlots(heads, middle, count, upper->heads, 0);
    MoveSlots(entries, middle, count, upper->entries, 0);
    std::fill(heads.begin() + static_cast<std::ptrdiff_t>(middle), heads.end(), kNoHead);
    count = static_cast<std::uint32_t>(middle);
    return {separator, upper};
  }

  /// REQUIRES: the node is not full.
  void Insert(std::size_t slot, Entry entry) {
    MakeRoom(heads, slot);
    MakeRoom(entries, slot);
    heads[slot] = HeadOf(entry->first, prefix);
    entries[slot] = entry;
    ++count;
  }

  void Erase(std::size_t slot) {
    MoveSlots(heads, slot + 1, count, heads, slot);
    MoveSlots(entries, slot + 1, count, entries, slot);
    heads[count - 1] = kNoHead;
    --count;
  }

  std::array<Entry, kFanout> entries;

 private:
  /// The shortest text that is greater than the path below slot `upper` and a beginning of the one there. Reads neither where
  /// the heads tell it, behind the text that all paths share up to there.
  [[nodiscard]] std::wstring SeparatorAt(std::size_t upper, std::wstring_view shared) const {
    const std::size_t same = static_cast<std::size_t>(std::countl_zero(heads[upper] ^ heads[upper - 1])) / kUnitBits;
    if (same == kHeadUnits) {
      return PathAt(upper).substr(0, CommonPrefix(PathAt(upper - 1), PathAt(upper)) + 1);
    }
    std::wstring separator(shared);
    for (std::size_t unit = 0; unit <= same; ++unit) {
      separator += UnitOf(heads[upper], unit);
    }
    return separator;
  }

  void MakeHeads() override {
    for (std::size_t slot = 0; slot < count; ++slot) {
      heads[slot] = HeadOf(PathAt(slot), prefix);
    }
  }
};

struct FileTree::Inner final : Node {
  explicit Inner(std::uint32_t node_level) : Node(node_level) {}

  /// The child that `path` leads to: the last one whose separator is not greater.
  [[nodiscard]] std::size_t ChildOf(std::wstring_view path) const {
    if (shared > prefix) {
      const int order = path.substr(prefix).compare(0, shared - prefix, separators[1], prefix, shared - prefix);
      if (order != 0) {
        return order < 0 ? 0 : count - 1;
      }
    }
    auto [first, last] = SlotsOf(HeadOf(path, shared));
    first = std::max<std::size_t>(first, 1);
    while (first < last) {
      const std::size_t middle = (first + last) / 2;
      if (IsLess(path, separators[middle], shared)) {
        last = middle;
      } else {
        first = middle + 1;
      }
    }
    return first - 1;
  }

  [[nodiscard]] Range RangeOf(std::size_t child, const Range& own) const {
    return {child > 0 ? separators[child] : own.low, child + 1 < count ? separators[child + 1] : own.high};
  }

  UpperPart SplitFor(std::wstring_view path, bool is_last, Memory memory) override {
    // Only at the end of the tree: nodes of few children elsewhere could be put on top of each other.
    const std::size_t middle = is_last && ChildOf(path) == count - 1 ? count - 1 : count / 2;
    auto* const upper = memory.new_object<Inner>(level);
    upper->prefix = prefix;
    upper->count = static_cast<std::uint32_t>(count - middle);
    MoveSlots(separators, middle, count, upper->separators, 0);
    MoveSlots(children, middle, count, upper->children, 0);
    count = static_cast<std::uint32_t>(middle);
    MakeHeads();
    upper->MakeHeads();
    return {upper->separators[0], upper};
  }

  /// REQUIRES: the node is not full.
  void Insert(std::size_t child, std::wstring_view separator, Node* node) {
    MakeRoom(heads, child);
    MakeRoom(separators, child);
    MakeRoom(children, child);
    separators[child] = separator;
    children[child] = node;
    ++count;
    if (child <= 1 || child + 1 == count) {
      MakeHeads();  // The outermost separators tell what all share.
    } else {
      heads[child] = HeadOf(separator, shared);
    }
  }

  std::array<std::wstring_view, kFanout> separators;  ///< In front of each child; the first one is not used.
  std::array<Node*, kFanout> children;

 private:
  [[nodiscard]] std::size_t SharedBySeparators() const {
    const std::size_t units = count < 2 ? 0 : CommonPrefix(separators[1], separators[count - 1]);
    return units > prefix + 1 ? units : prefix;  // One unit is not worth the comparison.
  }

  void MakeHeads() override {
    shared = SharedBySeparators();
    heads.fill(kNoHead);
    heads[0] = 0;  // The first child has no separator: it comes before all.
    for (std::size_t child = 1; child < count; ++child) {
      heads[child] = HeadOf(separators[child], shared);
    }
  }

  /// Units that all separators share, `prefix` or more. The heads begin behind them: the outermost nodes have paths that share
  /// nothing, but mostly of one folder.
  std::size_t shared = 0;
};

std::size_t FileTree::Range::SharedPrefix() const { return CommonPrefix(low, high); }

FileTree::FileTree() : memory_(sizeof(Leaf)), root_(Memory(&memory_).new_object<Leaf>()) {}

std::size_t FileTree::Depth() const { return root_->level + 1; }

FileTree::Leaf& FileTree::LeafOf(std::wstring_view path) const {
  Node* node = root_;
  while (node->level > 0) {
    const auto& inner = static_cast<const Inner&>(*node);
    node = inner.children[inner.ChildOf(path)];
  }
  auto& leaf = static_cast<Leaf&>(*node);
  Prefetch(&leaf, sizeof(Leaf));
  return leaf;
}

FileTree::Entry FileTree::LowerBound(ZtFileMap& files, const std::wstring& path) const {
  const Leaf& leaf = LeafOf(path);
  const std::size_t slot = leaf.LowerBound(path);
  if (slot > 0) {
    Prefetch(&*leaf.entries[slot - 1], sizeof(std::wstring));  // Who adds a file reads both of its neighbours next.
  }
  if (slot < leaf.count) {
    return leaf.entries[slot];
  }
  return slot > 0 ? std::next(leaf.entries[slot - 1]) : files.lower_bound(path);
}

// Full nodes are split on the way down, so that there is room for the separator of the next split.
void FileTree::Insert(Entry entry) {
  const std::wstring_view path = entry->first;
  if (root_->IsFull()) {
    auto* const root = Memory(&memory_).new_object<Inner>(root_->level + 1);
    root->Insert(0, {}, root_);
    root_ = root;
  }
  Node* node = root_;
  for (Range range; node->level > 0;) {
    auto& inner = static_cast<Inner&>(*node);
    std::size_t child = inner.ChildOf(path);
    if (inner.children[child]->IsFull()) {
      Split(inner, child, range, path);
      child = inner.ChildOf(path);
    }
    range = inner.RangeOf(child, range);
    node = inner.children[child];
  }
  auto& leaf = static_cast<Leaf&>(*node);
  leaf.Insert(leaf.LowerBound(path), entry);
  ++size_;
}

void FileTree::Split(Inner& parent, std::size_t child, const Range& parent_range, std::wstring_view path) {
  Node& lower = *parent.children[child];
  const bool is_last = parent.RangeOf(child, parent_range).high.empty();
  const auto [separator, upper] = lower.SplitFor(path, is_last, &memory_);
  parent.Insert(child + 1, separator, upper);
  lower.SetPrefix(parent.RangeOf(child, parent_range).SharedPrefix());
  upper->SetPrefix(parent.RangeOf(child + 1, parent_range).SharedPrefix());
  leaves_ += upper->level == 0 ? 1 : 0;
}

bool FileTree::Erase(std::wstring_view path) {
  Leaf& leaf = LeafOf(path);
  const std::size_t slot = leaf.LowerBound(path);
  if (slot == leaf.count || leaf.PathAt(slot) != path) {
    return false;
  }
  leaf.Erase(slot);
  --size_;
  return true;
}

}  // namespace zt
