#include "tests/model/random_events.h"

#include <sstream>
#include <utility>

#include "tests/model/model_engine.h"

namespace zt::model {

std::string Describe(const Call& call) {
  std::ostringstream text;
  switch (call.kind) {
    case Call::Kind::kInsertLog:
      text << "ZtInsertLog(";
      break;
    case Call::Kind::kCalculateSingleLineScore:
      text << "ZtCalculateSingleLineScore(score " << call.value << ", ";
      break;
    case Call::Kind::kUpdateScore:
      text << "ZtUpdateScore(pid " << call.pid << ", value " << call.value << ")";
      return text.str();
    case Call::Kind::kResetScore:
      text << "ZtResetScore(now " << call.now << ", limit " << call.score_age_limit << ")";
      return text.str();
    case Call::Kind::kGetPids:
      text << "ZtGetProcTree(pid " << call.pid << ")";
      return text.str();
    case Call::Kind::kGetImages:
      text << "ZtGetProcTree(pid " << call.pid << ", images)";
      return text.str();
    case Call::Kind::kGetFinalState:
      text << "ZtGetFinalStateFileByPid(pid " << call.pid << ")";
      return text.str();
  }
  text << "behavior " << Hex8(call.log.Behavior) << ", time " << call.log.Time << ", pid " << call.log.Pid << ", target pid "
       << call.log.TargetPid << ", context " << call.log.Context << ", target \"" << Utf8(TargetOf(call.log)) << "\")";
  return text.str();
}

RandomEvents::RandomEvents(std::uint64_t seed, Life life)
    : life_(life), random_(seed), clock_(static_cast<std::int64_t>(Below(1000000000))) {
  habit_ = RandomDisguise();
  StartUp();
}

std::int64_t RandomEvents::Tick() {
  if (Below(life_ == Life::kShort ? 400 : 20000) == 0) {
    // Two of these make a file record old: it is kept for 9 000 000 000 ticks.
    clock_ += 5000000000;
  } else if (!Percent(20)) {
    clock_ += static_cast<std::int64_t>(Below(20000));
  }
  if (Percent(10)) {
    stamps_.push_back(clock_);
  }
  return clock_;
}

Call RandomEvents::Next() {
  if (Percent(1)) {
    habit_ = RandomDisguise();
  }
  while (plays_.size() < 3) {
    StartPlay();
  }
  if (Percent(25)) {
    return SingleCall();
  }
  const std::size_t chosen = Below(plays_.size());
  Call call = plays_[chosen].front();
  plays_[chosen].pop_front();
  if (plays_[chosen].empty()) {
    plays_.erase(plays_.begin() + static_cast<std::ptrdiff_t>(chosen));
  }
  // A play's calls are made when it begins; what happens happens now.
  if (call.kind == Call::Kind::kInsertLog && call.log.Behavior != BehaviorProcessCreate) {
    call.log.Time = Tick();
  }
  return call;
}

void RandomEvents::Begin(Play play) {
  if (!play.empty()) {
    plays_.push_back(std::move(play));
  }
}

}  // namespace zt::model
