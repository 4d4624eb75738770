// One event: which process, how many passes, and what a penalty does to the scores.

#include <algorithm>
#include <cstddef>

#include "tests/model/model_engine.h"
#include "tests/model/model_tree.h"

namespace zt::model {
namespace {

bool HasNoParent(const Key& parent_key) { return static_cast<std::uint32_t>(parent_key.first) == 0; }

/// The 32-bit product of both, wrapped.
std::int32_t Multiply(std::int32_t score, std::uint32_t penalty) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(score) * penalty);
}

}  // namespace

ModelEngine::ModelEngine(std::uint32_t id, std::uint64_t trace_flags) : id_(id), trace_(trace_flags) {
  machine_.Fill(trace_);
  trace_.Info(0, "init\n");
}

const TreeEntry* ModelEngine::Find(std::uint64_t pid) const {
  const auto time = start_times_.find(pid);
  if (time == start_times_.end()) {
    return nullptr;
  }
  const auto entry = tree_.find({pid, time->second});
  return entry == tree_.end() ? nullptr : &entry->second;
}

std::size_t ModelEngine::CountFiles() const {
  std::size_t count = 0;
  for (const auto& [key, entry] : tree_) {
    count += entry.item.files.size();
  }
  return count;
}

ProcessItem* ModelEngine::ItemOf(const Key& key) {
  const auto entry = tree_.find(key);
  return entry == tree_.end() ? nullptr : &entry->second.item;
}

std::int32_t ModelEngine::InsertLog(const LOG_ITEM* log) {
  if (log == nullptr) {
    return 0;
  }
  const LOG_ITEM record = *log;
  std::int64_t time = record.Time;
  if (start_times_.contains(record.Pid)) {
    time = start_times_.at(record.Pid);
  } else if (record.Behavior != 0xC003) {
    trace_.Debug(0, "Unable to find timestamp for PID %ld", {Signed32(record.Pid)});
  }

  const Key key(record.Pid, time);
  Key moving = key;
  std::wstring path;
  std::uint32_t penalty = 1;
  int passes = record.Behavior >= 0x4001 && record.Behavior <= 0x7FFF ? 2 : 1;
  bool first_pass = true;
  while (passes > 0) {
    penalty = std::max(penalty, ProcessLogItem(record, moving, path, first_pass));
    if (!tree_.contains(moving)) {
      break;
    }
    if (HasNoParent(tree_.at(moving).parent_key)) {
      if (tree_.contains(tree_.at(moving).parent_key)) {
        trace_.Reached("insert: no second pass for a parent whose id has no low bits");
      }
      break;
    }
    if (!first_pass || tree_.at(moving).parent_key == moving) {
      trace_.Reached(first_pass ? "insert: second pass for the process itself" : "insert: second pass done");
    }
    moving = tree_.at(moving).parent_key;
    first_pass = false;
    --passes;
  }

  std::int32_t result = 0;
  if (penalty > 1) {
    Charge(record, key, path, penalty, result);
  }
  trace_.Debug(0, "Time past: %lld nanoseconds", {std::string(kAnyNumber)});
  return result;
}

void ModelEngine::Charge(const LOG_ITEM& log, const Key& key, const std::wstring& path, std::uint32_t penalty,
                         std::int32_t& result) {
  trace_.Debug(0, "ProcKey: (%d, %lld) Path: %ws Penalty: %d",
               {Signed32(key.first), Signed64(key.second), Utf8(path), Signed32(penalty)});
  if (!tree_.contains(key)) {
    trace_.Debug(0, "Pid node not found\n");
    return;
  }
  ProcessItem& process = tree_.at(key).item;
  if (!process.files.contains(path)) {
    trace_.Debug(0, "Cannot find file in file context\n");
    return;
  }
  FileItem& file = process.files.at(path);
  if (file.penalized) {
    trace_.Debug(0, "File already penalized\n");
    return;
  }
  file.penalized = true;
  if (Multiply(process.score, penalty) == 0) {
    trace_.Reached(process.score == 0 ? "charge: ignored process" : "charge: score wraps to 0");
  }
  process.score = Multiply(process.score, penalty);
  process.score_time = log.Time;

  std::vector<Key> ancestors = WalkUp(tree_, key);
  ancestors.erase(ancestors.begin());
  for (const Key& ancestor : ancestors) {
    ParentPenalty(tree_.at(ancestor).item, log, path, penalty);
  }
  result = static_cast<std::int32_t>(ScoreWalk(key));
  trace_.Warning(0, "|--- [SCORE INCREASED] PID:%ld score: %d, TimeStamp: %lld ---|\n",
                 {Signed32(log.Pid), Signed32(static_cast<std::uint32_t>(result)), Signed64(log.Time)});
}

void ModelEngine::ParentPenalty(ProcessItem& ancestor, const LOG_ITEM& log, const std::wstring& path, std::uint32_t penalty) {
  trace_.Debug(769, "Parent pid %d", {Signed32(ancestor.pid)});
  const bool is_new = !ancestor.files.contains(path);
  if (!is_new && ancestor.files.at(path).penalized) {
    trace_.Reached("parent penalty: charged before");
    return;
  }
  ancestor.score = Multiply(ancestor.score, penalty);
  if (ancestor.score == 0) {
    trace_.Reached("parent penalty: score is 0");
  }
  ancestor.score_time = log.Time;
  ancestor.files[path].penalized = true;
  if (is_new) {
    trace_.Debug(781, "Parent Penalty %d, new file added to proc %d", {Signed32(penalty), Signed32(ancestor.pid)});
  } else {
    trace_.Debug(775, "Parent Penalty %d", {Signed32(penalty)});
  }
}

std::uint32_t ModelEngine::ScoreWalk(const Key& key) {
  std::uint32_t result = 0;
  ProcessItem* item = ItemOf(key);
  std::uint32_t steps = 0;
  while (item != nullptr && steps < kScoreWalkLimit) {
    const auto score = static_cast<std::uint32_t>(item->score);
    if (score > 0x7FFFFFFF) {
      trace_.Reached(steps == 0 ? "score walk: own score clamped" : "score walk: parent's score clamped");
      item->score = 0x7FFFFFFF;
      result = 0x7FFFFFFF;
    } else {
      result = std::max(result, score);
    }
    // Always the parent of the process itself: it is read again and again.
    item = ItemOf(tree_.at(key).parent_key);
    ++steps;
  }
  return result;
}

}  // namespace zt::model
