#include "engine/process_events.h"

#include <string_view>
#include <utility>

#include "engine/text.h"
#include "engine/tracing.h"

namespace zt {
namespace {

constexpr std::u16string_view kNativePrefix = u"\\??\\";

/// The image path of a created process: the target in its own letter case, without the prefix of native paths.
std::u16string_view ImagePath(const Event& event) {
  const std::u16string_view target = event.target();
  return target.starts_with(kNativePrefix) ? target.substr(kNativePrefix.size()) : target;
}

}  // namespace

void HandleProcessCreate(_ZtEngineCore& engine, const Event& event, const ZtProcKey& creator) {
  const ZtProcKey child = {event.log.TargetPid, event.log.Time};
  ZT_TRACE_DEBUG("PID:%ld add new PID:%ld %lld", Trace32(creator.Pid), Trace32(child.Pid), Trace64(child.Time));
  ProcessItem item;
  item.Score = 1;
  item.Pid = child.Pid;
  item.ImagePath = Widen(ImagePath(event));

  const auto [start_time, is_new] = engine.StartTimes.try_emplace(child.Pid, child.Time);
  try {
    engine.Tree.Insert(child, creator, std::move(item));
  } catch (...) {
    if (is_new) {
      engine.StartTimes.erase(start_time);
    }
    throw;
  }
  // A reused id now means the newest process.
  start_time->second = child.Time;
  ZT_TRACE_DEBUG("ProcCreate: ParentKey(%ld, %lld) ChildKey(%ld, %lld)", Trace32(creator.Pid), Trace64(creator.Time),
                 Trace32(child.Pid), Trace64(child.Time));
}

void HandleProcessExit(_ZtEngineCore& engine, const ZtProcKey& key) {
  ProcessTree::Entry* entry = engine.Tree.Find(key);
  if (entry != nullptr && entry->Item.Exiting == 0) {
    engine.Tree.MarkExited(*entry);
  }
  ZT_TRACE_DEBUG("Process is exiting");
}

}  // namespace zt
