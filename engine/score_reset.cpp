// The periodic clean-up: old scores fall back to 1, old file records are forgotten, exited processes leave the tree.

#include "engine/context.h"
#include "engine/text.h"
#include "engine/tracing.h"

namespace zt {
namespace {

/// Age of a stamp in milliseconds. Any two stamps have an age: the subtraction wraps.
std::int64_t Age(std::int64_t now, std::int64_t stamp) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(now) - static_cast<std::uint64_t>(stamp)) / 10000;
}

void ResetOldScore(_ZtEngineCore& engine, ProcessTree::Entry& process, std::int64_t now, std::int64_t score_age_limit) {
  ProcessItem& item = process.Item;
  if (Age(now, item.ScoreTime) <= score_age_limit) {
    return;
  }
  const std::int32_t before = item.Score;
  if (IsSuspicious(item)) {
    ZT_TRACE_INFO_AT(1253, "GC: reset %ld %d to 1\n", Trace32(item.Pid), before);
  }
  item.Score = 1;
  ReportScore(engine, process.key, ScoreReport::Cause::kReset, before, item.Score);
}

// Files are forgotten in no order, but in that of their keys where the trace shows it.
void ForgetOldFiles(const _ZtEngineCore& engine, ProcessItem& item, std::int64_t now) {
  const auto is_old = [&](const TrackedFile& file) {
    return Age(now, file.item.FirstTime) > engine.fileKeepTime && !file.item.Similar;
  };
  if (!IsTraced(kTraceDebug)) {
    item.files.EraseIf(is_old);
    return;
  }
  for (TrackedFile* const file : item.files.Sorted(is_old)) {
    ZT_TRACE_DEBUG_AT(1263, "File %ws does not need recovery, will be erased from file context. Time elapsed %lld",
                      Widen(file->key.Lower()).c_str(), Trace64(Age(now, file->item.FirstTime)));
    item.files.Erase(*file);
  }
}

}  // namespace
}  // namespace zt

void ZtResetScore(std::shared_ptr<void>& engine, std::int64_t now, std::int64_t scoreAgeLimit) {
  const auto core = zt::AcquireEngine(engine);
  if (!core) {
    return;
  }
  const zt::CriticalSectionLock hold(core->Lock);
  ZT_TRACE_DEBUG_AT(1248, "ZtResetScore start :: ProcTree size: %u", static_cast<std::uint32_t>(core->Tree.size()));
  for (auto& [key, process] : core->Tree) {
    zt::ResetOldScore(*core, process, now, scoreAgeLimit);
    zt::ForgetOldFiles(*core, process.Item, now);
  }
  core->Tree.CollectExited();
  for (const auto& [key, process] : core->Tree) {
    ZT_TRACE_DEBUG_AT(1272, "PID: %ld", zt::Trace32(process.Item.Pid));
  }
  // The two size lines differ in the space before the colons; readers of traces search for both as they are.
  ZT_TRACE_DEBUG_AT(1275, "ZtResetScore end:: ProcTree size: %u", static_cast<std::uint32_t>(core->Tree.size()));
}
