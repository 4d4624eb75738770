// What the host asks: the suspicious members of a family, and the files to restore.

#include <algorithm>

#include "tests/model/model_engine.h"
#include "tests/model/model_tree.h"

namespace zt::model {
namespace {

bool IsSuspicious(const ProcessItem& process) { return static_cast<std::uint32_t>(process.score) >= 2; }

}  // namespace

std::vector<ProcessItem> ModelEngine::SuspiciousFamily(std::uint64_t pid) {
  const Key key(pid, start_times_[pid]);
  trace_.Debug(0, "Key: (%ld, %lld)", {Signed32(key.first), Signed64(key.second)});
  const Key root = FindRoot(tree_, key, kScoreWalkLimit);
  trace_.Debug(0, "RootKey: (%ld, %lld)", {Signed32(root.first), Signed64(root.second)});
  const std::vector<Key> family = CollectFamily(tree_, root);
  trace_.Debug(0, "Number of items in tree: %d", {Signed32(family.size())});
  std::vector<ProcessItem> suspicious;
  for (const Key& member : family) {
    const ProcessItem& process = tree_.at(member).item;
    if (IsSuspicious(process)) {
      trace_.Debug(0, "Proc Pid: %ld has score %lu",
                   {Signed32(process.pid), Unsigned32(static_cast<std::uint32_t>(process.score))});
      suspicious.push_back(process);
    }
  }
  return suspicious;
}

std::vector<std::uint64_t> ModelEngine::GetProcTree(std::uint64_t pid) {
  std::vector<std::uint64_t> pids;
  for (const ProcessItem& process : SuspiciousFamily(pid)) {
    pids.push_back(process.pid);
  }
  return pids;
}

void ModelEngine::GetProcTree(std::uint64_t pid, std::map<std::uint64_t, std::wstring>& procs) {
  for (const ProcessItem& process : SuspiciousFamily(pid)) {
    procs[process.pid] = process.image_path;
  }
}

unsigned char ModelEngine::GetFinalStateFileByPid(std::uint64_t pid, std::map<std::wstring, ZT_FILE_ITEM_PUBLIC>& files,
                                                  std::vector<std::wstring>& paths) {
  const Key key(pid, start_times_.contains(pid) ? start_times_.at(pid) : 0);
  trace_.Debug(1283, "ZtGetFinalStateFileByPid:: Pid:%ld Time:%lld", {Signed32(key.first), Signed64(key.second)});
  std::vector<std::wstring> excluded;
  for (const Key& member : CollectFamily(tree_, FindRoot(tree_, key, kScoreWalkLimit))) {
    const ProcessItem& process = tree_.at(member).item;
    if (IsSuspicious(process)) {
      excluded.push_back(process.image_path);
      trace_.Debug(1296, "Not restoring %ws", {Utf8(process.image_path)});
    }
  }
  if (!tree_.contains(key)) {
    trace_.Warning(1321, "%ld does not exist in the tree", {Signed32(key.first)});
    return 1;
  }
  const ProcessItem& process = tree_.at(key).item;
  paths.insert(paths.begin(), process.quarantine_list.begin(), process.quarantine_list.end());
  for (const auto& [name, file] : process.files) {
    const bool is_excluded = std::find(excluded.begin(), excluded.end(), file.path) != excluded.end();
    if (!file.similar || is_excluded) {
      trace_.Reached(file.similar ? "final state: excluded" : "final state: no candidate");
      trace_.Debug(1316, "%ws will not get restored", {Utf8(file.path)});
      continue;
    }
    excluded.push_back(file.path);
    ZT_FILE_ITEM_PUBLIC item;
    item.EngineId = id_;
    item.Path = file.path;
    trace_.Reached(file.state == 3 || file.state == 4 ? "final state: restore" : "final state: no restore");
    item.Restore = file.state == 3 || file.state == 4 ? 1 : 0;
    item.Context = file.context;
    files[name] = item;
    trace_.Debug(1313, "%ws will get restored", {Utf8(file.path)});
  }
  return 1;
}

}  // namespace zt::model
