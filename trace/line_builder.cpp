#include "trace/line_builder.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <span>
#include <string_view>

#include "trace/bounded_text.h"
#include "trace/hex_dump.h"
#include "trace/line_output.h"
#include "trace/line_prefix.h"
#include "trace/lock_user.h"
#include "trace/message_formatter.h"
#include "trace/number_text.h"
#include "trace/trace.h"
#include "trace/trace_state.h"

namespace zt {
namespace {

using Bytes = std::span<const unsigned char>;

std::uint64_t LoadFlags() { return TraceFlags.load(std::memory_order_relaxed); }

std::string_view ViewOf(const char* text) { return text == nullptr ? std::string_view() : std::string_view(text); }

// A line on its builder's stack. The formatter wants room for a whole message and its NUL behind any prefix.
class Line {
 public:
  void AppendPrefix(std::uint64_t flags, const TraceState& state, std::string_view location, std::string_view level) {
    BoundedText prefix(text_, kPrefixCapacity);
    AppendLinePrefix(prefix, flags, *state.environment, {state.module_name.load(), location, level});
    size_ += prefix.size();
  }
  void AppendMessage(const char* format, std::va_list arguments) {
    size_ += TraceFormatMessage(text_ + size_, kMessageCapacity, format, arguments);
  }
  [[nodiscard]] std::string_view view() const { return {text_, size_}; }

 private:
  char text_[kPrefixCapacity + kMessageCapacity];
  std::size_t size_ = 0;
};

void AppendDump(LineOutput& output, Bytes data) {
  for (std::size_t offset = 0; offset < data.size(); offset += kHexRowBytes) {
    const std::size_t count = std::min(kHexRowBytes, data.size() - offset);
    output.AppendRow(HexRow(offset, data.subspan(offset, count)).view());
  }
}

void AppendWithDump(LineOutput& output, std::string_view line, Bytes data) {
  std::array<char, 40> storage;
  BoundedText line_end(storage.data(), storage.size());
  line_end.Append(" length=");
  line_end.Append(Digits(data.size()).view());
  line_end.Append("\r\n");
  output.Append(line, line_end.view());
  AppendDump(output, data);
}

// REQUIRES: the trace lock is held.
void PutOut(TraceState& state, std::string_view level, std::string_view line, Bytes data) {
  if ((LoadFlags() & kTraceToRing) != 0 && state.ring != nullptr) {
    StoreInRing(*state.ring, line);
  }
  LineOutput output(state, level);
  if (data.empty()) {
    output.Append(line, "\r\n");
  } else {
    AppendWithDump(output, line, data);
  }
  output.Flush();
  output.Show();
}

}  // namespace

void TraceWrite(const void* data, std::uint64_t data_length, const char* location, const char* level, const char* format, ...) {
  const std::uint64_t flags = LoadFlags();
  if ((flags & kTraceToAny) == 0) {
    return;
  }
  TraceState& state = SharedTraceState();
  const LockUser user(state);
  if (!state.started) {
    return;
  }
  state.last_print.store(state.environment->performance_counter(), std::memory_order_relaxed);

  Line line;
  line.AppendPrefix(flags, state, ViewOf(location), ViewOf(level));
  std::va_list arguments;
  va_start(arguments, format);
  line.AppendMessage(format, arguments);
  va_end(arguments);

  const CriticalSectionLock lock(state.lock);
  // The library may have been stopped, or all outputs switched off, since the line was begun.
  if (state.started && (LoadFlags() & kTraceToAny) != 0) {
    const std::size_t length = data == nullptr ? 0 : static_cast<std::size_t>(data_length);
    PutOut(state, ViewOf(level), line.view(), {static_cast<const unsigned char*>(data), length});
  }
}

}  // namespace zt
