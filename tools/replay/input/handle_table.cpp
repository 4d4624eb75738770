#include "tools/replay/input/handle_table.h"

namespace replay {

HandleTable::File& HandleTable::Open(std::uint64_t pid, std::uint64_t handle, std::string_view name) {
  std::shared_ptr<File>& file = processes_[pid][handle];
  file = std::make_shared<File>(File{std::string(name), 0});
  return *file;
}

void HandleTable::Duplicate(std::uint64_t pid, std::uint64_t source, std::uint64_t target) {
  Handles& handles = processes_[pid];
  const auto found = handles.find(source);
  if (found == handles.end()) {
    handles.erase(target);
    return;
  }
  const std::shared_ptr<File> file = found->second;
  handles[target] = file;
}

void HandleTable::Close(std::uint64_t pid, std::uint64_t handle) {
  const auto process = processes_.find(pid);
  if (process != processes_.end()) {
    process->second.erase(handle);
  }
}

void HandleTable::CloseAll(std::uint64_t pid) { processes_.erase(pid); }

HandleTable::File* HandleTable::Find(std::uint64_t pid, std::uint64_t handle) {
  const auto process = processes_.find(pid);
  if (process == processes_.end()) {
    return nullptr;
  }
  const auto found = process->second.find(handle);
  return found == process->second.end() ? nullptr : found->second.get();
}

}  // namespace replay
