// One call that a host makes to the engine, as a capture gives it.

#ifndef ZT_TOOLS_REPLAY_INPUT_CALL_H
#define ZT_TOOLS_REPLAY_INPUT_CALL_H

#include <cstdint>
#include <stdexcept>
#include <string>

#include "zteng/zteng.h"

namespace replay {

/// Which export is called. The names of the calls in event scripts and results are in call_names.h.
enum class CallKind {
  kInsertLog,
  kCalculateSingleLineScore,
  kUpdateScore,
  kResetScore,
  kGetProcTree,
  kGetFinalStateFileByPid,
};

/// A call with its arguments. Which members count depends on `kind`.
struct Call {
  CallKind kind = CallKind::kInsertLog;
  /// N of the results: the line in an event script, the record in a binary capture, else the running number of the event fed.
  std::uint64_t number = 0;
  LOG_ITEM record = {};              ///< kInsertLog, kCalculateSingleLineScore.
  std::int32_t value = 0;            ///< kCalculateSingleLineScore: the score; kUpdateScore: the value.
  std::uint64_t pid = 0;             ///< kUpdateScore, kGetProcTree, kGetFinalStateFileByPid.
  std::int64_t now = 0;              ///< kResetScore, 100 ns ticks.
  std::int64_t score_age_limit = 0;  ///< kResetScore, milliseconds.
};

/// Input that cannot be read or understood. what() is "FILE:LINE: what is wrong", or "FILE: what is wrong".
class InputError : public std::runtime_error {
 public:
  InputError(const std::string& file, std::uint64_t line, const std::string& what)
      : std::runtime_error(file + ":" + std::to_string(line) + ": " + what) {}
  InputError(const std::string& file, const std::string& what) : std::runtime_error(file + ": " + what) {}
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_CALL_H
