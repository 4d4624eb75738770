// Which files of a process are to be restored, told one by one.

#ifndef ZT_ENGINE_FINAL_STATE_H
#define ZT_ENGINE_FINAL_STATE_H

#include <cstdint>

#include "engine/context.h"
#include "engine/files/hash_table.h"
#include "engine/files/path_text.h"
#include "engine/inspection.h"

namespace zt {

/// Paths that are not reported again, as they were shown. The hash is keyed, as a watched program chooses the paths.
class PathSet {
 public:
  /// Adds `path`, borrowed, and returns true, or returns false when it is there. Throws std::bad_alloc.
  bool Add(const PathText& path) {
    const std::uint64_t hash = path.Hash(TextHash::OfProcess());
    const bool is_new = paths_.Find(hash, [&path](const PathText* other) { return *other == path; }) == nullptr;
    if (is_new) {
      paths_.Insert(hash, &path);
    }
    return is_new;
  }

 private:
  HashTable<const PathText*> paths_;
};

/// Tells `visitor` the final state of the newest process under `pid`; nothing of one that is not in the tree.
/// REQUIRES: the engine's lock is held.
void TellFinalState(const _ZtEngineCore& engine, std::uint64_t pid, FinalStateVisitor& visitor);

}  // namespace zt

#endif  // ZT_ENGINE_FINAL_STATE_H
