#include "tools/replay/input/event_queue.h"

#include "tools/replay/input/record_text.h"

namespace replay {

void EventQueue::Add(const Actor& actor, std::uint32_t behavior, std::uint64_t target_pid, std::string_view target,
                     Repeat repeat) {
  if (repeat.times == 0) {
    return;
  }
  Waiting& waiting = waiting_.emplace_back(Waiting{{}, repeat});
  LOG_ITEM& record = waiting.call.record;
  record.Time = actor.time;
  record.Pid = actor.pid;
  record.Tid = actor.tid;
  record.TargetPid = target_pid;
  record.Behavior = behavior;
  SetPathTail(record, actor.image);
  if (SetTarget(record, target)) {
    counts_.targets_cut += repeat.times;
  }
}

bool EventQueue::Pop(Call& call) {
  if (waiting_.empty()) {
    return false;
  }
  Waiting& oldest = waiting_.front();
  call = oldest.call;
  call.number = ++last_number_;
  oldest.call.record.TargetPid += oldest.repeat.step;
  if (--oldest.repeat.times == 0) {
    waiting_.pop_front();
  }
  return true;
}

}  // namespace replay
