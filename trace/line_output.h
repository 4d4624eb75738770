// One finished line on its way into the line buffer, to the log file and to the outputs that show it at once.

#ifndef ZT_TRACE_LINE_OUTPUT_H
#define ZT_TRACE_LINE_OUTPUT_H

#include <cstddef>
#include <string_view>

#include "trace/trace_state.h"

namespace zt {

/// Bytes of a dump that are shown at a time.
inline constexpr std::size_t kShownPieceSize = 2048;

/// Lives while one line is written. Every byte of it reaches the file's buffer once and is shown once, in order.
/// REQUIRES: the trace lock is held for as long as it lives.
class LineOutput {
 public:
  LineOutput(TraceState& state, std::string_view level) : state_(state), level_(level), shown_end_(state.fill) {}

  /// Adds text and its line end to the line buffer. What does not fit as a whole is left out as a whole.
  void Append(std::string_view text, std::string_view line_end);
  /// Adds a row of a dump in the same way, and shows what has gathered when it reaches a piece's size.
  void AppendRow(std::string_view row);
  /// Offers the buffer to the log file.
  void Flush();
  /// Shows what has not been shown yet.
  void Show() { ShowUntil(state_.fill); }

 private:
  void ShowUntil(std::size_t end);

  TraceState& state_;
  std::string_view level_;
  std::size_t shown_end_;      // Where the text in the line buffer begins that has not been shown.
  bool continuation_ = false;  // Whether part of the line has been shown.
};

}  // namespace zt

#endif  // ZT_TRACE_LINE_OUTPUT_H
