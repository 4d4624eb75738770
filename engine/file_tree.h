// An ordered index of a file map that reads few keys.

#ifndef ZT_ENGINE_FILE_TREE_H
#define ZT_ENGINE_FILE_TREE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string>
#include <string_view>

#include "zteng/zt_items.h"

namespace zt {

/// A B+ tree of a file map's entries. The map itself is a binary tree: a descent of a million files reads some twenty keys,
/// nearly all of them from memory. This one is five nodes deep then, and reads one key as a rule.
///
/// All paths that lead to one node share a prefix: that of the two separators around it. A node keeps the next four units of
/// each of its paths in one integer, and only where these are the same are the paths themselves compared. Many paths of the
/// same four units (in the outermost nodes, whose paths share nothing) cost O(log n) comparisons more, never O(n).
///
/// The tree owns nothing of the map. Its entries stay where they are, so iterators are all it needs.
///
/// Threads: none of its own. After std::bad_alloc the tree can only be destroyed.
class FileTree {
 public:
  using Entry = ZtFileMap::iterator;

  FileTree();
  FileTree(const FileTree&) = delete;
  FileTree& operator=(const FileTree&) = delete;
  ~FileTree() = default;

  [[nodiscard]] std::size_t size() const { return size_; }

  /// The first entry of `files`, the map of the tree's entries, that is not less than `path`; its end when there is none.
  [[nodiscard]] Entry LowerBound(ZtFileMap& files, const std::wstring& path) const;

  /// Takes up an entry whose path the tree does not have. Throws std::bad_alloc.
  void Insert(Entry entry);
  /// Removes the entry of `path`; returns whether there was one.
  bool Erase(std::wstring_view path);

  /// How many nodes a look-up goes through.
  [[nodiscard]] std::size_t Depth() const;

  /// Whether so much was erased that a new tree would be much smaller. Emptied nodes stay in the tree.
  [[nodiscard]] bool IsSparse() const { return leaves_ > 1 && size_ < leaves_ * (kFanout / 8); }

 private:
  static constexpr std::size_t kFanout = 32;

  struct Node;
  struct Leaf;
  struct Inner;
  /// The separators around a node's paths: not less than `low` and less than `high`; empty for no bound.
  struct Range {
    std::wstring_view low;
    std::wstring_view high;

    [[nodiscard]] std::size_t SharedPrefix() const;
  };

  [[nodiscard]] Leaf& LeafOf(std::wstring_view path) const;
  void Split(Inner& parent, std::size_t child, const Range& parent_range, std::wstring_view path);

  /// Of all nodes and separators. They stand close together so, and not each on a page of its own between the map's entries.
  std::pmr::monotonic_buffer_resource memory_;
  Node* root_;
  std::size_t size_ = 0;
  std::size_t leaves_ = 1;
};

}  // namespace zt

#endif  // ZT_ENGINE_FILE_TREE_H
