// Events a second by kind, on contexts of 10 to 1000 tracked files. Target texts are made ahead where that matters, so that
// what is timed is the engine.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench/sizes.h"
#include "bench/workload.h"

namespace {

using zt::bench::Workload;

void SmallContexts(benchmark::internal::Benchmark* benchmark) { benchmark->Arg(10)->Arg(100)->Arg(1000); }

std::size_t FileCount(const benchmark::State& state) { return zt::bench::Scaled(state.range(0)); }

std::vector<std::wstring> Targets(std::size_t count, const std::wstring& suffix) {
  std::vector<std::wstring> targets;
  for (std::size_t file = 0; file < count; ++file) {
    targets.push_back(Workload::FileName(file) + suffix);
  }
  return targets;
}

/// Feeds the same behaviour to the tracked files, round and round.
void FeedRoundRobin(benchmark::State& state, std::uint32_t behavior, const std::wstring& suffix, std::uint64_t target_pid) {
  Workload workload(FileCount(state));
  const std::vector<std::wstring> targets = Targets(FileCount(state), suffix);
  for (auto _ : state) {
    benchmark::DoNotOptimize(workload.Feed(behavior, targets[workload.NextFile()], target_pid));
  }
  state.SetItemsProcessed(state.iterations());
}

void BM_Open(benchmark::State& state) { FeedRoundRobin(state, BehaviorCreate, L"", 4096); }
void BM_Read(benchmark::State& state) { FeedRoundRobin(state, BehaviorRead, L"", 4096); }
void BM_WriteTracked(benchmark::State& state) { FeedRoundRobin(state, BehaviorWrite, L"|4096", 0); }

/// A write to a file that the process does not track: the similar-file search looks at all it tracks.
void BM_WriteUnknown(benchmark::State& state) {
  Workload workload(FileCount(state));
  for (auto _ : state) {
    benchmark::DoNotOptimize(workload.Feed(BehaviorWrite, L"C:\\Users\\ann\\Documents\\summary.xlsx|4096", 0));
  }
  state.SetItemsProcessed(state.iterations());
}

/// The shape of an encrypting run: open, read, overwrite, rename to a new extension. Four events a file, on fresh engines.
void BM_EncryptFiles(benchmark::State& state) {
  const std::size_t files = FileCount(state);
  for (auto _ : state) {
    Workload workload(0);
    for (std::size_t file = 0; file < files; ++file) {
      const std::wstring path = Workload::FileName(file);
      workload.Feed(BehaviorCreate, path, 4096);
      workload.Feed(BehaviorRead, path, 4096);
      workload.Feed(BehaviorWrite, path + L"|4096", 0);
      benchmark::DoNotOptimize(workload.Feed(BehaviorRename, path + L"|" + path + L".locked", 0));
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(4 * files));
}

BENCHMARK(BM_Open)->Apply(SmallContexts);
BENCHMARK(BM_Read)->Apply(SmallContexts);
BENCHMARK(BM_WriteTracked)->Apply(SmallContexts);
BENCHMARK(BM_WriteUnknown)->Apply(SmallContexts);
BENCHMARK(BM_EncryptFiles)->Apply(SmallContexts);

}  // namespace
