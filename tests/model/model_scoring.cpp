// The score of a line, and scores that the host sets.

#include "tests/model/model_engine.h"
#include "tests/model/model_similar.h"

namespace zt::model {

std::int32_t ModelEngine::CalculateSingleLineScore(const LOG_ITEM* log, std::int32_t score) {
  if (log == nullptr || score == 0) {
    return 0;
  }
  if (log->Behavior != 0xC001) {
    return score;
  }
  const std::wstring name = FileNameOf(TargetOf(*log));
  for (const wchar_t* watched : {L"bcrypt.dll", L"cryptbase.dll", L"bcryptprimitives.dll", L"cryptsp.dll"}) {
    if (name == watched) {
      return static_cast<std::int32_t>(static_cast<std::uint32_t>(score) + 1);
    }
  }
  return score;
}

void ModelEngine::UpdateScore(std::uint64_t pid, std::int32_t value) {
  const std::int64_t time = start_times_[pid];
  ProcessItem* process = ItemOf({pid, time});
  if (process != nullptr) {
    trace_.Debug(154, "Ignore %lu, setting score to 0", {Unsigned32(pid)});
    process->score = value;
  }
}

}  // namespace zt::model
