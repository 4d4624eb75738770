// The workloads of the benchmarks: an engine with one process that tracks a number of files in one folder.

#ifndef ZT_BENCH_WORKLOAD_H
#define ZT_BENCH_WORKLOAD_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "bench/file_names.h"
#include "zteng/zteng.h"

namespace zt::bench {

/// An engine whose process 1000 has opened `files` existing files, FileName(0) to FileName(files - 1).
class Workload {
 public:
  explicit Workload(std::size_t files) : files_(files) {
    ZtInitEngineCore(engine_, 1);
    Feed(BehaviorProcessCreate, L"C:\\Windows\\app.exe", kPid);
    for (std::size_t file = 0; file < files; ++file) {
      Feed(BehaviorCreate, FileName(file), 4096);
    }
  }

  /// "C:\Users\Ann\Documents\Budget Meeting 42.docx": some 45 characters, as users' files have.
  static std::wstring FileName(std::size_t number) { return PathOf(number); }

  /// Feeds one event of the process; returns the engine's answer.
  ZtLong Feed(std::uint32_t behavior, std::wstring_view target, std::uint64_t target_pid) {
    record_.Time += 10000;
    record_.Pid = behavior == BehaviorProcessCreate ? 0 : kPid;
    record_.Behavior = behavior;
    record_.TargetPid = target_pid;
    std::size_t length = 0;
    for (const wchar_t unit : target) {
      record_.Target[length++] = static_cast<ZtWideChar>(unit);
    }
    record_.Target[length] = 0;
    return ZtInsertLog(engine_, &record_);
  }

  /// The number of the next tracked file, round and round.
  std::size_t NextFile() { return next_file_++ % files_; }

 private:
  static constexpr std::uint64_t kPid = 1000;

  std::size_t files_;
  std::size_t next_file_ = 0;
  LOG_ITEM record_ = {};
  std::shared_ptr<void> engine_;
};

}  // namespace zt::bench

#endif  // ZT_BENCH_WORKLOAD_H
