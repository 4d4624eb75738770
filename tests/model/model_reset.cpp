// The periodic clean-up.

#include <algorithm>

#include "tests/model/model_engine.h"

namespace zt::model {
namespace {

/// The age of `stamp` in units of 10000 ticks; the subtraction wraps, the division truncates toward zero.
std::int64_t Age(std::int64_t now, std::int64_t stamp) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(now) - static_cast<std::uint64_t>(stamp)) / 10000;
}

}  // namespace

void ModelEngine::ResetScore(std::int64_t now, std::int64_t score_age_limit) {
  trace_.Debug(1248, "ZtResetScore start :: ProcTree size: %u", {Unsigned32(tree_.size())});
  for (auto& [key, entry] : tree_) {
    ProcessItem& process = entry.item;
    if (Age(now, process.score_time) > score_age_limit) {
      const auto score = static_cast<std::uint32_t>(process.score);
      if (score >= 2) {
        trace_.Info(1253, "GC: reset %ld %d to 1\n", {Signed32(process.pid), Signed32(score)});
      }
      process.score = 1;
    }
    ForgetOldFiles(process, now);
  }
  EraseFinished();
  for (const auto& [key, entry] : tree_) {
    trace_.Debug(1272, "PID: %ld", {Signed32(entry.item.pid)});
  }
  trace_.Debug(1275, "ZtResetScore end:: ProcTree size: %u", {Unsigned32(tree_.size())});
}

void ModelEngine::ForgetOldFiles(ProcessItem& process, std::int64_t now) {
  auto file = process.files.begin();
  while (file != process.files.end()) {
    const std::int64_t age = Age(now, file->second.first_time);
    if (age <= kFileKeepTime || file->second.similar) {
      if (age == kFileKeepTime) {
        trace_.Reached("reset: file exactly at the limit");
      }
      ++file;
      continue;
    }
    trace_.Debug(1263, "File %ws does not need recovery, will be erased from file context. Time elapsed %lld",
                 {Utf8(file->first), Signed64(age)});
    file = process.files.erase(file);
  }
}

void ModelEngine::EraseFinished() {
  auto node = tree_.begin();
  while (node != tree_.end()) {
    TreeEntry& entry = node->second;
    if (entry.live_count != 0 || entry.exited != 0) {
      if (entry.exited > 0) {
        trace_.Reached("reset: exited process waits");
        --entry.exited;
      }
      ++node;
      continue;
    }
    trace_.Reached("reset: process erased");
    const auto parent = tree_.find(entry.parent_key);
    if (parent != tree_.end()) {
      trace_.Reached("reset: process unlinked");
      std::vector<Key>& siblings = parent->second.children;
      const auto self = std::find(siblings.begin(), siblings.end(), entry.own_key);
      if (self != siblings.end()) {
        siblings.erase(self);
      }
    }
    node = tree_.erase(node);
  }
}

}  // namespace zt::model
