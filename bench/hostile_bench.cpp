// The dearest single event that chosen names lead to: names of one letter, of dots, of stems inside stems. Each shape is
// tracked by one process, and writes to paths that it does not track make the similar-file search look at them. Measured
// without a trace, and with debug lines on against a plain walk over the same names.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "bench/cpu_time.h"
#include "bench/folder.h"
#include "bench/hostile_names.h"
#include "bench/sizes.h"
#include "engine/context.h"
#include "engine/tracing.h"

namespace zt::bench {
namespace {

std::size_t FileCount() { return Sized(100000, 300); }

/// A process that tracks the files of a shape.
class Attack {
 public:
  explicit Attack(const Shape& shape) {
    Insert(MakeRecord(0, BehaviorProcessCreate, L"C:\\Windows\\app.exe", kPid));
    for (const std::wstring& path : shape.paths) {
      Insert(MakeRecord(kPid, BehaviorCreate, path, 4096));
    }
  }

  /// Seconds of one write to the target.
  double Write(const std::wstring& target) {
    LOG_ITEM write = MakeRecord(kPid, BehaviorWrite, target + L"|4096", 0);
    const double start = CpuSeconds();
    engine_.InsertLog(&write);
    return CpuSeconds() - start;
  }

 private:
  void Insert(LOG_ITEM record) { engine_.InsertLog(&record); }

  RealEngine engine_;
};

const auto kRepeats = static_cast<std::int64_t>(Sized(10, 2));

void HostileNames(benchmark::State& state, const NamedShape& named) {
  const Shape shape = named.make(FileCount());
  Attack attack(shape);
  double worst = 0;
  for (auto _ : state) {
    const double time = attack.Write(shape.target);
    state.SetIterationTime(time);
    worst = std::max(worst, time);
  }
  state.counters["worst_us"] = worst * 1e6;
  state.counters["files"] = static_cast<double>(shape.paths.size());
}

/// The search of the export, which walks the map.
double Walk(ZT_PID_ITEM& process, const std::wstring& target) {
  static std::shared_ptr<_ZtEngineCore> engine = std::make_shared<_ZtEngineCore>(1);
  const double start = CpuSeconds();
  ZtSearchSimilarFile(engine, process, process.files, target);
  return CpuSeconds() - start;
}

/// Debug lines on, without an output, so that what is compared is all but their writing.
void TracedNames(benchmark::State& state, const NamedShape& named) {
  const Shape shape = named.make(FileCount());
  Attack attack(shape);
  ZT_PID_ITEM process;
  for (const std::wstring& path : shape.paths) {
    std::wstring key;
    std::transform(path.begin(), path.end(), std::back_inserter(key),
                   [](wchar_t unit) { return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + 32) : unit; });
    process.files.try_emplace(key);
  }
  std::wstring target;
  std::transform(shape.target.begin(), shape.target.end(), std::back_inserter(target),
                 [](wchar_t unit) { return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + 32) : unit; });
  TraceFlags = kTraceDebug;
  double engine = 0;
  double walk = 0;
  for (auto _ : state) {
    const double time = attack.Write(shape.target);
    state.SetIterationTime(time);
    engine += time;
    walk += Walk(process, target);
  }
  TraceFlags = 0;
  state.counters["to_walk"] = engine / walk;
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const NamedShape& shape : kShapes) {
    benchmark::RegisterBenchmark((std::string("Hostile/") + shape.name).c_str(), HostileNames, shape)
        ->Iterations(kRepeats)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark((std::string("Traced/") + shape.name).c_str(), TracedNames, shape)
        ->Iterations(kRepeats)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
  }
  return true;
}();

}  // namespace
}  // namespace zt::bench
