#include "tools/replay/events_writer.h"

#include <fmt/format.h>

#include <iterator>

#include "tools/replay/input/behavior_names.h"
#include "tools/replay/input/call_names.h"
#include "tools/replay/text.h"

namespace replay {
namespace {

/// A behaviour by its name where it has one, else as the hexadecimal text that scripts accept.
std::string BehaviorText(std::uint32_t behavior) {
  const std::string_view name = BehaviorName(behavior);
  return name.empty() ? fmt::format("{:#06x}", behavior) : std::string(name);
}

std::string EventFields(const LOG_ITEM& record) {
  std::string fields = fmt::format(R"("time":{},"pid":{})", record.Time, record.Pid);
  const auto out = std::back_inserter(fields);
  if (record.Tid != 0) {
    fmt::format_to(out, R"(,"tid":{})", record.Tid);
  }
  if (record.TargetPid != 0) {
    fmt::format_to(out, R"(,"target_pid":{})", record.TargetPid);
  }
  if (const std::string path = PathOf(record); !path.empty()) {
    fmt::format_to(out, R"(,"path":{})", JsonString(path));
  }
  fmt::format_to(out, R"(,"behavior":"{}")", BehaviorText(record.Behavior));
  if (const std::wstring target = TargetOf(record); !target.empty()) {
    fmt::format_to(out, R"(,"target":{})", JsonString(target));
  }
  if (record.Context != 0) {
    fmt::format_to(out, R"(,"context":{})", record.Context);
  }
  return fields;
}

}  // namespace

void EventsWriter::Write(const Call& call) {
  for (; lines_ + 1 < call.number + own_; ++lines_) {
    sink_("\n");
  }
  sink_(ScriptLine(call) + "\n");
  ++lines_;
}

void EventsWriter::WriteOwn(const Call& call) {
  sink_(ScriptLine(call) + "\n");
  ++lines_;
  ++own_;
}

std::string ScriptLine(const Call& call) {
  const std::string_view name = CallName(call.kind);
  switch (call.kind) {
    case CallKind::kInsertLog:
      return fmt::format("{{{}}}", EventFields(call.record));
    case CallKind::kCalculateSingleLineScore:
      return fmt::format(R"({{"call":"{}",{},"score":{}}})", name, EventFields(call.record), call.value);
    case CallKind::kUpdateScore:
      return fmt::format(R"({{"call":"{}","pid":{},"value":{}}})", name, call.pid, call.value);
    case CallKind::kResetScore:
      return fmt::format(R"({{"call":"{}","now":{},"score_age_limit":{}}})", name, call.now, call.score_age_limit);
    case CallKind::kGetProcTree:
    case CallKind::kGetFinalStateFileByPid:
      return fmt::format(R"({{"call":"{}","pid":{}}})", name, call.pid);
  }
  return {};
}

}  // namespace replay
