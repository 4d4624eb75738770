#include "engine/process_tree.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace zt {
namespace {

/// Makes room for one more element, so that the next push_back cannot throw.
void ReserveOne(std::vector<ZtProcKey>& keys) {
  if (keys.size() == keys.capacity()) {
    keys.reserve(std::max<std::size_t>(4, 2 * keys.size()));
  }
}

}  // namespace

ProcessTree::Entry* ProcessTree::Find(const ZtProcKey& key) {
  const auto found = entries_.find(key);
  return found == entries_.end() ? nullptr : &found->second;
}

const ProcessTree::Entry* ProcessTree::Find(const ZtProcKey& key) const {
  const auto found = entries_.find(key);
  return found == entries_.end() ? nullptr : &found->second;
}

ProcessTree::Entry& ProcessTree::Insert(const ZtProcKey& child_key, const ZtProcKey& parent_key, ProcessItem item) {
  // Whatever can throw comes first.
  Entry* parent = Find(parent_key);
  if (parent != nullptr) {
    ReserveOne(parent->children);
  }
  Entry& child = entries_.try_emplace(child_key).first->second;

  if (parent != nullptr) {
    parent->children.push_back(child_key);
    child.parentKey = parent_key;
    Climb(parent_key, [](Entry& ancestor) { ++ancestor.LiveCount; });
  }
  child.LiveCount = 1;
  child.Item = std::move(item);
  child.key = child_key;
  return child;
}

void ProcessTree::MarkExited(Entry& entry) {
  Climb(entry.key, [](Entry& ancestor) { --ancestor.LiveCount; });
  entry.Exited = 1;
  entry.Item.Exiting = 1;
}

ZtProcKey ProcessTree::FamilyRoot(const ZtProcKey& key, std::uint32_t climb_limit) const {
  const Entry* root = Find(key);
  if (root == nullptr) {
    return key;
  }
  for (std::uint32_t level = 0; level < climb_limit; ++level) {
    const Entry* const parent = Find(root->parentKey);
    if (parent == nullptr) {
      break;
    }
    root = parent;
  }
  return root->key;
}

// Whether an entry goes depends on itself alone, so all that go are marked first. Then each parent's list is gone over once,
// however many of its children leave.
void ProcessTree::CollectExited() {
  for (auto& [key, entry] : entries_) {
    entry.Leaving = entry.LiveCount == 0 && entry.Exited == 0;
    if (!entry.Leaving) {
      entry.Exited -= entry.Exited > 0 ? 1 : 0;
    } else if (Entry* parent = Find(entry.parentKey); parent != nullptr) {
      ++parent->LeavingChildren;
    }
  }
  for (auto& [key, entry] : entries_) {
    if (entry.LeavingChildren != 0) {
      UnlinkLeavingChildren(entry);
    }
  }
  std::erase_if(entries_, [](const auto& entry) { return entry.second.Leaving; });
}

void ProcessTree::UnlinkLeavingChildren(Entry& parent) {
  parent.LeavingChildren = 0;
  std::erase_if(parent.children, [&](const ZtProcKey& child_key) {
    Entry* child = Find(child_key);
    const bool unlinks = child != nullptr && child->Leaving && !child->Unlinked && child->parentKey == parent.key;
    if (unlinks) {
      child->Unlinked = true;  // A second link to the same key stays.
    }
    return unlinks;
  });
}

// Brent's cycle search: a marker stays behind and jumps to the walker after 1, 2, 4, ... steps. Where the walker meets the
// marker, the steps since the last jump are the cycle's length; where it leaves the tree there is no cycle.
ProcessTree::ClimbShape ProcessTree::MeasureClimb(const ZtProcKey& first) const {
  const Entry* const start = Find(first);
  if (start == nullptr) {
    return {};
  }
  const Entry* marker = start;
  const Entry* walker = Find(start->parentKey);
  std::size_t visited = 1;
  std::size_t since_jump = 1;
  std::size_t next_jump = 1;
  for (; walker != nullptr && walker != marker; walker = Find(walker->parentKey), ++visited, ++since_jump) {
    if (since_jump == next_jump) {
      marker = walker;
      next_jump *= 2;
      since_jump = 0;
    }
  }
  if (walker == nullptr) {
    return {visited, 0};
  }
  // A second walker, one cycle ahead of the first, meets it where the cycle begins.
  const std::size_t cycle = since_jump;
  const Entry* ahead = start;
  for (std::size_t step = 0; step < cycle; ++step) {
    ahead = Find(ahead->parentKey);
  }
  std::size_t before_cycle = 0;
  for (const Entry* behind = start; behind != ahead; behind = Find(behind->parentKey), ahead = Find(ahead->parentKey)) {
    ++before_cycle;
  }
  return {before_cycle, cycle};
}

ProcessFamily::ProcessFamily(const ProcessTree& tree, const ZtProcKey& root) {
  members_.reserve(kSmall);
  std::pmr::vector<ZtProcKey> to_visit(&memory_);
  std::pmr::unordered_set<const ProcessTree::Entry*> met(&memory_);
  to_visit.push_back(root);
  while (!to_visit.empty()) {
    const ProcessTree::Entry* entry = tree.Find(to_visit.back());
    to_visit.pop_back();
    if (entry != nullptr && met.insert(entry).second) {
      members_.push_back(entry);
      to_visit.insert(to_visit.end(), entry->children.rbegin(), entry->children.rend());  // The first child is visited next.
    }
  }
}

}  // namespace zt
