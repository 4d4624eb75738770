// How engine code traces: one macro a flag bit, which tests the bit before it evaluates any argument.

#ifndef ZT_ENGINE_TRACING_H
#define ZT_ENGINE_TRACING_H

#include <cstdint>

#include "trace/trace.h"

namespace zt {

inline bool IsTraced(std::uint64_t bit) { return (TraceFlags.load(std::memory_order_relaxed) & bit) != 0; }

// The trace formats' "%d", "%ld", "%u" and "%lu" take 32-bit arguments, "%lld" takes a long long.
constexpr std::int32_t Trace32(std::uint64_t value) { return static_cast<std::int32_t>(static_cast<std::uint32_t>(value)); }
constexpr std::uint32_t TraceU32(std::uint64_t value) { return static_cast<std::uint32_t>(value); }
constexpr long long Trace64(std::int64_t value) { return value; }

}  // namespace zt

// A line with the number `line`: for lines whose number readers of traces rely on.
#define ZT_TRACE_AT(bit, line, level, ...)              \
  do {                                                  \
    if (::zt::IsTraced(bit)) {                          \
      TracePrint(nullptr, 0, line, level, __VA_ARGS__); \
    }                                                   \
  } while (false)

#define ZT_TRACE_DEBUG_AT(line, ...) ZT_TRACE_AT(::zt::kTraceDebug, line, "debug", __VA_ARGS__)
#define ZT_TRACE_DEBUG(...) ZT_TRACE_DEBUG_AT(__LINE__, __VA_ARGS__)
#define ZT_TRACE_WARNING_AT(line, ...) ZT_TRACE_AT(::zt::kTraceWarning, line, "warning", __VA_ARGS__)
#define ZT_TRACE_WARNING(...) ZT_TRACE_WARNING_AT(__LINE__, __VA_ARGS__)
#define ZT_TRACE_INFO_AT(line, ...) ZT_TRACE_AT(::zt::kTraceInfo, line, "", __VA_ARGS__)
#define ZT_TRACE_INFO(...) ZT_TRACE_INFO_AT(__LINE__, __VA_ARGS__)

#endif  // ZT_ENGINE_TRACING_H
