#include "engine/context.h"

#include <utility>

#include "engine/tracing.h"

_ZtEngineCore::_ZtEngineCore(std::uint32_t id) : EngineId(id), Transitions(zt::kTransitionBuckets) {
  Lock.Init();
  CryptoModules.insert_or_assign(
      BehaviorModuleLoad, std::vector<std::wstring>{L"bcrypt.dll", L"cryptbase.dll", L"bcryptprimitives.dll", L"cryptsp.dll"});
  zt::FillTransitionTable(Transitions);
}

const std::int64_t* _ZtEngineCore::FindStartTime(std::uint64_t pid) const {
  const auto found = StartTimes.find(pid);
  return found == StartTimes.end() ? nullptr : &found->second;
}

namespace zt {

std::shared_ptr<_ZtEngineCore> AcquireEngine(const std::shared_ptr<void>& handle) {
  std::shared_ptr<_ZtEngineCore> engine = std::static_pointer_cast<_ZtEngineCore>(handle);
  return engine && engine->Lock.IsInitialised() ? engine : nullptr;
}

}  // namespace zt

unsigned char ZtInitEngineCore(std::shared_ptr<void>& engine, std::uint32_t id) {
  // Built whole before it is stored: when memory runs out, the handle stays as it was.
  engine = std::make_shared<_ZtEngineCore>(id);
  ZT_TRACE_INFO("init\n");
  return 1;
}

void ZtCleanupEngineCore(std::shared_ptr<void>& engine) {
  if (const auto core = zt::AcquireEngine(engine)) {
    core->Lock.Delete();
  }
}
