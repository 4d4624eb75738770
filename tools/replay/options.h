// The command line of ztreplay.

#ifndef ZT_TOOLS_REPLAY_OPTIONS_H
#define ZT_TOOLS_REPLAY_OPTIONS_H

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "tools/replay/input/capture_reader.h"

namespace replay {

/// Exit statuses that scripts rely on: never renumber them.
enum class ExitStatus {
  kQuiet = 0,    ///< No process reached the alarm.
  kAlarm = 1,    ///< At least one did.
  kFailure = 2,  ///< Bad use, bad input, or an output that cannot be written.
};

/// Calls of ZtResetScore that the tool makes itself, as a host does.
struct ResetSchedule {
  std::int64_t interval_ticks = 0;      ///< Event time between two calls, in 100 ns.
  std::int64_t score_age_limit_ms = 0;  ///< Handed to ZtResetScore.
};

/// What the command line asks for. An output that is not asked for has no value; "-" is standard output.
struct Options {
  std::string capture;                  ///< A path, or "-" for standard input.
  std::optional<CaptureFormat> format;  ///< None: by content.
  std::uint32_t engine_id = 1;
  std::int32_t alarm = 64;
  std::optional<ResetSchedule> reset;
  std::optional<std::string> results;
  std::optional<std::string> restore_list;
  std::optional<std::string> events;
  std::optional<std::string> explain;
  bool json = false;

  /// Whether an output goes to standard output, so that the summary for people has to go to standard error.
  [[nodiscard]] bool UsesStandardOutput() const;
};

/// An answer instead of a replay: help, version, or what is wrong with the command line.
struct Reply {
  ExitStatus status = ExitStatus::kQuiet;
  std::string text;  ///< With its line end, fit for a terminal. Belongs on standard error when the status is kFailure.
};

/// Reads the command line. Looks at files only to refuse outputs that would overwrite each other or the capture.
std::variant<Options, Reply> ParseOptions(int argc, const char* const* argv);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_OPTIONS_H
