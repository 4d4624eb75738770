// The lists of created and of quarantined files.

#include <algorithm>

#include "tests/model/model_engine.h"

namespace zt::model {

void ModelEngine::AddToQuarantineList(const std::wstring& path, ProcessItem& process) {
  std::vector<std::wstring>& list = process.quarantine_list;
  if (std::find(list.begin(), list.end(), path) != list.end()) {
    trace_.Debug(0, "%ws still exists in the quarantine list of pid %d", {Utf8(path), Signed32(process.pid)});
    return;
  }
  list.push_back(path);
  trace_.Debug(0, "Adding %ws to the quarantine list of pid %d", {Utf8(path), Signed32(process.pid)});
}

void ModelEngine::RemoveFromQuarantineList(const std::wstring& path, ProcessItem& process) {
  std::vector<std::wstring>& list = process.quarantine_list;
  const auto found = std::find(list.begin(), list.end(), path);
  if (found == list.end()) {
    trace_.Debug(0, "%ws does not exist in the quarantine list", {Utf8(path)});
    return;
  }
  list.erase(found);
  trace_.Debug(0, "Removing %ws from the quarantine list", {Utf8(path)});
}

void ModelEngine::AddToCreatedFilesList(const std::wstring& path, ProcessItem& process) {
  std::vector<std::wstring>& list = process.created_files_list;
  if (std::find(list.begin(), list.end(), path) != list.end()) {
    trace_.Debug(0, "%ws still exists in the created files list", {Utf8(path)});
    return;
  }
  list.push_back(path);
  trace_.Debug(0, "Adding %ws to the created files list", {Utf8(path)});
}

}  // namespace zt::model
