#include "engine/inspection.h"

#include "engine/context.h"
#include "engine/final_state.h"

namespace zt {

void SetEngineObserver(std::shared_ptr<void>& engine, EngineObserver* observer) {
  if (const auto core = AcquireEngine(engine)) {
    core->Observer = observer;
  }
}

bool FindProcess(std::shared_ptr<void>& engine, std::uint64_t pid, ProcessView& process) {
  const auto core = AcquireEngine(engine);
  const std::int64_t* time = core ? core->FindStartTime(pid) : nullptr;
  return time != nullptr && FindProcess(engine, ZtProcKey{pid, *time}, process);
}

bool FindProcess(std::shared_ptr<void>& engine, const ZtProcKey& key, ProcessView& process) {
  const auto core = AcquireEngine(engine);
  const ProcessTree::Entry* entry = core ? core->Tree.Find(key) : nullptr;
  if (entry == nullptr) {
    return false;
  }
  process = {entry->key, entry->parentKey, entry->Item.Score, entry->Item.Exiting != 0, entry->Item.ImagePath};
  return true;
}

bool VisitFinalState(std::shared_ptr<void>& engine, std::uint64_t pid, FinalStateVisitor& visitor) {
  const auto core = AcquireEngine(engine);
  if (!core) {
    return false;
  }
  const CriticalSectionLock hold(core->Lock);
  TellFinalState(*core, pid, visitor);
  return true;
}

}  // namespace zt
