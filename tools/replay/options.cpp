#include "tools/replay/options.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <limits>
#include <map>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/replay/event_time.h"
#include "tools/replay/text.h"

namespace replay {
namespace {

constexpr double kSecondsMax = 1e9;  ///< Some thirty years; keeps ticks and milliseconds far from their bounds.
constexpr std::int64_t kMillisecondsPerSecond = 1000;

constexpr const char* kFooter = R"(
One of the outputs may go to standard output ("-"); the summary then goes to standard error. With --json none may.
Files appear whole, when everything went well, or not at all.

Exit status: 0 nothing reached the alarm, 1 something did, 2 bad use, bad input or an output that cannot be written.)";

/// A mistake in the use of the options that the option parser cannot see.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The command line as the option parser fills it.
struct RawOptions {
  Options options;
  std::string format = "auto";
  double reset_every_s = 0;
  double score_age_s = 0;
};

using NamedOutput = std::pair<std::string_view, const std::optional<std::string>*>;

std::array<NamedOutput, 4> OutputsOf(const Options& options) {
  return {{{"--results", &options.results},
           {"--restore-list", &options.restore_list},
           {"--events", &options.events},
           {"--explain", &options.explain}}};
}

void Declare(CLI::App& app, RawOptions& raw) {
  Options& options = raw.options;
  // A path may begin with a slash on every system.
  app.allow_windows_style_options(false);
  app.add_option("CAPTURE", options.capture, "The capture; \"-\" for standard input")->required();
  app.add_option("--format", raw.format, "auto (by content), jsonl, records, procmon or sandbox")
      ->check(CLI::IsMember({"auto", "jsonl", "records", "procmon", "sandbox"}))
      ->option_text("FORMAT [auto]");
  app.add_option("--results", options.results, "Write one JSON line for each call fed")->option_text("FILE|-");
  app.add_option("--restore-list", options.restore_list,
                 "Write the paths that processes which reached the alarm leave to be restored, one a line")
      ->option_text("FILE|-");
  app.add_option("--events", options.events, "Write the events fed as an event script")->option_text("FILE|-");
  app.add_option("--explain", options.explain, "Write one JSON line for each penalty")->option_text("FILE|-");
  app.add_flag("--json", options.json, "Print the summary as one JSON object");
  app.add_option("--alarm", options.alarm, "The score at which a host would act")
      ->check(CLI::Range(2, std::numeric_limits<std::int32_t>::max(), "2 to 2147483647"))
      ->option_text("SCORE [64]");
  app.add_option("--engine-id", options.engine_id, "The engine's identifier in results")->option_text("N [1]");
  CLI::Option* every =
      app.add_option("--reset-every", raw.reset_every_s, "Call ZtResetScore each time so much event time has passed")
          ->option_text("SECONDS");
  CLI::Option* age =
      app.add_option("--score-age", raw.score_age_s, "The age of a penalty beyond which those calls reset a score")
          ->option_text("SECONDS");
  every->needs(age);
  age->needs(every);
  app.set_version_flag("--version", std::string("ztreplay ") + ZTREPLAY_VERSION);
  app.footer(kFooter);
}

std::optional<CaptureFormat> FormatNamed(const std::string& name) {
  static const std::map<std::string, CaptureFormat> kFormats = {{"jsonl", CaptureFormat::kJsonl},
                                                                {"records", CaptureFormat::kRecords},
                                                                {"procmon", CaptureFormat::kProcmon},
                                                                {"sandbox", CaptureFormat::kSandbox}};
  const auto found = kFormats.find(name);
  return found == kFormats.end() ? std::nullopt : std::optional(found->second);
}

/// `seconds` in a smaller unit. Throws UsageError outside `seconds_min` to kSecondsMax; a NaN is outside too.
std::int64_t InUnits(std::string_view option, double seconds, double seconds_min, std::int64_t units_per_second) {
  if (!(seconds >= seconds_min && seconds <= kSecondsMax)) {
    throw UsageError(fmt::format("{}: {} is not a number of seconds from {} to {}", option, seconds, seconds_min, kSecondsMax));
  }
  return std::llround(seconds * static_cast<double>(units_per_second));
}

ResetSchedule ScheduleOf(const RawOptions& raw) {
  return {InUnits("--reset-every", raw.reset_every_s, 0.001, kTicksPerSecond),
          InUnits("--score-age", raw.score_age_s, 0, kMillisecondsPerSecond)};
}

bool SameFile(const std::string& one, const std::string& other) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (fs::equivalent(one, other, error)) {
    // Devices, such as the null device, may be written to twice.
    return fs::is_regular_file(one, error);
  }
  return fs::absolute(one, error).lexically_normal() == fs::absolute(other, error).lexically_normal() &&
         !fs::exists(one, error);
}

void CheckOutputs(const Options& options) {
  std::vector<std::pair<std::string_view, std::string>> given;
  for (const auto& [option, path] : OutputsOf(options)) {
    if (!*path) {
      continue;
    }
    if ((*path)->empty()) {
      throw UsageError(fmt::format("{}: the file name is empty", option));
    }
    if (**path == "-" && options.json) {
      throw UsageError(fmt::format("{} and --json cannot both go to standard output", option));
    }
    if (**path != "-" && options.capture != "-" && SameFile(**path, options.capture)) {
      throw UsageError(fmt::format("{} would overwrite the capture {}", option, options.capture));
    }
    for (const auto& [other_option, other_path] : given) {
      if (**path == "-" && other_path == "-") {
        throw UsageError(fmt::format("{} and {} cannot both go to standard output", other_option, option));
      }
      if (**path != "-" && other_path != "-" && SameFile(**path, other_path)) {
        throw UsageError(fmt::format("{} and {} name the same file {}", other_option, option, **path));
      }
    }
    given.emplace_back(option, **path);
  }
}

Reply BadUse(const std::string& what) {
  return {ExitStatus::kFailure, fmt::format("ztreplay: {}\nztreplay --help tells more.\n", ShownText(what))};
}

}  // namespace

bool Options::UsesStandardOutput() const {
  const auto outputs = OutputsOf(*this);
  return std::any_of(outputs.begin(), outputs.end(), [](const NamedOutput& output) { return *output.second == "-"; });
}

std::variant<Options, Reply> ParseOptions(int argc, const char* const* argv) {
  RawOptions raw;
  CLI::App app("Replays a capture of process and file events through the scoring engine and reports what it found.",
               "ztreplay");
  Declare(app, raw);
  try {
    app.parse(argc, argv);
    raw.options.format = FormatNamed(raw.format);
    if (app.count("--reset-every") != 0) {
      raw.options.reset = ScheduleOf(raw);
    }
    CheckOutputs(raw.options);
  } catch (const CLI::CallForHelp&) {
    return Reply{ExitStatus::kQuiet, app.help()};
  } catch (const CLI::CallForVersion& version) {
    return Reply{ExitStatus::kQuiet, std::string(version.what()) + "\n"};
  } catch (const CLI::ParseError& error) {
    return BadUse(error.what());
  } catch (const UsageError& error) {
    return BadUse(error.what());
  }
  return raw.options;
}

}  // namespace replay
