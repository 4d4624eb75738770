// Which processes of a family have become suspicious.

#include "engine/context.h"
#include "engine/tracing.h"

namespace zt {
namespace {

/// Calls emit(Entry) for each suspicious member of the family of `pid`. An unknown id is entered into the start times on
/// purpose.
template <typename Emit>
void ForEachSuspicious(_ZtEngineCore& engine, std::uint64_t pid, Emit emit) {
  const ZtProcKey key = {pid, engine.StartTimeOrEnter(pid)};
  ZT_TRACE_DEBUG("Key: (%ld, %lld)", Trace32(key.Pid), Trace64(key.Time));
  const ZtProcKey root = engine.Tree.FamilyRoot(key, engine.ScoreWalkLimit);
  ZT_TRACE_DEBUG("RootKey: (%ld, %lld)", Trace32(root.Pid), Trace64(root.Time));
  const ProcessFamily family(engine.Tree, root);
  ZT_TRACE_DEBUG("Number of items in tree: %d", static_cast<std::int32_t>(family.size()));
  for (const ProcessTree::Entry* member : family) {
    if (IsSuspicious(member->Item)) {
      ZT_TRACE_DEBUG("Proc Pid: %ld has score %lu", Trace32(member->Item.Pid), static_cast<std::uint32_t>(member->Item.Score));
      emit(member->Item);
    }
  }
}

}  // namespace
}  // namespace zt

std::vector<void*> ZtGetProcTree(std::shared_ptr<void>& engine, void* pid) {
  std::vector<void*> pids;
  if (const auto core = zt::AcquireEngine(engine)) {
    zt::ForEachSuspicious(*core, zt::PidFromHandle(pid),
                          [&](const zt::ProcessItem& item) { pids.push_back(zt::HandleFromPid(item.Pid)); });
  }
  return pids;
}

void ZtGetProcTree(std::shared_ptr<void>& engine, void* pid, std::map<void*, std::wstring>& procs) {
  if (const auto core = zt::AcquireEngine(engine)) {
    zt::ForEachSuspicious(*core, zt::PidFromHandle(pid), [&](const zt::ProcessItem& item) {
      procs.insert_or_assign(zt::HandleFromPid(item.Pid), item.ImagePath);
    });
  }
}
