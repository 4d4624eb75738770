#include "engine/event_processor.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "engine/file_events.h"
#include "engine/line_scoring.h"
#include "engine/process_events.h"
#include "engine/text.h"
#include "engine/tracing.h"

namespace zt {
namespace {

constexpr char kSeparatorLine[] =
    "====================================================="
    "=====================================================";
static_assert(sizeof(kSeparatorLine) - 1 == 106);

void TraceRecord(const Event& event, bool first_pass) {
  if (!IsTraced(kTraceDebug)) {
    return;
  }
  const LOG_ITEM& log = event.log;
  std::array<char, sizeof(log.Path) + 1> path = {};  // The record's own text may lack a terminator.
  std::copy(std::begin(log.Path), std::end(log.Path), path.begin());
  const char* format = first_pass ? "[[ log: Time %lld Pid %lu Tid %ld path %s behavior %08x target_pid %ld target %ws ]]"
                                  : "log: Time %lld Pid %lu Tid %ld path %s behavior %08x target_pid %ld target %ws";
  ZT_TRACE_DEBUG(format, Trace64(log.Time), TraceU32(log.Pid), Trace32(log.Tid), path.data(), log.Behavior,
                 Trace32(log.TargetPid), Widen(event.target()).c_str());
}

void ScoreProcessLine(_ZtEngineCore& engine, const Event& event, ProcessTree::Entry& process) {
  const std::int32_t before = process.Item.Score;
  process.Item.Score = ScoreLine(engine, event.log.Behavior, event.target(), before);
  if (process.Item.Score != before) {
    ReportScore(engine, process.key, ScoreReport::Cause::kModuleLoad, before, process.Item.Score);
  }
}

/// The processing of an event that has a target.
std::uint32_t ProcessTarget(_ZtEngineCore& engine, Insertion& insertion, const ZtProcKey& key) {
  const Event& event = insertion.event;
  if (event.log.Behavior == BehaviorProcessCreate) {
    HandleProcessCreate(engine, event, key);
  }
  ProcessTree::Entry* process = engine.Tree.Find(key);
  if (process == nullptr) {
    ZT_TRACE_DEBUG("Process not found in tree");
    return 1;
  }
  ScoreProcessLine(engine, event, *process);
  return HandleFileEvent(engine, insertion, *process);
}

}  // namespace

std::uint32_t ZtProcessLogItem(_ZtEngineCore& engine, Insertion& insertion, const ZtProcKey& key, bool first_pass) {
  const Event& event = insertion.event;
  ZT_TRACE_DEBUG("%s", kSeparatorLine);
  TraceRecord(event, first_pass);
  std::uint32_t result = 1;
  if (event.target().empty()) {
    ZT_TRACE_DEBUG("No target string found");
    if (event.log.Behavior == BehaviorProcessExit) {
      HandleProcessExit(engine, key);
    }
  } else {
    result = ProcessTarget(engine, insertion, key);
  }
  ZT_TRACE_DEBUG("%s", kSeparatorLine);
  return result;
}

}  // namespace zt
