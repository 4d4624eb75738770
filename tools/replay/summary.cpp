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

std::string Image(const std::wstring& image) { return image.empty() ? "(image not known)" : ShownText(image); }

std::string ParentText(const ProcessRecord& process) {
  return process.parent.Pid == 0 ? "not known" : fmt::format("{} {}", process.parent.Pid, Image(process.parent_image));
}

std::string ScoreText(const ProcessRecord& process) {
  return process.score == process.highest_score ? fmt::format("{}", process.score)
                                                : fmt::format("{}, at most {}", process.score, process.highest_score);
}

void AddScore(TextBuilder& out, const ProcessRecord& process) {
  out.Field("score", ScoreText(process));
  if (process.wrapped) {
    out.Field("",
              fmt::format("wrapped at event {}: it grew past 32 bits, so a low score means nothing here", *process.wrapped));
  }
  if (process.library_loads != 0) {
    out.Field("libraries", process.library_loads == 1
                               ? "1 load of a watched library: a point"
                               : fmt::format("{} loads of watched libraries: a point each", process.library_loads));
  }
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
  AddScore(out, process);
  if (process.alarm) {
    out.Field("alarm", fmt::format("event {} at {}, {} damaged by then", process.alarm->number,
                                   FormatEventTime(process.alarm->time), Files(process.alarm->damaged_files)));
  } else {
    out.Field("damaged", Files(process.damaged_files.size()));
  }
  AddFinalAnswer(out, process);
  AddFamily(out, process);
}

void AddProcesses(TextBuilder& out, std::string_view title, const std::vector<const ProcessRecord*>& processes,
                  fmt::text_style style) {
  out.Line("");
  out.Line(title, style);
  for (const ProcessRecord* process : processes) {
    AddProcess(out, *process, style);
  }
}

void AddAlarmed(TextBuilder& out, const Summary& summary) {
  const auto red = fmt::fg(fmt::terminal_color::red) | fmt::emphasis::bold;
  const std::size_t culprits = summary.culprits.size();
  if (culprits == 0) {
    out.Line(fmt::format("No process reached the alarm (score {}).", summary.alarm), fmt::fg(fmt::terminal_color::green));
    return;
  }
  out.Line(fmt::format("{} reached the alarm (score {}).", Count(culprits + summary.charged.size(), "process", "processes"),
                       summary.alarm),
           red);
  AddProcesses(out,
               culprits == 1 ? "The culprit, to be stopped with its descendants:"
                             : fmt::format("The {} culprits, to be stopped with their descendants:", culprits),
               summary.culprits, red);
  if (!summary.charged.empty()) {
    AddProcesses(out, fmt::format("Charged through {}, as every ancestor is:", culprits == 1 ? "it" : "them"), summary.charged,
                 fmt::fg(fmt::terminal_color::yellow));
  }
}

void AddSuspicious(TextBuilder& out, const Summary& summary) {
  if (!summary.suspicious.empty()) {
    AddProcesses(
        out, fmt::format("{} with a score of 2 or more:", Count(summary.suspicious.size(), "other process", "other processes")),
        summary.suspicious, fmt::fg(fmt::terminal_color::yellow));
  }
}

/// What was read and fed, at the end what was not.
void AddCounts(TextBuilder& out, const Summary& summary) {
  out.Line("");
  out.Line(fmt::format("{}: {} read, {} fed; {:.2f} s, {:.0f} events per second", ShownText(summary.capture),
                       Count(summary.read.rows, "row", "rows"), Count(summary.fed.events, "event", "events"), summary.seconds,
                       summary.EventsPerSecond()));
  if (summary.fed.others != 0) {
    out.Line(fmt::format("besides: {}", Count(summary.fed.others, "other call", "other calls")));
  }
  if (summary.fed.resets != 0) {
    out.Line(fmt::format("resets: {}", summary.fed.resets));
  }
  if (summary.read.targets_cut != 0) {
    out.Line(fmt::format("cut: {} longer than a record holds", Count(summary.read.targets_cut, "path", "paths")));
  }
  for (const auto& [reason, rows] : summary.read.skipped) {
    out.Line(fmt::format("skipped: {}: {}", Count(rows, "row", "rows"), reason));
  }
}

}  // namespace

double Summary::EventsPerSecond() const { return seconds > 0 ? static_cast<double>(fed.events + fed.others) / seconds : 0; }

void AddProcesses(Summary& summary, const ProcessLedger& ledger) {
  for (const ProcessRecord& process : ledger.records()) {
    if (process.alarm) {
      (process.IsCulprit() ? summary.culprits : summary.charged).push_back(&process);
    } else if (process.suspicious) {
      summary.suspicious.push_back(&process);
    }
  }
  if (summary.culprits.empty()) {
    // Each has one below it only where a capture changes parents after the alarm: then none is deepest either.
    summary.culprits.swap(summary.charged);
  }
  for (auto* alarmed : {&summary.culprits, &summary.charged}) {
    std::stable_sort(alarmed->begin(), alarmed->end(), [](const ProcessRecord* one, const ProcessRecord* other) {
      return one->alarm->number < other->alarm->number;
    });
  }
}

std::string SummaryText(const Summary& summary, bool colors) {
  TextBuilder out(colors);
  AddAlarmed(out, summary);
  AddSuspicious(out, summary);
  AddCounts(out, summary);
  return out.text();
}

}  // namespace replay
