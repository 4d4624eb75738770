// Which files of a process are to be restored, told one by one.

#ifndef ZT_ENGINE_FINAL_STATE_H
#define ZT_ENGINE_FINAL_STATE_H

#include <cstdint>

#include "engine/context.h"
#include "engine/inspection.h"

namespace zt {

/// Tells `visitor` the final state of the newest process under `pid`; nothing of one that is not in the tree.
/// REQUIRES: the engine's lock is held.
void TellFinalState(const _ZtEngineCore& engine, std::uint64_t pid, FinalStateVisitor& visitor);

}  // namespace zt

#endif  // ZT_ENGINE_FINAL_STATE_H
