// A question about a process's family at the end of a short and of a long chain of processes.

#include <benchmark/benchmark.h>

#include <cstdint>

#include "bench/cpu_time.h"
#include "bench/folder.h"
#include "bench/sizes.h"

namespace zt::bench {
namespace {

constexpr int kQueries = 100;

void FamilyQuery(benchmark::State& state) {
  RealEngine engine;
  const std::uint64_t depth = Scaled(state.range(0));
  for (std::uint64_t generation = 1; generation <= depth; ++generation) {
    LOG_ITEM create = MakeRecord(generation - 1, BehaviorProcessCreate, L"C:\\Windows\\app.exe", generation);
    engine.InsertLog(&create);
  }
  double seconds = 0;
  for (auto _ : state) {
    const double start = CpuSeconds();
    for (int query = 0; query < kQueries; ++query) {
      benchmark::DoNotOptimize(ZtGetProcTree(engine.handle(), reinterpret_cast<void*>(static_cast<std::uintptr_t>(depth))));
    }
    const double time = CpuSeconds() - start;
    state.SetIterationTime(time);
    seconds += time;
  }
  state.counters["ns"] = seconds * 1e9 / static_cast<double>(state.iterations() * kQueries);
}

BENCHMARK(FamilyQuery)->Arg(5)->Arg(5000)->Iterations(20)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zt::bench
