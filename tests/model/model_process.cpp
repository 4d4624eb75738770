// One pass of one event: its trace, process creation and exit, and the score of the line.

#include <cstddef>
#include <string_view>

#include "tests/model/model_engine.h"
#include "tests/model/model_tree.h"

namespace zt::model {
namespace {

constexpr std::string_view kSeparator =
    "==========================================================================================================";
static_assert(kSeparator.size() == 106);

/// The acting side, up to its first zero or the field's end.
std::string PathOf(const LOG_ITEM& log) {
  std::string path;
  for (const char c : log.Path) {
    if (c == '\0') {
      break;
    }
    path.push_back(c);
  }
  return path;
}

}  // namespace

std::uint32_t ModelEngine::ProcessLogItem(const LOG_ITEM& log, const Key& key, std::wstring& path, bool first_pass) {
  trace_.Debug(0, kSeparator);
  const std::wstring target = TargetOf(log);
  const std::vector<std::string> fields = {Signed64(log.Time), Unsigned32(log.Pid),     Signed32(log.Tid), PathOf(log),
                                           Hex8(log.Behavior), Signed32(log.TargetPid), Utf8(target)};
  if (first_pass) {
    trace_.Debug(0, "[[ log: Time %lld Pid %lu Tid %ld path %s behavior %08x target_pid %ld target %ws ]]", fields);
  } else {
    trace_.Debug(0, "log: Time %lld Pid %lu Tid %ld path %s behavior %08x target_pid %ld target %ws", fields);
  }
  if (target.empty()) {
    trace_.Debug(0, "No target string found");
    if (log.Behavior == 0xC002) {
      ProcessExit(key);
    }
    trace_.Debug(0, kSeparator);
    return 1;
  }
  if (log.Behavior == 0xC003) {
    ProcessCreation(log, key, target);
  }
  ProcessItem* process = ItemOf(key);
  if (process == nullptr) {
    trace_.Debug(0, "Process not found in tree");
    trace_.Debug(0, kSeparator);
    return 1;
  }
  process->score = CalculateSingleLineScore(&log, process->score);

  FileEvent event{.log = log, .process = *process, .target = target, .lower = Lower(target), .quarantine = Lower(target)};
  HandleFileEvent(event);
  if (event.stepped) {
    path = event.path;
  }
  trace_.Debug(0, kSeparator);
  return event.result;
}

void ModelEngine::ProcessExit(const Key& key) {
  ProcessItem* process = ItemOf(key);
  if (process != nullptr && process->exiting == 0) {
    for (const Key& ancestor : WalkUp(tree_, key)) {
      tree_.at(ancestor).live_count -= 1;
    }
    tree_.at(key).exited = 1;
    process->exiting = 1;
  } else {
    trace_.Reached(process == nullptr ? "exit: unknown process" : "exit: a second time");
  }
  trace_.Debug(0, "Process is exiting");
}

void ModelEngine::ProcessCreation(const LOG_ITEM& log, const Key& key, const std::wstring& target) {
  trace_.Debug(0, "PID:%ld add new PID:%ld %lld", {Signed32(key.first), Signed32(log.TargetPid), Signed64(log.Time)});
  ProcessItem item;
  item.score = 1;
  item.pid = log.TargetPid;
  item.image_path = target;
  if (Lower(target).substr(0, 4) == L"\\??\\") {
    trace_.Reached("creation: prefix removed");
    item.image_path = target.substr(4);
  }
  start_times_[log.TargetPid] = log.Time;
  const Key child(log.TargetPid, log.Time);
  if (tree_.contains(child)) {
    trace_.Reached(child == key ? "creation: of itself" : "creation: of a known key");
  }
  InsertChild(tree_, key, child, item);
  trace_.Debug(0, "ProcCreate: ParentKey(%ld, %lld) ChildKey(%ld, %lld)",
               {Signed32(key.first), Signed64(key.second), Signed32(child.first), Signed64(child.second)});
}

}  // namespace zt::model
