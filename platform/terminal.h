// The standard streams as a program for people needs them.

#ifndef ZT_PLATFORM_TERMINAL_H
#define ZT_PLATFORM_TERMINAL_H

namespace zt {

/// A stream that a program writes to.
enum class StandardStream { kOutput, kError };

/// Whether `stream` goes to a terminal, and so to a person.
bool IsTerminal(StandardStream stream);

/// Whether color sequences (ECMA-48) written to `stream` show as colors. False when it is no terminal, or one that says it
/// knows none. On Windows this turns the sequences on for the console first, and is false where it has none.
bool ShowsColors(StandardStream stream);

/// Makes the standard streams carry bytes unchanged, and makes a write to a pipe that nobody reads any more fail like any other
/// write instead of ending the process. Call once, before any is used. On Windows only the first is needed.
void PrepareStandardStreams();

}  // namespace zt

#endif  // ZT_PLATFORM_TERMINAL_H
