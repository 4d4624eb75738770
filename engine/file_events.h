// File behaviours: each becomes at most two steps of file state machines, and keeps the process's lists.

#ifndef ZT_ENGINE_FILE_EVENTS_H
#define ZT_ENGINE_FILE_EVENTS_H

#include <cstdint>
#include <string_view>

#include "engine/context.h"
#include "engine/event.h"

namespace zt {

/// Applies the file behaviour of an event to the records of `process`; any other behaviour does nothing. Returns and fills
/// the insertion's outcome as ZtProcessLogItem does. Throws std::bad_alloc with the records consistent.
std::uint32_t HandleFileEvent(_ZtEngineCore& engine, Insertion& insertion, ProcessTree::Entry& process);

/// A decimal number as the C library reads it: white space, a sign, digits; 0 without digits; beyond 32 bits it stays at the
/// bound.
std::int32_t ParseLength(std::u16string_view text);

}  // namespace zt

#endif  // ZT_ENGINE_FILE_EVENTS_H
