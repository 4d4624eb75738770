#include "trace/log_file.h"

#include <cstddef>
#include <string_view>

#include "trace/library_lines.h"
#include "trace/trace.h"
#include "trace/trace_state.h"

namespace zt {
namespace {

bool EnsureOpen(TraceState& state) {
  if (state.stream == nullptr) {
    return false;
  }
  if (state.stream->IsOpen()) {
    return true;
  }
  if ((TraceFlags.load(std::memory_order_relaxed) & kTraceToFile) == 0) {
    return false;
  }
  const auto size = state.stream->Open();
  state.file_size = size.value_or(0);
  return size.has_value();
}

// Goes on in the other file, which begins with a line that says so. That line tells where the pointer to the memory ring is
// kept, not where the ring lies: readers of dumps find the pointer, and by it the ring of the moment.
void Rotate(TraceState& state) {
  AppendStream& stream = *state.stream;
  stream.Close();
  stream.StartNext();
  if ((TraceFlags.load(std::memory_order_relaxed) & kTraceToFile) == 0) {
    return;
  }
  const auto size = stream.Open();
  if (size.has_value()) {
    char message[kMessageCapacity];
    const LibraryMoment now = LibraryMomentNow(*state.environment);
    state.file_size = *size + stream.Append(FormatLibraryLine(message, kLogRotatedFormat, now, &state.ring));
  }
}

bool IsFull(const TraceState& state) { return state.size_limit != 0 && state.file_size >> 20 >= state.size_limit; }

}  // namespace

void TraceFlushFile(const char* end) {
  TraceState& state = SharedTraceState();
  const std::size_t pending = end == nullptr ? state.fill : static_cast<std::size_t>(end - state.line_buffer);
  if (pending == 0 || (end != nullptr && pending <= kFlushThreshold)) {
    return;  // Without text the file is not even opened.
  }
  if (EnsureOpen(state)) {
    state.file_size += state.stream->Append({state.line_buffer, pending});
    if (IsFull(state)) {
      Rotate(state);
    }
  }
  state.fill = 0;
}

}  // namespace zt
