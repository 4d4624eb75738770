#include "trace/trace.h"

#include <array>
#include <cstdarg>

#include "trace/bounded_text.h"
#include "trace/line_builder.h"
#include "trace/message_formatter.h"
#include "trace/number_text.h"
#include "trace/trace_state.h"

std::atomic<std::uint64_t> TraceFlags{0};

namespace {

// A source line as decimal text; 0, which is no line, is the empty text.
class LineText {
 public:
  explicit LineText(std::int32_t line) {
    zt::BoundedText out(text_.data(), text_.size() - 1);
    if (line < 0) {
      out.Append('-');
    }
    if (line != 0) {
      const auto value = static_cast<std::int64_t>(line);
      out.Append(zt::Digits(static_cast<std::uint64_t>(value < 0 ? -value : value)).view());
    }
  }

  [[nodiscard]] const char* c_str() const { return text_.data(); }

 private:
  std::array<char, 12> text_ = {};  // "-2147483648" and a NUL.
};

}  // namespace

void TracePrint(const void* data, std::uint64_t data_length, std::int32_t line, const char* level, const char* format, ...) {
  if ((TraceFlags.load(std::memory_order_relaxed) & zt::kTraceToAny) == 0 || !zt::SharedTraceState().started) {
    return;  // Nothing is formatted.
  }
  char message[zt::kMessageCapacity];
  std::va_list arguments;
  va_start(arguments, format);
  zt::TraceFormatMessage(message, sizeof message, format, arguments);
  va_end(arguments);
  zt::TraceWrite(data, data_length, LineText(line).c_str(), level, "%s", message);
}
