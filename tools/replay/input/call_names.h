// The names of the calls in event scripts and results: those of the exports.

#ifndef ZT_TOOLS_REPLAY_INPUT_CALL_NAMES_H
#define ZT_TOOLS_REPLAY_INPUT_CALL_NAMES_H

#include <string_view>

#include "tools/replay/input/call.h"

namespace replay {

constexpr std::string_view CallName(CallKind kind) {
  switch (kind) {
    case CallKind::kInsertLog:
      return "ZtInsertLog";
    case CallKind::kCalculateSingleLineScore:
      return "ZtCalculateSingleLineScore";
    case CallKind::kUpdateScore:
      return "ZtUpdateScore";
    case CallKind::kResetScore:
      return "ZtResetScore";
    case CallKind::kGetProcTree:
      return "ZtGetProcTree";
    case CallKind::kGetFinalStateFileByPid:
      return "ZtGetFinalStateFileByPid";
  }
  return {};
}

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_CALL_NAMES_H
