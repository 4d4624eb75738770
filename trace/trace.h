// The one entry to the trace library, and the flag word that says what is traced and where it goes.

#ifndef ZT_TRACE_TRACE_H
#define ZT_TRACE_TRACE_H

#include <atomic>
#include <cstdint>

namespace zt {

// Bits of TraceFlags. The values are settings that users store: never renumber them.
inline constexpr std::uint64_t kTraceInfo = 0x1;              ///< Library information lines and the score-reset line.
inline constexpr std::uint64_t kTraceDebug = 0x2;             ///< The engine's debug lines.
inline constexpr std::uint64_t kTraceWarning = 0x4;           ///< The engine's warnings.
inline constexpr std::uint64_t kTraceToFile = 0x100;          ///< Output to the log file.
inline constexpr std::uint64_t kTraceToRing = 0x200;          ///< Output to the memory ring of recent lines.
inline constexpr std::uint64_t kTraceToDebugger = 0x400;      ///< Output to the debugger.
inline constexpr std::uint64_t kTraceToConsole = 0x800;       ///< Output to standard output.
inline constexpr std::uint64_t kTraceToAny = 0xF00;           ///< With none of these nothing is formatted at all.
inline constexpr std::uint64_t kTraceDeleteAtStart = 0x8000;  ///< Delete existing log files when the library starts.
inline constexpr std::uint64_t kTraceNoTime = 0x10000;        ///< Leave out the time block.
inline constexpr std::uint64_t kTraceNoPid = 0x20000;         ///< Leave out the process id.
inline constexpr std::uint64_t kTraceNoTid = 0x40000;         ///< Leave out the thread id.
inline constexpr std::uint64_t kTraceNoModule = 0x80000;      ///< Leave out the module name.
inline constexpr std::uint64_t kTraceNoLocation = 0x100000;   ///< Leave out the source location.
inline constexpr std::uint64_t kTraceNoLevel = 0x200000;      ///< Leave out the level word.
inline constexpr std::uint64_t kTraceNoColor = 0x400000;      ///< No console colors.
inline constexpr std::uint64_t kTraceBare = 0xFF0000;  ///< With all of these the bracketed tag block is left out entirely.
inline constexpr std::uint64_t kTracePidInName = 0x1000000;   ///< Put the process id into the log files' names.
inline constexpr std::uint64_t kTraceCrashDump = 0x10000000;  ///< Install the crash dump filter.

}  // namespace zt

/// The process-wide flag word. Read without a lock and relaxed: a disabled trace call costs one load and one test. Written
/// only by the trace library, under its lock.
extern std::atomic<std::uint64_t> TraceFlags;

/// Writes one trace line to the outputs that TraceFlags selects: prefix, message, and a hex dump where data are given.
///
/// @param data         block to dump after the message, or null
/// @param data_length  its length in bytes; 0 for no dump
/// @param line         line of the calling statement in its source file; 0 leaves the location empty
/// @param level        level word, zero-terminated: "debug", "warning" or empty; cut to 16 characters
/// @param format       message format, see trace/message_formatter.h: "%ld" and "%lu" take 32-bit arguments, "%ws" a
///                     zero-terminated wide string
///
/// Threads: any; lines never interleave. Before the library is started and after it is stopped the call returns at once.
/// Never fails: text beyond 16384 characters is dropped.
void TracePrint(const void* data, std::uint64_t data_length, std::int32_t line, const char* level, const char* format, ...);

#endif  // ZT_TRACE_TRACE_H
