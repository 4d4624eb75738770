#include "trace/log_file.h"

#include <cstddef>
#include <string_view>

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

}  // namespace

void TraceFlushFile(const char* end) {
  TraceState& state = SharedTraceState();
  const std::size_t pending = end == nullptr ? state.fill : static_cast<std::size_t>(end - state.line_buffer);
  if (pending == 0 || (end != nullptr && pending <= kFlushThreshold)) {
    return;  // Without text the file is not even opened.
  }
  if (EnsureOpen(state)) {
    state.file_size += state.stream->Append({state.line_buffer, pending});
  }
  state.fill = 0;
}

}  // namespace zt
