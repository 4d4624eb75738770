// Which files of a process are to be restored.

#include <unordered_set>

#include "engine/context.h"
#include "engine/tracing.h"

namespace zt {
namespace {

using PathSet = std::unordered_set<std::wstring>;

/// The images of the suspicious members of the family of `key`: a malicious program is never handed back for restoring.
PathSet SuspiciousImages(const _ZtEngineCore& engine, const ZtProcKey& key) {
  PathSet images;
  for (const ProcessTree::Entry* member : ProcessFamily(engine.Tree, engine.Tree.FamilyRoot(key, engine.ScoreWalkLimit))) {
    if (IsSuspicious(member->Item)) {
      images.insert(member->Item.ImagePath);
      ZT_TRACE_DEBUG_AT(1296, "Not restoring %ws", member->Item.ImagePath.c_str());
    }
  }
  return images;
}

ZT_FILE_ITEM_PUBLIC PublicItem(const _ZtEngineCore& engine, const ZT_FILE_ITEM& file) {
  ZT_FILE_ITEM_PUBLIC item;
  item.EngineId = engine.EngineId;
  item.Path = file.Path;
  item.Restore = file.State == ZT_SECTION_SYNC || file.State == ZT_OVERWRITE ? 1 : 0;
  item.Context = file.Context;
  return item;
}

/// Stores each restore candidate whose path is not in `excluded`, which takes the path in: each path is reported once.
void ReportFiles(const _ZtEngineCore& engine, const ZT_PID_ITEM& process, PathSet& excluded,
                 std::map<std::wstring, ZT_FILE_ITEM_PUBLIC>& files) {
  for (const auto& [key, file] : process.files) {
    if (file.Similar && excluded.insert(file.Path).second) {
      files.insert_or_assign(key, PublicItem(engine, file));
      ZT_TRACE_DEBUG_AT(1313, "%ws will get restored", file.Path.c_str());
    } else {
      ZT_TRACE_DEBUG_AT(1316, "%ws will not get restored", file.Path.c_str());
    }
  }
}

}  // namespace
}  // namespace zt

unsigned char ZtGetFinalStateFileByPid(std::shared_ptr<void>& engine, void* pid,
                                       std::map<std::wstring, ZT_FILE_ITEM_PUBLIC>& files, std::vector<std::wstring>& paths) {
  const auto core = zt::AcquireEngine(engine);
  if (!core) {
    return 0;
  }
  const zt::CriticalSectionLock hold(core->Lock);
  const std::uint64_t id = zt::PidFromHandle(pid);
  const std::int64_t* start_time = core->FindStartTime(id);
  const ZtProcKey key = {id, start_time == nullptr ? 0 : *start_time};
  ZT_TRACE_DEBUG_AT(1283, "ZtGetFinalStateFileByPid:: Pid:%ld Time:%lld", zt::Trace32(key.Pid), zt::Trace64(key.Time));
  const zt::ProcessTree::Entry* process = core->Tree.Find(key);
  zt::PathSet excluded = zt::SuspiciousImages(*core, key);
  if (process == nullptr) {
    ZT_TRACE_WARNING_AT(1321, "%ld does not exist in the tree", zt::Trace32(key.Pid));
    return 1;
  }
  const ZtPathList& quarantined = process->Item.QuarantineList;
  paths.insert(paths.begin(), quarantined.begin(), quarantined.end());
  zt::ReportFiles(*core, process->Item, excluded, files);
  return 1;
}
