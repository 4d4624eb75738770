// The outputs that show a line at once: console and debugger.

#ifndef ZT_TRACE_OUTPUTS_H
#define ZT_TRACE_OUTPUTS_H

#include <string_view>

namespace zt {

/// Shows text on the console and in the debugger, as far as TraceFlags asks for them. The first line of a text whose level
/// begins with "d", "e" or "w" is bright green, red or yellow, unless the flags forbid colors or the text continues one shown
/// before. REQUIRES: the trace lock is held.
void TraceConsoleOut(std::string_view level, bool continuation, std::string_view text);

/// Shows text on the console and then in the debugger, as far as TraceFlags asks for them. REQUIRES: the trace lock is held.
void TraceTextOut(std::string_view text);

}  // namespace zt

#endif  // ZT_TRACE_OUTPUTS_H
