#include "tests/support/trace_capture.h"

#include <charconv>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "trace/start_stop.h"
#include "trace/trace.h"
#include "trace/trace_state.h"

namespace zt::testing {
namespace {

// The lines come by way of the debugger output: it gets each of them whole, at once, in a call of its own.
constexpr std::uint64_t kOneCallPerLine = kTraceToDebugger | kTraceNoColor;
// Leaves the prefix "[LINE LEVEL] ".
constexpr std::uint64_t kShortPrefix = kTraceNoTime | kTraceNoPid | kTraceNoTid | kTraceNoModule;

// Where Capture puts the lines: those of the one TraceCapture that lives.
struct CapturedTexts {
  std::mutex mutex;
  std::vector<std::string> texts;
};
CapturedTexts* captured = nullptr;

void Capture(std::string_view text) {
  const std::lock_guard guard(captured->mutex);
  captured->texts.emplace_back(text);
}

TraceEnvironment CapturingEnvironment() {
  TraceEnvironment environment;
  environment.write_debugger = &Capture;
  return environment;
}

// "[649 debug] ", with either word missing when it was empty, and "] " when both were.
void ParseTags(std::string_view tags, TraceLine& line) {
  const char* const end = tags.data() + tags.size();
  const char* const after_number = std::from_chars(tags.data(), end, line.line).ptr;
  line.level = std::string_view(after_number, static_cast<std::size_t>(end - after_number));
  if (line.level.starts_with(' ')) {
    line.level.erase(0, 1);
  }
}

TraceLine Parse(std::string_view text) {
  TraceLine line;
  const std::size_t bracket = text.find("] ");
  if (bracket == std::string_view::npos || !text.ends_with("\r\n")) {
    throw std::runtime_error("Not a trace line: " + std::string(text));
  }
  if (text.starts_with('[')) {
    ParseTags(text.substr(1, bracket - 1), line);
  }
  text.remove_suffix(2);
  line.message = text.substr(bracket + 2);
  return line;
}

}  // namespace

struct TraceCapture::Impl {
  TraceEnvironment environment = CapturingEnvironment();
  CapturedTexts captured;
};

TraceCapture::TraceCapture(std::uint64_t flags) : impl_(std::make_unique<Impl>()) {
  if (SharedTraceState().started) {
    throw std::logic_error("The trace library is started already; there is one TraceCapture at a time.");
  }
  captured = &impl_->captured;
  SharedTraceState().environment = &impl_->environment;
  TraceBringUp(flags | kOneCallPerLine | kShortPrefix, nullptr);
}

TraceCapture::~TraceCapture() {
  TraceTakeDown();
  SharedTraceState().environment = &kSystemEnvironment;
}

std::vector<TraceLine> TraceCapture::Take() {
  std::vector<std::string> texts;
  {
    const std::lock_guard guard(impl_->captured.mutex);
    texts.swap(impl_->captured.texts);
  }
  std::vector<TraceLine> lines;
  lines.reserve(texts.size());
  for (const std::string& text : texts) {
    lines.push_back(Parse(text));
  }
  return lines;
}

std::vector<std::string> TraceCapture::TakeMessages() {
  std::vector<std::string> messages;
  for (TraceLine& line : Take()) {
    messages.push_back(std::move(line.message));
  }
  return messages;
}

}  // namespace zt::testing
