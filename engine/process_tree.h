// The process tree: the one owner of the links between processes and of the live counts. Whatever climbs or descends the tree
// goes through here, so that a cycle of parents (a process that creates itself, or its own creator) ends every climb and a key
// that a children list holds twice is visited once.

#ifndef ZT_ENGINE_PROCESS_TREE_H
#define ZT_ENGINE_PROCESS_TREE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory_resource>
#include <vector>

#include "engine/process_item.h"
#include "zteng/zt_items.h"

namespace zt {

/// Whether a parent key says that there is no parent: its id has zero low 32 bits.
constexpr bool NamesNoParent(const ZtProcKey& parent_key) { return static_cast<std::uint32_t>(parent_key.Pid) == 0; }

/// The processes known to an engine, by key.
///
/// Threads: none of its own; the engine's lock guards it.
class ProcessTree {
 public:
  /// One process and its links.
  struct Entry {
    ZtProcKey key;
    ZtProcKey parentKey;                ///< {0, 0} for a process whose creator was not in the tree.
    std::vector<ZtProcKey> children;    ///< In order of creation; a key may stand in it twice.
    std::uint32_t LiveCount = 0;        ///< Processes of the subtree, itself included, that have not exited; wraps.
    std::int32_t Exited = 0;            ///< Once the process has exited, the collections that it still survives.
    std::uint32_t LeavingChildren = 0;  ///< Within a collection: how many entries with this one as their parent are erased.
    bool Leaving = false;               ///< Within a collection: this entry is erased.
    bool Unlinked = false;              ///< Within a collection: its parent's link to it is gone.
    ProcessItem Item;
  };
  using Map = std::map<ZtProcKey, Entry>;

  ProcessTree() = default;
  ProcessTree(const ProcessTree&) = delete;  // Entries are pointed to.
  ProcessTree& operator=(const ProcessTree&) = delete;
  ~ProcessTree() = default;

  [[nodiscard]] std::size_t size() const { return entries_.size(); }
  /// In order of keys.
  [[nodiscard]] Map::iterator begin() { return entries_.begin(); }
  [[nodiscard]] Map::iterator end() { return entries_.end(); }

  /// The entry of `key`, or null. Valid until the entry is erased.
  [[nodiscard]] Entry* Find(const ZtProcKey& key);
  [[nodiscard]] const Entry* Find(const ZtProcKey& key) const;

  /// Enters a process under its creator. When the creator is in the tree, it is linked both ways and the live counts of the
  /// creator and its ancestors are raised; else the process is entered without a link. An entry that exists already under
  /// `child_key` keeps its children and its exited flag. Throws std::bad_alloc with nothing changed.
  Entry& Insert(const ZtProcKey& child_key, const ZtProcKey& parent_key, ProcessItem item);

  /// Marks `entry` as exited and lowers the live counts of it and its ancestors.
  void MarkExited(Entry& entry);

  /// Calls visit(Entry&) for the process `first` and then for each ancestor, parent by parent, until a key is not in the tree
  /// or was visited before. Does nothing when `first` is not in the tree. Allocates nothing.
  template <typename Visit>
  void Climb(const ZtProcKey& first, Visit visit) {
    std::size_t left = MeasureClimb(first).entries();
    for (Entry* entry = Find(first); left > 0; entry = Find(entry->parentKey), --left) {
      visit(*entry);
    }
  }

  /// The top of the family of `key`: the ancestor `climb_limit` levels up, or the last one that is in the tree, or `key`
  /// itself, which need not be in the tree. On a cycle of parents the climb goes round it. Looks at `climb_limit` entries at
  /// most, however deep the tree is.
  [[nodiscard]] ZtProcKey FamilyRoot(const ZtProcKey& key, std::uint32_t climb_limit) const;

  /// One collection: counts the exited flags down and erases every entry whose live count and exited flag were both zero, after
  /// unlinking it from its parent. Children of an erased process stay.
  void CollectExited();

 private:
  /// The shape of the way upwards from an entry.
  struct ClimbShape {
    std::size_t before_cycle = 0;  ///< Entries before the way comes back to itself; all of them when it does not.
    std::size_t cycle = 0;         ///< Entries of the cycle of parents that it ends in; 0 for none.

    [[nodiscard]] std::size_t entries() const { return before_cycle + cycle; }
  };
  [[nodiscard]] ClimbShape MeasureClimb(const ZtProcKey& first) const;

  /// Removes from the list of `parent` one link to each leaving entry that has it as its parent.
  void UnlinkLeavingChildren(Entry& parent);

  Map entries_;
};

/// The process `root` and all its descendants, a process before its children, children in list order, each once. Empty when
/// `root` is not in the tree. A small family needs no memory from the heap. Valid until the tree changes.
class ProcessFamily {
 public:
  ProcessFamily(const ProcessTree& tree, const ZtProcKey& root);
  ProcessFamily(const ProcessFamily&) = delete;  // The members lie in the object itself.
  ProcessFamily& operator=(const ProcessFamily&) = delete;
  ~ProcessFamily() = default;

  [[nodiscard]] std::size_t size() const { return members_.size(); }
  [[nodiscard]] auto begin() const { return members_.begin(); }
  [[nodiscard]] auto end() const { return members_.end(); }

 private:
  static constexpr std::size_t kSmall = 32;

  std::array<std::byte, 4096> small_;
  std::pmr::monotonic_buffer_resource memory_{small_.data(), small_.size()};
  std::pmr::vector<const ProcessTree::Entry*> members_{&memory_};
};

}  // namespace zt

#endif  // ZT_ENGINE_PROCESS_TREE_H
