// The entry of all events: which process an event belongs to, its one or two passes, and the charge of a penalty.

#include <algorithm>
#include <limits>

#include "engine/context.h"
#include "engine/event_processor.h"
#include "engine/parent_penalty.h"
#include "engine/text.h"
#include "engine/tracing.h"
#include "platform/clock.h"

namespace zt {
namespace {

constexpr std::uint32_t kMaxScore = 0x7FFFFFFF;

/// Whether events of this behaviour are fed to the parent as well.
bool IsFileBehavior(std::uint32_t behavior) { return behavior - 0x4001 <= 0x3FFE; }

/// The key of the event's process. The event's own time stands in for an unknown start time.
ZtProcKey EventKey(const _ZtEngineCore& engine, const LOG_ITEM& log) {
  if (const std::int64_t* time = engine.FindStartTime(log.Pid); time != nullptr) {
    return {log.Pid, *time};
  }
  if (log.Behavior != BehaviorProcessCreate) {
    ZT_TRACE_DEBUG("Unable to find timestamp for PID %ld", Trace32(log.Pid));
  }
  return {log.Pid, log.Time};
}

/// Feeds the event to its process and, for a file behaviour, to the parent. Returns the greatest penalty, at least 1.
std::uint32_t RunPasses(_ZtEngineCore& engine, Insertion& insertion, const ZtProcKey& event_key) {
  const std::uint32_t penalty = std::max(1u, ZtProcessLogItem(engine, insertion, event_key, true));
  const ProcessTree::Entry* process = engine.Tree.Find(event_key);
  if (!IsFileBehavior(insertion.event.log.Behavior) || process == nullptr || NamesNoParent(process->parentKey)) {
    return penalty;
  }
  const ZtProcKey parent_key = process->parentKey;
  return std::max(penalty, ZtProcessLogItem(engine, insertion, parent_key, false));
}

/// The file that a penalty is charged for, or null. A penalty of the parent's pass is looked up among the files of the event's
/// own process, too: where that does not know the file, the penalty is dropped.
TrackedFile* ChargeableFile(ProcessTree::Entry* process, const PathName& path) {
  if (process == nullptr) {
    ZT_TRACE_DEBUG("Pid node not found\n");
    return nullptr;
  }
  TrackedFile* const file = process->Item.files.Find(path);
  if (file == nullptr) {
    ZT_TRACE_DEBUG("Cannot find file in file context\n");
    return nullptr;
  }
  if (file->item.penalized) {
    ZT_TRACE_DEBUG("File already penalized\n");
    return nullptr;
  }
  return file;
}

/// Multiplies the scores of the process and of all its ancestors. Throws std::bad_alloc with nothing changed.
void Charge(_ZtEngineCore& engine, const LOG_ITEM& log, ProcessTree::Entry& process, TrackedFile& file, PathName& path,
            std::uint32_t penalty) {
  ParentPenalty parent_penalty(penalty, log.Time, path);
  engine.Tree.Climb(process.key, [&](ProcessTree::Entry& ancestor) {
    if (&ancestor != &process) {
      parent_penalty.Add(ancestor);
    }
  });

  const std::wstring charged = engine.Observer == nullptr ? std::wstring() : Widen(path.lower());

  const std::int32_t before = process.Item.Score;
  file.item.penalized = true;
  process.Item.Score = MultiplyScore(before, penalty);
  process.Item.ScoreTime = log.Time;
  ReportCharge(engine, process.key, ScoreReport::Cause::kPenalty, before, process.Item.Score, penalty, charged);
  parent_penalty.Charge([&](const ProcessTree::Entry& ancestor, std::int32_t ancestor_before) {
    ReportCharge(engine, ancestor.key, ScoreReport::Cause::kParentPenalty, ancestor_before, ancestor.Item.Score, penalty,
                 charged);
  });
}

/// An item's score as the result has it; a score beyond the bound is cut back to it in place.
std::uint32_t ClampScore(_ZtEngineCore& engine, ProcessTree::Entry& process) {
  const std::int32_t before = process.Item.Score;
  if (static_cast<std::uint32_t>(before) > kMaxScore) {
    process.Item.Score = kMaxScore;
    ReportScore(engine, process.key, ScoreReport::Cause::kClamp, before, process.Item.Score);
  }
  return static_cast<std::uint32_t>(process.Item.Score);
}

/// The larger of the process's and its parent's score. The walk reads the process and then the same parent again for every
/// further step that the limit allows; it never reaches the grandparents.
std::uint32_t WalkScores(_ZtEngineCore& engine, ProcessTree::Entry& process) {
  if (engine.ScoreWalkLimit == 0) {
    return 0;
  }
  const std::uint32_t score = ClampScore(engine, process);
  ProcessTree::Entry* parent = engine.ScoreWalkLimit > 1 ? engine.Tree.Find(process.parentKey) : nullptr;
  return parent == nullptr ? score : std::max(score, ClampScore(engine, *parent));
}

/// Everything that happens under the lock. Returns the call's result. Throws std::bad_alloc with the outcome to be taken back.
std::uint32_t InsertEvent(_ZtEngineCore& engine, Insertion& insertion) {
  const LOG_ITEM& log = insertion.event.log;
  const ZtProcKey key = EventKey(engine, log);
  const std::uint32_t penalty = RunPasses(engine, insertion, key);
  if (penalty <= 1) {
    return 0;
  }
  PathName& path = insertion.ChargedPath();
  ZT_TRACE_DEBUG("ProcKey: (%d, %lld) Path: %ws Penalty: %d", Trace32(key.Pid), Trace64(key.Time), Widen(path.lower()).c_str(),
                 penalty);
  ProcessTree::Entry* process = engine.Tree.Find(key);
  TrackedFile* file = ChargeableFile(process, path);
  if (file == nullptr) {
    return 0;
  }
  Charge(engine, log, *process, *file, path, penalty);
  const std::uint32_t result = WalkScores(engine, *process);
  ZT_TRACE_WARNING("|--- [SCORE INCREASED] PID:%ld score: %d, TimeStamp: %lld ---|\n", Trace32(log.Pid), result,
                   Trace64(log.Time));
  return result;
}

/// Exhausted memory must not reach the host from here: the event then charges nobody, and the next one like it does.
std::uint32_t InsertOrIgnore(_ZtEngineCore& engine, const LOG_ITEM& log) {
  try {
    const Event event(log);
    const CriticalSectionLock hold(engine.Lock);
    Insertion insertion(event);
    try {
      return InsertEvent(engine, insertion);
    } catch (...) {
      insertion.outcome.TakeBack();
    }
  } catch (...) {
  }
  return 0;
}

}  // namespace
}  // namespace zt

ZtLong ZtInsertLog(std::shared_ptr<void>& engine, LOG_ITEM* log) {
  const auto core = zt::AcquireEngine(engine);
  if (!core || log == nullptr) {
    return 0;
  }
  const std::int64_t start = zt::SteadyNanoseconds();  // Also while no line wants it: that may change during the call.
  const std::uint32_t result = zt::InsertOrIgnore(*core, *log);
  ZT_TRACE_DEBUG("Time past: %lld nanoseconds", zt::Trace64(zt::SteadyNanoseconds() - start));
  return static_cast<ZtLong>(result);
}
