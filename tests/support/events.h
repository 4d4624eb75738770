// A small vocabulary for building events.

#ifndef ZT_TESTS_SUPPORT_EVENTS_H
#define ZT_TESTS_SUPPORT_EVENTS_H

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include "zteng/zteng.h"

namespace zt::testing {

/// An event with the target cut to what a record holds.
inline LOG_ITEM MakeEvent(std::uint32_t behavior, std::uint64_t pid, std::wstring_view target, std::uint64_t target_pid = 0,
                          std::int64_t time = 0) {
  LOG_ITEM log = {};
  log.Time = time;
  log.Pid = pid;
  log.Behavior = behavior;
  log.TargetPid = target_pid;
  std::transform(target.begin(), target.begin() + static_cast<std::ptrdiff_t>(std::min(target.size(), std::size(log.Target))),
                 std::begin(log.Target), [](wchar_t unit) { return static_cast<ZtWideChar>(unit); });
  return log;
}

/// `parent` creates the process `child` at `time` from `image`.
inline LOG_ITEM ProcessCreate(std::uint64_t parent, std::uint64_t child, std::int64_t time,
                              std::wstring_view image = L"C:\\app.exe") {
  return MakeEvent(BehaviorProcessCreate, parent, image, child, time);
}
inline LOG_ITEM ProcessExit(std::uint64_t pid) { return MakeEvent(BehaviorProcessExit, pid, L""); }
inline LOG_ITEM ModuleLoad(std::uint64_t pid, std::wstring_view path) { return MakeEvent(BehaviorModuleLoad, pid, path); }
/// Opens a file that exists; its size (as CreateInfo) is 1 unless said otherwise.
inline LOG_ITEM Open(std::uint64_t pid, std::wstring_view path, std::uint64_t size = 1) {
  return MakeEvent(BehaviorCreate, pid, path, size);
}
/// Makes a new file.
inline LOG_ITEM CreateFresh(std::uint64_t pid, std::wstring_view path) { return MakeEvent(BehaviorCreate, pid, path, 0); }
inline LOG_ITEM Read(std::uint64_t pid, std::wstring_view path, std::uint64_t reached = 100) {
  return MakeEvent(BehaviorRead, pid, path, reached);
}
inline LOG_ITEM Write(std::uint64_t pid, std::wstring_view path, std::uint64_t offset = 0, std::wstring_view length = L"100") {
  return MakeEvent(BehaviorWrite, pid, std::wstring(path) + L"|" + std::wstring(length), offset);
}
inline LOG_ITEM Delete(std::uint64_t pid, std::wstring_view path) { return MakeEvent(BehaviorDelete, pid, path); }
inline LOG_ITEM Rename(std::uint64_t pid, std::wstring_view from, std::wstring_view to) {
  return MakeEvent(BehaviorRename, pid, std::wstring(from) + L"|" + std::wstring(to));
}
inline LOG_ITEM SectionSync(std::uint64_t pid, std::wstring_view path) { return MakeEvent(BehaviorSectionSync, pid, path); }
inline LOG_ITEM SizeChange(std::uint64_t pid, std::wstring_view path) { return MakeEvent(BehaviorSizeChange, pid, path); }

/// The same event at another time.
inline LOG_ITEM At(LOG_ITEM log, std::int64_t time) {
  log.Time = time;
  return log;
}

}  // namespace zt::testing

#endif  // ZT_TESTS_SUPPORT_EVENTS_H
