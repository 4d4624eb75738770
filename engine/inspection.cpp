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

std::map<std::uint64_t, std::wstring> SuspiciousFamily(std::shared_ptr<void>& engine, std::uint64_t pid) {
  std::map<std::uint64_t, std::wstring> images;
  const auto core = AcquireEngine(engine);
  const std::int64_t* time = core ? core->FindStartTime(pid) : nullptr;
  if (time == nullptr) {
    return images;
  }
  for (const ProcessTree::Entry* member :
       ProcessFamily(core->Tree, core->Tree.FamilyRoot({pid, *time}, core->ScoreWalkLimit))) {
    if (IsSuspicious(member->Item)) {
      images.insert_or_assign(member->Item.Pid, member->Item.ImagePath);
    }
  }
  return images;
}

}  // namespace zt
