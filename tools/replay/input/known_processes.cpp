#include "tools/replay/input/known_processes.h"

#include "tools/replay/input/ascii.h"

namespace replay {
namespace {

std::string PlaceholderFor(std::uint64_t pid) { return "pid " + std::to_string(pid); }

std::string ImageOf(const SeenProcess& seen) {
  if (!seen.image.empty()) {
    return std::string(seen.image);
  }
  if (!seen.name.empty()) {
    return std::string(seen.name);
  }
  return PlaceholderFor(seen.pid);
}

}  // namespace

KnownProcesses::Process& KnownProcesses::See(const SeenProcess& seen, std::int64_t time, EventQueue& events) {
  Process* process = Find(seen.pid);
  const bool another =
      process != nullptr && !process->name.empty() && !seen.name.empty() && !EqualNoCase(process->name, seen.name);
  if (process == nullptr || another) {
    process = &Enter(seen.pid, seen.parent_pid, ImageOf(seen), time, events);
  }
  if (process->name.empty()) {
    process->name = seen.name;
    // Until its own first row a parent had no other name.
    if (process->image == PlaceholderFor(seen.pid)) {
      process->image = ImageOf(seen);
    }
  }
  return *process;
}

void KnownProcesses::Create(const Actor& creator, std::uint64_t pid, std::string_view image, EventQueue& events) {
  const std::string placeholder = PlaceholderFor(pid);
  if (image.empty()) {
    image = placeholder;
  }
  events.Add(creator, BehaviorProcessCreate, pid, image);
  Register(pid, creator.pid, image).starts = true;
}

void KnownProcesses::Start(const SeenProcess& seen, std::int64_t time, EventQueue& events) {
  Enter(seen.pid, seen.parent_pid, ImageOf(seen), time, events).name = seen.name;
}

KnownProcesses::Process* KnownProcesses::Find(std::uint64_t pid) {
  const auto found = processes_.find(pid);
  return found == processes_.end() ? nullptr : &found->second;
}

KnownProcesses::Process& KnownProcesses::Enter(std::uint64_t pid, std::uint64_t parent_pid, std::string_view image,
                                               std::int64_t time, EventQueue& events) {
  if (parent_pid == pid) {
    parent_pid = 0;
  }
  if (parent_pid != 0 && Find(parent_pid) == nullptr) {
    Enter(parent_pid, 0, PlaceholderFor(parent_pid), time, events);
  }
  Actor creator = {time, parent_pid, 0, {}};
  if (parent_pid != 0) {
    creator.image = Find(parent_pid)->image;
  }
  events.Add(creator, BehaviorProcessCreate, pid, image);
  return Register(pid, parent_pid, image);
}

KnownProcesses::Process& KnownProcesses::Register(std::uint64_t pid, std::uint64_t parent_pid, std::string_view image) {
  Process& process = processes_[pid];
  process = Process{std::string(image), {}, parent_pid, ++generations_, false, false};
  return process;
}

}  // namespace replay
