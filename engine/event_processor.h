// What one event does to one process.

#ifndef ZT_ENGINE_EVENT_PROCESSOR_H
#define ZT_ENGINE_EVENT_PROCESSOR_H

#include <cstdint>
#include <string>

#include "engine/context.h"
#include "engine/step_outcome.h"

namespace zt {

/// An event with its target ready for use, made once for both passes.
struct Event {
  /// Borrows `record`.
  explicit Event(const LOG_ITEM& record);

  const LOG_ITEM& log;
  std::wstring target;        ///< In the event's own letter case.
  std::wstring lower_target;  ///< In lower case: the form of all keys and lists.
};

/// Attributes `event` to the process `key`: keeps the tree, scores the line and steps file state machines. Returns the penalty
/// of the callback that ran last, else 1.
///
/// @param outcome     receives the steps that callbacks made
/// @param first_pass  whether this is the acting process and not its parent; only the trace tells them apart
///
/// REQUIRES: the engine's lock is held. Throws std::bad_alloc with the tables consistent.
std::uint32_t ZtProcessLogItem(_ZtEngineCore& engine, const Event& event, const ZtProcKey& key, StepOutcome& outcome,
                               bool first_pass);

}  // namespace zt

#endif  // ZT_ENGINE_EVENT_PROCESSOR_H
