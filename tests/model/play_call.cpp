#include "tests/model/play_call.h"

#include <algorithm>
#include <iterator>

namespace zt::model {
namespace {

bool SameItem(const ZT_FILE_ITEM_PUBLIC& left, const ZT_FILE_ITEM_PUBLIC& right) {
  return left.EngineId == right.EngineId && left.Path == right.Path && left.Restore == right.Restore &&
         left.Context == right.Context &&
         std::equal(std::begin(left.Reserved), std::end(left.Reserved), std::begin(right.Reserved));
}

}  // namespace

bool operator==(const Outcome& left, const Outcome& right) {
  return left.result == right.result && left.pids == right.pids && left.images == right.images && left.paths == right.paths &&
         std::equal(left.files.begin(), left.files.end(), right.files.begin(), right.files.end(),
                    [](const auto& a, const auto& b) { return a.first == b.first && SameItem(a.second, b.second); });
}

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  out << "result " << outcome.result << "\n  pids:";
  for (const std::uint64_t pid : outcome.pids) {
    out << " " << pid;
  }
  out << "\n  images:";
  for (const auto& [pid, image] : outcome.images) {
    out << " " << pid << "=\"" << Utf8(image) << "\"";
  }
  out << "\n  files:";
  for (const auto& [path, item] : outcome.files) {
    const auto used = std::count_if(std::begin(item.Reserved), std::end(item.Reserved), [](unsigned char c) { return c != 0; });
    out << "\n    \"" << Utf8(path) << "\": engine " << item.EngineId << ", path \"" << Utf8(item.Path) << "\", restore "
        << item.Restore << ", context " << item.Context << ", bytes not zero " << used;
  }
  out << "\n  paths:";
  for (const std::wstring& path : outcome.paths) {
    out << " \"" << Utf8(path) << "\"";
  }
  return out;
}

Outcome Play(ModelEngine& model, const Call& call) {
  Outcome outcome;
  switch (call.kind) {
    case Call::Kind::kInsertLog:
      outcome.result = model.InsertLog(&call.log);
      break;
    case Call::Kind::kCalculateSingleLineScore:
      outcome.result = ModelEngine::CalculateSingleLineScore(&call.log, call.value);
      break;
    case Call::Kind::kUpdateScore:
      model.UpdateScore(call.pid, call.value);
      break;
    case Call::Kind::kResetScore:
      model.ResetScore(call.now, call.score_age_limit);
      break;
    case Call::Kind::kGetPids:
      outcome.pids = model.GetProcTree(call.pid);
      break;
    case Call::Kind::kGetImages:
      model.GetProcTree(call.pid, outcome.images);
      break;
    case Call::Kind::kGetFinalState:
      outcome.result = model.GetFinalStateFileByPid(call.pid, outcome.files, outcome.paths);
      break;
  }
  return outcome;
}

}  // namespace zt::model
