// What stands before the message of a trace line: "[time] [process:thread] [module location level] ".

#ifndef ZT_TRACE_LINE_PREFIX_H
#define ZT_TRACE_LINE_PREFIX_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "trace/bounded_text.h"
#include "trace/trace_environment.h"

namespace zt {

inline constexpr std::size_t kMaxLocationLength = 64;
inline constexpr std::size_t kMaxLevelLength = 16;
/// Characters that no prefix exceeds: 30 of time, 25 of ids, at most 120 of tags.
inline constexpr std::size_t kPrefixCapacity = 192;

/// The words of the tag block. Any may be empty; longer ones are cut.
struct LineTags {
  std::string_view module;    ///< Up to 32 characters.
  std::string_view location;  ///< Up to 64 characters; a longer one keeps its first 61, followed by "...".
  std::string_view level;     ///< Up to 16 characters.
};

/// Appends the blocks that `flags` (bits of TraceFlags) does not leave out, with the environment's time and ids.
void AppendLinePrefix(BoundedText& out, std::uint64_t flags, const TraceEnvironment& environment, const LineTags& tags);

}  // namespace zt

#endif  // ZT_TRACE_LINE_PREFIX_H
