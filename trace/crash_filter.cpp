#include "trace/crash_filter.h"

#include <cstdarg>
#include <string_view>

#include "trace/library.h"
#include "trace/library_lines.h"
#include "trace/local_time.h"
#include "trace/message_formatter.h"
#include "trace/path_text.h"
#include "trace/trace.h"
#include "trace/trace_state.h"

namespace zt {
namespace {

void Format(char* message, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  TraceFormatMessage(message, kMessageCapacity, format, arguments);
  va_end(arguments);
}

// Not on the stack, which may be what ran out; one crash at a time comes here.
char path[kMaxPathSize];
char name[kMessageCapacity];
PathText dump;

void PrintPath() {
  if ((TraceFlags.load(std::memory_order_relaxed) & kTraceInfo) != 0) {
    TracePrint(nullptr, 0, kCrashLine, "", "%s", path);
  }
}

// The dump's name: the program's, then process and thread, then the time.
void FormatDumpName(char* destination, const TraceEnvironment& environment, const char* program) {
  const std::uint64_t since_1970 = environment.file_time_now() - kUnixEpochAsFileTime;
  const LocalTime time = LocalTimeByNotedOffset(static_cast<std::int64_t>(since_1970 / kFileTimePerSecond));
  Format(destination, "%s [%d.%d] %04d-%02d-%02d %02d.%02d.%02d.dmp", program, environment.process_id(),
         environment.thread_id(), time.year, time.month, time.day, time.hour, time.minute, time.second);
}

}  // namespace

void TraceCrashFilter(const CrashDetails& details) {
  const TraceEnvironment& environment = *SharedTraceState().environment;
  if (environment.executable_path(path, sizeof path) == 0) {
    return;
  }
  TraceStopInCrash(&PrintPath);
  const SplitPath parts = Split(path);
  if (parts.folder.empty()) {
    return;
  }
  FormatDumpName(name, environment, parts.name.data());
  dump = PathText(parts.folder);
  if (dump.Append(std::string_view(name))) {
    environment.write_crash_dump(dump.c_str(), details);
  }
}

void TraceMatchCrashFilter() {
  const TraceEnvironment& environment = *SharedTraceState().environment;
  if ((TraceFlags.load(std::memory_order_relaxed) & kTraceCrashDump) != 0) {
    NoteUtcOffset(environment);
    environment.install_crash_filter(&TraceCrashFilter);
  } else {
    environment.remove_crash_filter();
  }
}

}  // namespace zt
