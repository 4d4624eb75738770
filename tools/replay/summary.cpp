#include "tools/replay/summary.h"

#include <fmt/color.h>
#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "tools/replay/event_time.h"
#include "tools/replay/text.h"

namespace replay {
namespace {

constexpr int kLabelWidth = 12;

/// Builds the text line by line.
class TextBuilder {
 public:
  explicit TextBuilder(bool colors) : colors_(colors) {}

  void Line(std::string_view text) { fmt::format_to(std::back_inserter(text_), "{}\n", text); }
  void Line(std::string_view text, fmt::text_style style) {
    Line(colors_ ? fmt::format(style, "{}", text) : std::string(text));
  }
  void Field(std::string_view label, std::string_view value) { Line(fmt::format("    {:<{}}{}", label, kLabelWidth, value)); }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  bool colors_;
  std::string text_;
};

/// "1 file", "2 files".
std::string Count(std::uint64_t count, std::string_view singular, std::string_view plural) {
  return fmt::format("{} {}", count, count == 1 ? singular : plural);
}
std::string Files(std::uint64_t count) { return Count(count, "file", "files"); }

std::string Image(const std::wstring& image) { return image.empty() ? "(image not known)" : PlainUtf8(image); }

std::string ParentText(const ProcessRecord& process) {
  return process.parent.Pid == 0 ? "not known" : fmt::format("{} {}", process.parent.Pid, Image(process.parent_image));
}

std::string ScoreText(const ProcessRecord& process) {
  return process.score == process.highest_score ? fmt::format("{}", process.score)
                                                : fmt::format("{}, at most {}", process.score, process.highest_score);
}

void AddFinalAnswer(TextBuilder& out, const ProcessRecord& process) {
  if (!process.final_answer) {
    out.Field("to restore", "not known");
    return;
  }
  const FinalAnswer& answer = *process.final_answer;
  out.Field("to restore",
            fmt::format("{}, {} of them overwritten in place", Files(answer.files_to_restore), answer.overwritten_files));
  out.Field("quarantine", Count(answer.quarantine_paths, "path", "paths"));
}

void AddFamily(TextBuilder& out, const ProcessRecord& process) {
  if (!process.family) {
    return;
  }
  std::string_view label = "family";
  for (const auto& [pid, image] : *process.family) {
    out.Field(label, fmt::format("{} {}", pid, Image(image)));
    label = "";
  }
  if (process.family->empty()) {
    out.Field(label, "none suspicious");
  }
}

void AddProcess(TextBuilder& out, const ProcessRecord& process, fmt::text_style style) {
  out.Line("");
  out.Line(fmt::format("  {}", Image(process.image)), style);
  out.Field("process id", fmt::format("{}", process.key.Pid));
  out.Field("parent", ParentText(process));
  out.Field("score", ScoreText(process));
  if (process.alarm) {
    out.Field("alarm", fmt::format("event {} at {}, {} damaged by then", process.alarm->number,
                                   FormatEventTime(process.alarm->time), Files(process.alarm->damaged_files)));
  } else {
    out.Field("damaged", Files(process.damaged_files.size()));
  }
  AddFinalAnswer(out, process);
  AddFamily(out, process);
}

void AddCounts(TextBuilder& out, const Summary& summary) {
  out.Line(fmt::format("{}: {} read, {} fed; {:.2f} s, {:.0f} events per second", summary.capture,
                       Count(summary.read.rows, "row", "rows"), Count(summary.fed.events, "event", "events"), summary.seconds,
                       summary.EventsPerSecond()));
  if (summary.fed.others != 0) {
    out.Line(fmt::format("besides: {}", Count(summary.fed.others, "other call", "other calls")));
  }
  if (summary.fed.resets != 0) {
    out.Line(fmt::format("resets: {}", summary.fed.resets));
  }
  for (const auto& [reason, rows] : summary.read.skipped) {
    out.Line(fmt::format("skipped: {}: {}", Count(rows, "row", "rows"), reason));
  }
  if (summary.read.targets_cut != 0) {
    out.Line(fmt::format("cut: {} longer than a record holds", Count(summary.read.targets_cut, "path", "paths")));
  }
}

void AddAlarmed(TextBuilder& out, const Summary& summary) {
  const auto red = fmt::fg(fmt::terminal_color::red) | fmt::emphasis::bold;
  if (summary.alarmed.empty()) {
    out.Line(fmt::format("No process reached the alarm (score {}).", summary.alarm), fmt::fg(fmt::terminal_color::green));
    return;
  }
  out.Line(
      fmt::format("{} reached the alarm (score {}):", Count(summary.alarmed.size(), "process", "processes"), summary.alarm),
      red);
  for (const ProcessRecord* process : summary.alarmed) {
    AddProcess(out, *process, red);
  }
}

void AddSuspicious(TextBuilder& out, const Summary& summary) {
  if (summary.suspicious.empty()) {
    return;
  }
  const auto yellow = fmt::fg(fmt::terminal_color::yellow);
  out.Line("");
  out.Line(fmt::format("{} with a score of 2 or more:", Count(summary.suspicious.size(), "other process", "other processes")),
           yellow);
  for (const ProcessRecord* process : summary.suspicious) {
    AddProcess(out, *process, yellow);
  }
}

}  // namespace

double Summary::EventsPerSecond() const { return seconds > 0 ? static_cast<double>(fed.events + fed.others) / seconds : 0; }

void AddProcesses(Summary& summary, const ProcessLedger& ledger) {
  for (const ProcessRecord& process : ledger.records()) {
    if (process.alarm) {
      summary.alarmed.push_back(&process);
    } else if (process.suspicious) {
      summary.suspicious.push_back(&process);
    }
  }
  std::stable_sort(summary.alarmed.begin(), summary.alarmed.end(), [](const ProcessRecord* one, const ProcessRecord* other) {
    return one->alarm->number < other->alarm->number;
  });
}

std::string SummaryText(const Summary& summary, bool colors) {
  TextBuilder out(colors);
  AddCounts(out, summary);
  out.Line("");
  AddAlarmed(out, summary);
  AddSuspicious(out, summary);
  return out.text();
}

}  // namespace replay
