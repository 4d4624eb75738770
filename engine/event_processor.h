// What one event does to one process.

#ifndef ZT_ENGINE_EVENT_PROCESSOR_H
#define ZT_ENGINE_EVENT_PROCESSOR_H

#include <cstdint>

#include "engine/context.h"
#include "engine/event.h"

namespace zt {

/// Attributes an event to the process `key`: keeps the tree, scores the line and steps file state machines. Returns the penalty
/// of the callback that ran last, else 1.
///
/// @param insertion   the event; its outcome receives the steps that callbacks made
/// @param first_pass  whether this is the acting process and not its parent; only the trace tells them apart
///
/// REQUIRES: the engine's lock is held. Throws std::bad_alloc with the tables consistent.
std::uint32_t ZtProcessLogItem(_ZtEngineCore& engine, Insertion& insertion, const ZtProcKey& key, bool first_pass);

}  // namespace zt

#endif  // ZT_ENGINE_EVENT_PROCESSOR_H
