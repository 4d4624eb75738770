#include "engine/line_scoring.h"

#include <algorithm>

#include "engine/event.h"
#include "engine/paths.h"
#include "engine/text.h"
#include "engine/tracing.h"

namespace zt {

// The comparison of names is exact: only the watched spelling counts.
std::int32_t ScoreLine(const _ZtEngineCore& engine, std::uint32_t behavior, std::u16string_view target, std::int32_t score) {
  if (score == 0 || behavior != BehaviorModuleLoad) {
    return score;
  }
  const auto row = engine.CryptoModules.find(behavior);
  if (row == engine.CryptoModules.end()) {
    return score;
  }
  const std::vector<std::wstring>& names = row->second;
  const std::u16string_view loaded = FileNamePart(target);
  if (std::none_of(names.begin(), names.end(), [loaded](const std::wstring& name) { return SameText(loaded, name); })) {
    return score;
  }
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(score) + 1);
}

}  // namespace zt

ZtLong ZtCalculateSingleLineScore(std::shared_ptr<void>& engine, LOG_ITEM* item, ZtLong score) {
  const auto core = zt::AcquireEngine(engine);
  if (!core || item == nullptr || score == 0) {
    return 0;
  }
  return zt::ScoreLine(*core, item->Behavior, zt::TargetOf(*item), static_cast<std::int32_t>(score));
}

void ZtUpdateScore(std::shared_ptr<void>& engine, void* pid, ZtLong value) {
  const auto core = zt::AcquireEngine(engine);
  if (!core) {
    return;
  }
  const zt::CriticalSectionLock hold(core->Lock);
  const std::uint64_t id = zt::PidFromHandle(pid);
  zt::ProcessTree::Entry* entry = core->Tree.Find({id, core->StartTimeOrEnter(id)});
  if (entry == nullptr) {
    return;
  }
  // The line names the main use of the call and says 0 whatever the value.
  ZT_TRACE_DEBUG_AT(154, "Ignore %lu, setting score to 0", zt::TraceU32(id));
  const std::int32_t before = entry->Item.Score;
  entry->Item.Score = static_cast<std::int32_t>(value);
  zt::ReportScore(*core, entry->key, zt::ScoreReport::Cause::kUpdate, before, entry->Item.Score);
}
