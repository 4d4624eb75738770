// The lines in which the library tells of itself: when it was built, how long the system has been up, the date, the settings
// and where the memory ring lies.

#ifndef ZT_TRACE_LIBRARY_LINES_H
#define ZT_TRACE_LIBRARY_LINES_H

#include <cstdint>
#include <string_view>

#include "trace/message_formatter.h"
#include "trace/trace_environment.h"

namespace zt {

// The formats. All take the same arguments, those of FormatLibraryLine.
inline constexpr const char kStartedFormat[] = "(%s, %ds) %04d-%02d-%02d %02d:%02d:%02d.%03d type: %x size: %d memory: %p";
inline constexpr const char kSettingChangedFormat[] =
    "(%s, %ds) setting changed at %04d-%02d-%02d %02d:%02d:%02d.%03d type: %x size: %d memory: %p";
/// Written to the file itself, so it brings its own line end.
inline constexpr const char kLogRotatedFormat[] =
    "(%s, %ds) log rotated at %04d-%02d-%02d %02d:%02d:%02d.%03d type: %x size: %d memory: %p\r\n";

// The source lines that readers of traces know the library's own lines by.
inline constexpr std::int32_t kStartedLine = 1216;
inline constexpr std::int32_t kSettingChangedLine = 649;
inline constexpr std::int32_t kStoppedLine = 1277;
inline constexpr std::int32_t kCrashLine = 380;

/// A time as these lines tell it.
struct LibraryMoment {
  std::uint32_t uptime_seconds = 0;  ///< Since the system was started.
  LocalTime time;
  int millisecond = 0;  ///< 0 to 999
};

LibraryMoment LibraryMomentNow(const TraceEnvironment& environment);

/// Formats one of the lines with the settings of the moment.
///
/// @param message  room for kMessageCapacity bytes
/// @param format   one of the formats above
/// @param memory   the address that the line tells as the memory ring's
///
/// Returns the text, which lies in `message`. REQUIRES: the trace lock is held.
std::string_view FormatLibraryLine(char* message, const char* format, const LibraryMoment& moment, const void* memory);

/// Prints one of the lines, with an empty level word. REQUIRES: as for FormatLibraryLine.
void PrintLibraryLine(std::int32_t line, const char* format, const LibraryMoment& moment);

}  // namespace zt

#endif  // ZT_TRACE_LIBRARY_LINES_H
