// Text to whoever debugs the process.

#ifndef ZT_PLATFORM_DEBUGGER_H
#define ZT_PLATFORM_DEBUGGER_H

#include <string_view>

namespace zt {

/// Hands the text to the debugger: on Windows OutputDebugStringA, elsewhere standard error, which is where a developer looks
/// for such text. Failures are ignored.
void WriteDebuggerText(std::string_view text);

/// As WriteDebuggerText, in a crash: takes no lock that the crashed thread may hold, and what cannot be written to standard
/// error without waiting is lost.
void WriteDebuggerTextInCrash(std::string_view text);

}  // namespace zt

#endif  // ZT_PLATFORM_DEBUGGER_H
