#include "engine/final_state.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "engine/paths.h"
#include "engine/text.h"
#include "engine/tracing.h"

namespace zt {
namespace {

/// The images of the suspicious members of the family of `key`: a malicious program is never handed back for restoring.
std::vector<PathText> SuspiciousImages(const _ZtEngineCore& engine, const ZtProcKey& key, FinalStateVisitor& visitor) {
  std::vector<PathText> images;
  for (const ProcessTree::Entry* member : ProcessFamily(engine.Tree, engine.Tree.FamilyRoot(key, engine.ScoreWalkLimit))) {
    if (IsSuspicious(member->Item)) {
      const std::u16string image = ToUnits(member->Item.ImagePath);
      std::u16string lower(image.size(), u'\0');
      std::transform(image.begin(), image.end(), lower.begin(), ToLower);
      images.emplace_back(lower, image);
      visitor.OnExcludedImage(member->Item.ImagePath);
    }
  }
  return images;
}

bool IsRestored(const FileItem& file) { return file.State == ZT_SECTION_SYNC || file.State == ZT_OVERWRITE; }

/// Reports each restore candidate whose path is none of `excluded`; each path once.
void ReportFiles(const ProcessItem& process, const std::vector<PathText>& excluded, FinalStateVisitor& visitor) {
  PathSet left_out;
  for (const PathText& path : excluded) {
    left_out.Add(path);
  }
  const bool all = visitor.WantsFilesLeftOut();
  for (const TrackedFile* const file :
       process.files.Sorted([all](const TrackedFile& each) { return all || each.item.Similar; })) {
    if (file->item.Similar && left_out.Add(file->item.Path)) {
      visitor.OnFile(*file, IsRestored(file->item));
    } else {
      visitor.OnFileLeftOut(*file);
    }
  }
}

/// Copies the report into the outputs of the host, and writes the trace lines of the export.
class CopyForHost : public FinalStateVisitor {
 public:
  CopyForHost(std::uint32_t engine_id, std::map<std::wstring, ZT_FILE_ITEM_PUBLIC>& files, std::vector<std::wstring>& paths)
      : engine_id_(engine_id), files_(files), paths_(paths) {}

  void OnQuarantine(const PathList& list) override {
    std::vector<std::wstring> paths = list.Paths();
    paths_.insert(paths_.begin(), std::make_move_iterator(paths.begin()), std::make_move_iterator(paths.end()));
  }
  void OnFile(const TrackedFile& file, bool restored) override {
    ZT_FILE_ITEM_PUBLIC item;
    item.EngineId = engine_id_;
    item.Path = file.item.Path.Wide();
    item.Restore = restored ? 1 : 0;
    item.Context = file.item.Context;
    ZT_TRACE_DEBUG_AT(1313, "%ws will get restored", item.Path.c_str());
    // Files come in the order of keys, so mostly after all that the host's map has.
    files_.insert_or_assign(files_.end(), Widen(file.key.Lower()), std::move(item));
  }
  void OnKey(const ZtProcKey& key) override {
    ZT_TRACE_DEBUG_AT(1283, "ZtGetFinalStateFileByPid:: Pid:%ld Time:%lld", Trace32(key.Pid), Trace64(key.Time));
  }
  void OnExcludedImage(const std::wstring& image) override { ZT_TRACE_DEBUG_AT(1296, "Not restoring %ws", image.c_str()); }
  void OnMissingProcess(const ZtProcKey& key) override {
    ZT_TRACE_WARNING_AT(1321, "%ld does not exist in the tree", Trace32(key.Pid));
  }
  void OnFileLeftOut(const TrackedFile& file) override {
    ZT_TRACE_DEBUG_AT(1316, "%ws will not get restored", file.item.Path.Wide().c_str());
  }
  [[nodiscard]] bool WantsFilesLeftOut() const override { return IsTraced(kTraceDebug); }

 private:
  std::uint32_t engine_id_;
  std::map<std::wstring, ZT_FILE_ITEM_PUBLIC>& files_;
  std::vector<std::wstring>& paths_;
};

}  // namespace

void TellFinalState(const _ZtEngineCore& engine, std::uint64_t pid, FinalStateVisitor& visitor) {
  const std::int64_t* start_time = engine.FindStartTime(pid);
  const ZtProcKey key = {pid, start_time == nullptr ? 0 : *start_time};
  visitor.OnKey(key);
  const ProcessTree::Entry* process = engine.Tree.Find(key);
  const std::vector<PathText> excluded = SuspiciousImages(engine, key, visitor);
  if (process == nullptr) {
    return visitor.OnMissingProcess(key);
  }
  visitor.OnQuarantine(process->Item.QuarantineList);
  ReportFiles(process->Item, excluded, visitor);
}

}  // namespace zt

unsigned char ZtGetFinalStateFileByPid(std::shared_ptr<void>& engine, void* pid,
                                       std::map<std::wstring, ZT_FILE_ITEM_PUBLIC>& files, std::vector<std::wstring>& paths) {
  const auto core = zt::AcquireEngine(engine);
  if (!core) {
    return 0;
  }
  zt::CopyForHost visitor(core->EngineId, files, paths);
  const zt::CriticalSectionLock hold(core->Lock);
  zt::TellFinalState(*core, zt::PidFromHandle(pid), visitor);
  return 1;
}
