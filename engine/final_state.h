// Which files of a process are to be restored, told one by one.

#ifndef ZT_ENGINE_FINAL_STATE_H
#define ZT_ENGINE_FINAL_STATE_H

#include <cstdint>
#include <set>
#include <string>

#include "engine/context.h"
#include "engine/inspection.h"

namespace zt {

/// Paths that are not reported again, as they were shown. Ordered, as a watched program chooses the paths: it could choose them
/// so that the hashes of a hash set meet.
using PathSet = std::set<std::wstring>;

/// Tells `visitor` the final state of the newest process under `pid`; nothing of one that is not in the tree.
/// REQUIRES: the engine's lock is held.
void TellFinalState(const _ZtEngineCore& engine, std::uint64_t pid, FinalStateVisitor& visitor);

}  // namespace zt

#endif  // ZT_ENGINE_FINAL_STATE_H
