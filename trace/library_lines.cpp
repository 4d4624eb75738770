#include "trace/library_lines.h"

#include <cstdarg>

#include "trace/build_stamp.h"
#include "trace/local_time.h"
#include "trace/trace.h"
#include "trace/trace_state.h"

namespace zt {
namespace {

std::string_view Format(char* message, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const std::size_t length = TraceFormatMessage(message, kMessageCapacity, format, arguments);
  va_end(arguments);
  return {message, length};
}

}  // namespace

LibraryMoment LibraryMomentNow(const TraceEnvironment& environment) {
  const std::uint64_t since_1970 = environment.file_time_now() - kUnixEpochAsFileTime;
  constexpr std::uint64_t kFileTimePerMillisecond = kFileTimePerSecond / 1000;
  return {environment.uptime_milliseconds() / 1000,
          TraceLocalTime(environment, static_cast<std::int64_t>(since_1970 / kFileTimePerSecond)),
          static_cast<int>(since_1970 % kFileTimePerSecond / kFileTimePerMillisecond)};
}

std::string_view FormatLibraryLine(char* message, const char* format, const LibraryMoment& moment, const void* memory) {
  const LocalTime& time = moment.time;
  const auto flags = static_cast<std::uint32_t>(TraceFlags.load(std::memory_order_relaxed));
  return Format(message, format, kBuildStamp, moment.uptime_seconds, time.year, time.month, time.day, time.hour, time.minute,
                time.second, moment.millisecond, flags, SharedTraceState().size_limit, memory);
}

void PrintLibraryLine(std::int32_t line, const char* format, const LibraryMoment& moment) {
  char message[kMessageCapacity];
  FormatLibraryLine(message, format, moment, SharedTraceState().ring);
  TracePrint(nullptr, 0, line, "", "%s", message);
}

}  // namespace zt
