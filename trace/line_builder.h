// Builds one trace line and hands it to the outputs.

#ifndef ZT_TRACE_LINE_BUILDER_H
#define ZT_TRACE_LINE_BUILDER_H

#include <cstdint>

namespace zt {

/// Writes one line: prefix, message, and a hex dump of `data` where both data and length are given. As TracePrint, but with any
/// text for the location; a location of more than 64 characters is cut to its first 61 and "...". Null texts are empty ones.
///
/// Threads: any; the line is built on the caller's stack, the trace lock is held only while it is put out. Does nothing while
/// the library is not started or no output is on.
void TraceWrite(const void* data, std::uint64_t data_length, const char* location, const char* level, const char* format, ...);

}  // namespace zt

#endif  // ZT_TRACE_LINE_BUILDER_H
