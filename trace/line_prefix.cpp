#include "trace/line_prefix.h"

#include "trace/local_time.h"
#include "trace/number_text.h"
#include "trace/trace.h"
#include "trace/trace_state.h"

namespace zt {
namespace {

void AppendZeroFilled(BoundedText& out, std::uint64_t value, std::size_t width) {
  const Digits digits(value);
  const std::size_t count = digits.view().size();
  out.Fill(width > count ? width - count : 0, '0');
  out.Append(digits.view());
}

void AppendField(BoundedText& out, char separator, int value) {
  out.Append(separator);
  AppendZeroFilled(out, static_cast<std::uint64_t>(value), 2);
}

void AppendTime(BoundedText& out, const TraceEnvironment& environment) {
  const std::uint64_t since_1970 = environment.file_time_now() - kUnixEpochAsFileTime;
  const LocalTime local = TraceLocalTime(environment, static_cast<std::int64_t>(since_1970 / kFileTimePerSecond));
  out.Append('[');
  AppendZeroFilled(out, static_cast<std::uint64_t>(local.year), 4);
  AppendField(out, '-', local.month);
  AppendField(out, '-', local.day);
  AppendField(out, ' ', local.hour);
  AppendField(out, ':', local.minute);
  AppendField(out, ':', local.second);
  out.Append('.');
  AppendZeroFilled(out, since_1970 % kFileTimePerSecond, 7);
  out.Append("] ");
}

void AppendIds(BoundedText& out, std::uint64_t flags, const TraceEnvironment& environment) {
  const bool has_process = (flags & kTraceNoPid) == 0;
  const bool has_thread = (flags & kTraceNoTid) == 0;
  if (!has_process && !has_thread) {
    return;
  }
  out.Append('[');
  if (has_process) {
    out.Append(Digits(environment.process_id()).view());
  }
  out.Append(':');
  if (has_thread) {
    out.Append(Digits(environment.thread_id()).view());
  }
  out.Append("] ");
}

void AppendWord(BoundedText& out, std::string_view word) {
  if (!word.empty()) {
    out.Append(word);
    out.Append(' ');
  }
}

void AppendLocation(BoundedText& out, std::string_view location) {
  if (location.size() <= kMaxLocationLength) {
    AppendWord(out, location);
    return;
  }
  constexpr std::string_view kCutMark = "...";
  out.Append(location.substr(0, kMaxLocationLength - kCutMark.size()));
  AppendWord(out, kCutMark);
}

// The closing bracket takes the place of the space after the last word. Where no word was written it takes that of the opening
// bracket, so the block reads "] ": readers of traces know it so.
void AppendTags(BoundedText& out, std::uint64_t flags, const LineTags& tags) {
  if ((flags & kTraceBare) == kTraceBare) {
    return;
  }
  out.Append('[');
  if ((flags & kTraceNoModule) == 0) {
    AppendWord(out, tags.module.substr(0, kMaxModuleNameLength));
  }
  if ((flags & kTraceNoLocation) == 0) {
    AppendLocation(out, tags.location);
  }
  if ((flags & kTraceNoLevel) == 0) {
    AppendWord(out, tags.level.substr(0, kMaxLevelLength));
  }
  if ((flags & kTraceNoLocation) == 0 || !tags.module.empty() || !tags.level.empty()) {
    out.ReplaceLast(']');
    out.Append(' ');
  }
}

}  // namespace

void AppendLinePrefix(BoundedText& out, std::uint64_t flags, const TraceEnvironment& environment, const LineTags& tags) {
  if ((flags & kTraceNoTime) == 0) {
    AppendTime(out, environment);
  }
  AppendIds(out, flags, environment);
  AppendTags(out, flags, tags);
}

}  // namespace zt
