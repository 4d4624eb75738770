// A folder of files that one process tracks, and events on its files, for the engine and for the model.

#ifndef ZT_BENCH_FOLDER_H
#define ZT_BENCH_FOLDER_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "bench/workload.h"
#include "zteng/zteng.h"

namespace zt::bench {

inline constexpr std::uint64_t kPid = 1000;

/// A record of an event of `pid`; `target` is cut at 523 units.
inline LOG_ITEM MakeRecord(std::uint64_t pid, std::uint32_t behavior, std::wstring_view target, std::uint64_t target_pid) {
  LOG_ITEM record = {};
  record.Time = 10000;
  record.Pid = pid;
  record.Behavior = behavior;
  record.TargetPid = target_pid;
  std::transform(target.begin(), target.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(target.size(), 523)),
                 std::begin(record.Target), [](wchar_t unit) { return static_cast<ZtWideChar>(unit); });
  return record;
}

/// Makes the event of one kind on the file of a number.
using EventMaker = LOG_ITEM (*)(std::size_t file);

/// One kind of event.
struct EventKind {
  const char* name;
  EventMaker make;
};

inline LOG_ITEM MakeOpen(std::size_t file) { return MakeRecord(kPid, BehaviorCreate, Workload::FileName(file), 4096); }
inline LOG_ITEM MakeRead(std::size_t file) { return MakeRecord(kPid, BehaviorRead, Workload::FileName(file), 4096); }
inline LOG_ITEM MakeWrite(std::size_t file) { return MakeRecord(kPid, BehaviorWrite, Workload::FileName(file) + L"|4096", 0); }
/// A path as the folder's, of a file that no folder of a benchmark has.
inline std::wstring StrangerOf(std::size_t file) { return Workload::FileName(10000000 + file); }
/// A write at the start of a file that the process does not track and that copies none: the search finds nothing.
inline LOG_ITEM MakeUnknownWrite(std::size_t file) { return MakeRecord(kPid, BehaviorWrite, StrangerOf(file) + L"|4096", 0); }
/// A write at the start of an encrypted copy: the search finds the original.
inline LOG_ITEM MakeCopyWrite(std::size_t file) {
  return MakeRecord(kPid, BehaviorWrite, Workload::FileName(file) + L".locked|4096", 0);
}
inline LOG_ITEM MakeOpenOfNewPath(std::size_t file) {
  return MakeRecord(kPid, BehaviorCreate, StrangerOf(10000000 + file), 4096);
}
inline LOG_ITEM MakeDelete(std::size_t file) { return MakeRecord(kPid, BehaviorDelete, Workload::FileName(file), 0); }
inline LOG_ITEM MakeRename(std::size_t file) {
  const std::wstring path = Workload::FileName(file);
  return MakeRecord(kPid, BehaviorRename, path + L"|" + path + L".locked", 0);
}
inline LOG_ITEM MakeMove(std::size_t file) {
  const std::wstring path = Workload::FileName(file);
  return MakeRecord(kPid, BehaviorRename, path + L"|C:\\Users\\Ann\\Archive" + path.substr(path.rfind(L'\\')), 0);
}

/// The engine, with the model's methods.
class RealEngine {
 public:
  RealEngine() { ZtInitEngineCore(handle_, 1); }
  ZtLong InsertLog(LOG_ITEM* log) { return ZtInsertLog(handle_, log); }
  std::shared_ptr<void>& handle() { return handle_; }

 private:
  std::shared_ptr<void> handle_;
};

/// In which order a folder's files are handed out: in the same shuffled one in every run, or as the folder lists them.
enum class Order : std::uint8_t { kShuffled, kListed };

/// An engine whose process 1000 has opened and read files 0 to `files` - 1 of one folder, in this order.
template <typename Engine>
class TrackedFolder {
 public:
  template <typename... Arguments>
  explicit TrackedFolder(std::size_t files, Order order = Order::kShuffled, Arguments... arguments)
      : engine_(arguments...), order_(files) {
    Insert(MakeRecord(0, BehaviorProcessCreate, L"C:\\Windows\\app.exe", kPid));
    for (std::size_t file = 0; file < files; ++file) {
      Insert(MakeOpen(file));
      Insert(MakeRead(file));
    }
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    if (order == Order::kShuffled) {
      std::shuffle(order_.begin(), order_.end(), std::mt19937(1));
    }
  }

  ZtLong Insert(LOG_ITEM& record) { return engine_.InsertLog(&record); }
  ZtLong Insert(LOG_ITEM&& record) { return Insert(record); }

  /// Events of one kind on the next `count` files, each of which is handed out once until all were.
  std::vector<LOG_ITEM> NextEvents(EventMaker make, std::size_t count) {
    std::vector<LOG_ITEM> events;
    for (; count > 0; --count, next_ = (next_ + 1) % order_.size()) {
      events.push_back(make(order_[next_]));
    }
    return events;
  }

  Engine& engine() { return engine_; }

 private:
  Engine engine_;
  std::vector<std::size_t> order_;
  std::size_t next_ = 0;
};

}  // namespace zt::bench

#endif  // ZT_BENCH_FOLDER_H
