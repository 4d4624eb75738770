// Events a second of a mixed workload on 10,000 tracked files: by one process, by a process whose parent takes the events too,
// and by two threads that share one engine.

#include <benchmark/benchmark.h>

#include <array>
#include <random>

#include "bench/cpu_time.h"
#include "bench/folder.h"
#include "bench/sizes.h"

namespace zt::bench {
namespace {

const std::size_t kFiles = Sized(10000, 100);
const std::size_t kEvents = Sized(50000, 500);

LOG_ITEM MakeModuleLoad(std::size_t file) {
  return MakeRecord(kPid, BehaviorModuleLoad, L"C:\\Windows\\System32\\module" + std::to_wstring(file % 100) + L".dll", 0);
}
LOG_ITEM MakeNewFile(std::size_t file) {
  return MakeRecord(kPid, BehaviorCreate, L"C:\\Users\\ann\\AppData\\cache" + std::to_wstring(file) + L".tmp", 0);
}
LOG_ITEM MakeLaterWrite(std::size_t file) {
  return MakeRecord(kPid, BehaviorWrite, Workload::FileName(file) + L"|4096", 8192 + file);
}

/// Twenty events of a busy program: mostly reads, opens and writes of files it knows.
constexpr std::array<EventMaker, 20> kMix = {
    MakeRead,          MakeRead,    MakeRead,         MakeRead,   MakeRead,       MakeRead,       MakeRead,
    MakeOpen,          MakeOpen,    MakeOpen,         MakeOpen,   MakeLaterWrite, MakeLaterWrite, MakeWrite,
    MakeOpenOfNewPath, MakeNewFile, MakeUnknownWrite, MakeRename, MakeDelete,     MakeModuleLoad,
};

/// Random events of the mix on random files, the same in every run.
std::vector<LOG_ITEM>& MixedEvents() {
  static std::vector<LOG_ITEM> events = [] {
    std::mt19937 random(2);
    std::vector<LOG_ITEM> made;
    for (std::size_t event = 0; event < kEvents; ++event) {
      const EventMaker make = kMix[random() % kMix.size()];
      made.push_back(make(random() % kFiles));
    }
    return made;
  }();
  return events;
}

/// One process with its files; with `parent`, below one that the engine knows, which then tracks the files as well.
void Mixed(benchmark::State& state, bool parent) {
  std::vector<LOG_ITEM>& events = MixedEvents();
  double seconds = 0;
  for (auto _ : state) {
    TrackedFolder<RealEngine> folder(parent ? 0 : kFiles);
    if (parent) {
      folder.Insert(MakeRecord(kPid, BehaviorProcessExit, {}, 0));
      folder.Insert(MakeRecord(4, BehaviorProcessCreate, L"C:\\Windows\\shell.exe", 8));
      folder.Insert(MakeRecord(8, BehaviorProcessCreate, L"C:\\Windows\\app.exe", kPid));
      for (std::size_t file = 0; file < kFiles; ++file) {
        folder.Insert(MakeOpen(file));
        folder.Insert(MakeRead(file));
      }
    }
    const double start = CpuSeconds();
    for (LOG_ITEM& event : events) {
      folder.Insert(event);
    }
    const double time = CpuSeconds() - start;
    state.SetIterationTime(time);
    seconds += time;
  }
  state.counters["events_per_s"] = static_cast<double>(state.iterations()) * static_cast<double>(kEvents) / seconds;
}

/// Each thread feeds the same events, from another start, to one engine that has met all of them once.
void Threads(benchmark::State& state) {
  static TrackedFolder<RealEngine> folder = [] {
    TrackedFolder<RealEngine> made(kFiles);
    for (LOG_ITEM& event : MixedEvents()) {
      made.Insert(event);
    }
    return made;
  }();
  std::vector<LOG_ITEM>& events = MixedEvents();
  std::size_t next = static_cast<std::size_t>(state.thread_index()) * (kEvents / 2);
  for (auto _ : state) {
    folder.Insert(events[next]);
    next = (next + 1) % kEvents;
  }
  state.counters["events_per_s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

BENCHMARK_CAPTURE(Mixed, one_process, false)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Mixed, under_a_parent, true)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Threads)->Threads(1)->Threads(2)->UseRealTime()->MinTime(IsTiny() ? 0.01 : 2.0);

}  // namespace
}  // namespace zt::bench
