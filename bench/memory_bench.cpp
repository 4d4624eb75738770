// Reports what zt_bench_memory measures. That is a program of its own, since it counts every allocation.

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>

namespace {

void Memory(benchmark::State& state) {
  for (auto _ : state) {
    std::FILE* const output = popen("'" ZT_MEMORY_PATH "'", "r");
    if (output == nullptr) {
      state.SkipWithError("zt_bench_memory does not run");
      return;
    }
    std::array<char, 64> name = {};
    double value = 0;
    while (std::fscanf(output, "%63s %lf", name.data(), &value) == 2) {
      state.counters[name.data()] = value;
    }
    if (pclose(output) != 0) {
      state.SkipWithError("zt_bench_memory failed");
      return;
    }
  }
}

BENCHMARK(Memory)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
