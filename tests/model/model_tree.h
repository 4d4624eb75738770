// Walks over the process tree, up by parent keys and down by lists of children.

#ifndef ZT_TESTS_MODEL_MODEL_TREE_H
#define ZT_TESTS_MODEL_MODEL_TREE_H

#include <cstdint>
#include <vector>

#include "tests/model/model_records.h"

namespace zt::model {

/// `key` and its ancestors, as far as they are in the tree. A circle of parents is walked once.
std::vector<Key> WalkUp(const Tree& tree, const Key& key);

/// The root of the family of `key`: its ancestor at most `limit` links up.
Key FindRoot(const Tree& tree, const Key& key, std::uint32_t limit);

/// The processes under `root`, itself first, each once, depth first, children in list order.
std::vector<Key> CollectFamily(const Tree& tree, const Key& root);

/// Enters `item` under `child`, linked to `parent` where that is in the tree.
void InsertChild(Tree& tree, const Key& parent, const Key& child, const ProcessItem& item);

}  // namespace zt::model

#endif  // ZT_TESTS_MODEL_MODEL_TREE_H
