// Single random calls.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>

#include "tests/model/random_events.h"

namespace zt::model {

using namespace std::string_literals;

Call RandomEvents::Event(std::uint32_t behavior, std::uint64_t pid, const std::wstring& target, std::uint64_t target_pid) {
  Call call;
  LOG_ITEM& log = call.log;
  log.Time = Tick();
  log.Pid = pid;
  log.Tid = random_();
  log.TargetPid = target_pid;
  log.Reserved1 = static_cast<std::uint32_t>(random_());
  log.Behavior = behavior;
  log.Reserved2 = static_cast<std::uint32_t>(random_());
  log.Context = random_();
  const std::string acting = Percent(5) ? "an acting side of 36 characters.....!?" : "app.exe";
  std::copy_n(acting.begin(), std::min(acting.size(), std::size(log.Path)), std::begin(log.Path));
  const std::size_t length = std::min(target.size(), std::size(log.Target));
  for (std::size_t i = 0; i < length; ++i) {
    log.Target[i] = static_cast<ZtWideChar>(target[i]);
  }
  if (Percent(5)) {
    // Whatever stands after the end of the text.
    for (std::size_t i = length + 1; i < std::size(log.Target); ++i) {
      log.Target[i] = u'x';
    }
  }
  return call;
}

Call RandomEvents::OpenFile(std::uint64_t pid, const std::wstring& path) {
  std::vector<std::wstring>& paths = opened_[pid];
  paths.push_back(path);
  const std::uint64_t position = Position();
  return Event(BehaviorCreate, pid, path, position == 0 ? 1 : position);
}

Call RandomEvents::ReadFile(std::uint64_t pid, const std::wstring& path) {
  return Event(BehaviorRead, pid, MixCase(path), Position());
}

Call RandomEvents::WriteFile(std::uint64_t pid, const std::wstring& path) {
  return WriteFile(pid, path, Percent(70) ? 0 : Position());
}

Call RandomEvents::WriteFile(std::uint64_t pid, const std::wstring& path, std::uint64_t offset) {
  return Event(BehaviorWrite, pid, path + L"|" + LengthText(), offset);
}

Call RandomEvents::DeleteFile(std::uint64_t pid, const std::wstring& path) {
  return Event(Percent(75) ? BehaviorDelete : BehaviorDeleteAlt, pid, MixCase(path), Position());
}

Call RandomEvents::RenameFile(std::uint64_t pid, const std::wstring& source, const std::wstring& destination) {
  return Event(BehaviorRename, pid, MixCase(source) + L"|" + destination, Position());
}

Call RandomEvents::SyncFile(std::uint64_t pid, const std::wstring& path) {
  return Event(BehaviorSectionSync, pid, path, Position());
}

Call RandomEvents::CreateProcess(std::uint64_t creator, std::uint64_t created) {
  static const std::vector<std::wstring> kPrefixes = {L"", L"", L"", L"\\??\\", L"\\\\?\\", L"\\??"};
  const std::wstring image = Percent(3) ? L"\\??\\"s : OneOf(kPrefixes) + (Percent(30) ? OpenedPath(creator) : Path());
  Call call = Event(BehaviorProcessCreate, creator, image, created);
  if (Percent(5)) {
    call.log.Time = Percent(50) ? 0 : -static_cast<std::int64_t>(Below(1000));
  }
  pids_.insert(created);
  known_.push_back(created);
  return call;
}

Call RandomEvents::ExitProcess(std::uint64_t pid) { return Event(BehaviorProcessExit, pid, Percent(90) ? L"" : L"x", 0); }

Call RandomEvents::Query(std::uint64_t pid) {
  Call call;
  static constexpr std::array kKinds = {Call::Kind::kGetPids, Call::Kind::kGetImages, Call::Kind::kGetFinalState,
                                        Call::Kind::kGetFinalState};
  call.kind = OneOf(kKinds);
  call.pid = pid;
  return call;
}

Call RandomEvents::Reset() {
  static const std::vector<std::int64_t> kLimits = {
      0, 1, 1000, 900000, -1, 100000000, std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()};
  Call call;
  call.kind = Call::Kind::kResetScore;
  call.score_age_limit = OneOf(kLimits);
  call.now = clock_;
  if (Percent(40) && !stamps_.empty()) {
    // Exactly at an age limit of something that happened, or a tick or a unit beside it.
    static const std::vector<std::int64_t> kBeside = {-1, 0, 1, 9999, 10000, 10001};
    const std::int64_t age = Percent(50) ? 900000 : 1000;
    call.now = OneOf(stamps_) + age * 10000 + OneOf(kBeside);
  } else if (Percent(2)) {
    call.now = Percent(50) ? std::numeric_limits<std::int64_t>::max() : std::numeric_limits<std::int64_t>::min();
  }
  return call;
}

Call RandomEvents::SetScore(std::uint64_t pid) {
  static const std::vector<std::int32_t> kScores = {
      0, 1, 1, 2, 3, 5, -1, 0x7FFFFFFF, 0x40000003, std::numeric_limits<std::int32_t>::min(), 0x15555555, 1000};
  Call call;
  call.kind = Call::Kind::kUpdateScore;
  call.pid = pid;
  call.value = OneOf(kScores);
  return call;
}

Call RandomEvents::SingleLineScore() {
  static const std::vector<std::int32_t> kScores = {
      0, 1, 5, -1, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()};
  Call call = Event(Percent(80) ? BehaviorModuleLoad : AnyBehavior(), KnownPid(), ModulePath(), 0);
  call.kind = Call::Kind::kCalculateSingleLineScore;
  call.value = OneOf(kScores);
  return call;
}

Call RandomEvents::SingleCall() {
  const std::uint64_t kind = Below(100);
  if (kind < 70) {
    return AnyEvent();
  }
  if (kind < 80) {
    return Query(Percent(90) ? ActingPid() : NewPid());
  }
  if (kind < 86) {
    return SetScore(Percent(90) ? ActingPid() : NewPid());
  }
  if (kind < 90) {
    return life_ == Life::kShort || Percent(5) ? Reset() : Query(KnownPid());
  }
  if (kind < 95) {
    return SingleLineScore();
  }
  return CreateProcess(ActingPid(), NewPid());
}

Call RandomEvents::AnyEvent() {
  const std::uint64_t pid = ActingPid();
  const std::uint32_t behavior = AnyBehavior();
  std::wstring target = OpenedPath(pid);
  if (behavior == BehaviorWrite && !Percent(10)) {
    target += L"|" + LengthText();
  } else if (behavior == BehaviorRename && !Percent(10)) {
    target += L"|" + (Percent(50) ? Disguised(target, habit_) : OpenedPath(pid));
  } else if (behavior == BehaviorModuleLoad) {
    target = ModulePath();
  } else if (behavior == BehaviorProcessCreate) {
    return CreateProcess(pid, NewPid());
  } else if (behavior == BehaviorProcessExit) {
    return ExitProcess(pid);
  }
  if (Percent(2)) {
    target.clear();
  }
  return Event(behavior, pid, target, Percent(50) ? 0 : Position());
}

}  // namespace zt::model
