// Creation and exit of processes.

#ifndef ZT_ENGINE_PROCESS_EVENTS_H
#define ZT_ENGINE_PROCESS_EVENTS_H

#include "engine/context.h"
#include "engine/event.h"

namespace zt {

/// `creator` made the process that `event` names: enters it into the start times and the tree. Throws std::bad_alloc with
/// nothing changed.
void HandleProcessCreate(_ZtEngineCore& engine, const Event& event, const ZtProcKey& creator);

/// The process `key` exits; a second exit, or that of an unknown process, changes nothing.
void HandleProcessExit(_ZtEngineCore& engine, const ZtProcKey& key);

}  // namespace zt

#endif  // ZT_ENGINE_PROCESS_EVENTS_H
