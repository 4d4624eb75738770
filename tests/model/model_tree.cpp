#include "tests/model/model_tree.h"

#include <algorithm>

namespace zt::model {
namespace {

bool Contains(const std::vector<Key>& keys, const Key& key) { return std::find(keys.begin(), keys.end(), key) != keys.end(); }

void Collect(const Tree& tree, const Key& key, std::vector<Key>& family) {
  if (!tree.contains(key) || Contains(family, key)) {
    return;
  }
  family.push_back(key);
  for (const Key& child : tree.at(key).children) {
    Collect(tree, child, family);
  }
}

}  // namespace

std::vector<Key> WalkUp(const Tree& tree, const Key& key) {
  std::vector<Key> walked;
  Key current = key;
  while (tree.contains(current) && !Contains(walked, current)) {
    walked.push_back(current);
    current = tree.at(current).parent_key;
  }
  return walked;
}

Key FindRoot(const Tree& tree, const Key& key, std::uint32_t limit) {
  if (!tree.contains(key) || !tree.contains(tree.at(key).parent_key)) {
    return key;
  }
  // The limit alone ends a climb round a circle of parents.
  Key root = key;
  Key candidate = tree.at(key).parent_key;
  std::uint32_t left = limit;
  while (left > 0) {
    root = candidate;
    const Key parent = tree.at(candidate).parent_key;
    if (!tree.contains(parent)) {
      break;
    }
    candidate = parent;
    --left;
  }
  return root;
}

std::vector<Key> CollectFamily(const Tree& tree, const Key& root) {
  std::vector<Key> family;
  Collect(tree, root, family);
  return family;
}

void InsertChild(Tree& tree, const Key& parent, const Key& child, const ProcessItem& item) {
  if (tree.contains(parent)) {
    tree[parent].children.push_back(child);
    tree[child].parent_key = parent;
    for (const Key& key : WalkUp(tree, parent)) {
      tree[key].live_count += 1;
    }
  }
  TreeEntry& entry = tree[child];
  entry.live_count = 1;
  entry.item = item;
  entry.own_key = child;
}

}  // namespace zt::model
