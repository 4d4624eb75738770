// Text to the standard streams by what a crashed thread may use.

#ifndef ZT_PLATFORM_POSIX_CRASH_OUTPUT_H
#define ZT_PLATFORM_POSIX_CRASH_OUTPUT_H

#include <string_view>

namespace zt {

/// Writes as much of the text to a standard stream as it takes at once: a pipe that nobody reads holds nobody up, and one that
/// nobody has open raises no signal. Takes no lock. The stream stays as it is for the others who have it.
///
/// @param descriptor  STDOUT_FILENO or STDERR_FILENO
void WriteWithoutWaiting(int descriptor, std::string_view text);

}  // namespace zt

#endif  // ZT_PLATFORM_POSIX_CRASH_OUTPUT_H
