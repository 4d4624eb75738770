// The literal model on 100,000 tracked files, for comparison: it walks over all of them where the engine looks some up.

#include <benchmark/benchmark.h>

#include "bench/cpu_time.h"
#include "bench/folder.h"
#include "bench/sizes.h"
#include "tests/model/model_engine.h"

namespace zt::bench {
namespace {

using ModelFolder = TrackedFolder<model::ModelEngine>;

void FeedModel(benchmark::State& state, EventMaker make) {
  static ModelFolder folder(Scaled(state.range(0)), Order::kShuffled, 1U, std::uint64_t{0});
  double seconds = 0;
  for (auto _ : state) {
    std::vector<LOG_ITEM> events = folder.NextEvents(make, 1);
    const double start = CpuSeconds();
    folder.Insert(events.front());
    const double time = CpuSeconds() - start;
    state.SetIterationTime(time);
    seconds += time;
  }
  state.counters["ns"] = seconds * 1e9 / static_cast<double>(state.iterations());
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const EventKind& kind : {EventKind{"write_unknown", MakeUnknownWrite}, EventKind{"rename", MakeRename}}) {
    benchmark::RegisterBenchmark((std::string("Model/") + kind.name).c_str(), FeedModel, kind.make)
        ->Arg(100000)
        ->Iterations(10)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
  }
  return true;
}();

}  // namespace
}  // namespace zt::bench
