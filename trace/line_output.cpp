#include "trace/line_output.h"

#include "trace/log_file.h"
#include "trace/outputs.h"
#include "trace/trace.h"

namespace zt {
namespace {

void Copy(TraceState& state, std::string_view text) {
  state.fill += text.copy(state.line_buffer + state.fill, kLineBufferCapacity - state.fill);
}

}  // namespace

void LineOutput::Append(std::string_view text, std::string_view line_end) {
  if (text.size() + line_end.size() <= kLineBufferCapacity - state_.fill) {
    Copy(state_, text);
    Copy(state_, line_end);
  }
}

void LineOutput::AppendRow(std::string_view row) {
  if (state_.fill - shown_end_ + row.size() > kShownPieceSize) {
    Show();
  }
  Append(row, {});
  Flush();
}

void LineOutput::Flush() {
  const std::size_t end = state_.fill;
  TraceFlushFile(state_.line_buffer + end);
  if (state_.fill != end) {
    // The buffer was emptied: the next row overwrites the text, so this is the last moment to show it.
    ShowUntil(end);
    shown_end_ = state_.fill;
  }
}

void LineOutput::ShowUntil(std::size_t end) {
  const std::string_view text(state_.line_buffer + shown_end_, end - shown_end_);
  shown_end_ = end;
  if (!text.empty() && (TraceFlags.load(std::memory_order_relaxed) & (kTraceToDebugger | kTraceToConsole)) != 0) {
    TraceConsoleOut(level_, continuation_, text);
    continuation_ = true;
  }
}

}  // namespace zt
