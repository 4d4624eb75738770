// How long the calls that look at everything hold the engine's lock: their whole duration.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <limits>
#include <map>

#include "bench/cpu_time.h"
#include "bench/folder.h"
#include "bench/sizes.h"

namespace zt::bench {
namespace {

using Folder = TrackedFolder<RealEngine>;

constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t kFirstChild = 2000;

void* Handle() { return reinterpret_cast<void*>(std::uintptr_t{kPid}); }

std::size_t CountToRestore(Folder& folder) {
  std::map<std::wstring, ZT_FILE_ITEM_PUBLIC> files;
  std::vector<std::wstring> paths;
  ZtGetFinalStateFileByPid(folder.engine().handle(), Handle(), files, paths);
  return files.size();
}

template <typename Call>
double MillisecondsOf(const Call& call) {
  const double start = CpuSeconds();
  call();
  return (CpuSeconds() - start) * 1000;
}

void GiveChildren(Folder& folder, std::size_t count, bool exit) {
  for (std::uint64_t child = kFirstChild; child < kFirstChild + count; ++child) {
    folder.Insert(MakeRecord(kPid, BehaviorProcessCreate, L"C:\\Windows\\System32\\child.exe", child));
    if (exit) {
      folder.Insert(MakeRecord(child, BehaviorProcessExit, {}, 0));
    }
  }
}

/// Times `call` on a folder that `make` has prepared, a few times, and keeps the longest time.
template <typename Make, typename Call>
void KeepLongest(benchmark::State& state, const Make& make, const Call& call) {
  double longest = 0;
  for (auto _ : state) {
    Folder folder = make();
    const double time = MillisecondsOf([&] { call(folder); });
    state.SetIterationTime(time / 1000);
    longest = std::max(longest, time);
    state.counters["to_restore"] = static_cast<double>(CountToRestore(folder));
  }
  state.counters["longest_ms"] = longest;
}

Folder FilesOnly(const benchmark::State& state) { return Folder(Scaled(state.range(0))); }

/// Nothing is old: every record is looked at.
void ResetScoreKeepsFiles(benchmark::State& state) {
  KeepLongest(
      state, [&] { return FilesOnly(state); }, [](Folder& folder) { ZtResetScore(folder.engine().handle(), 20000, kNever); });
}

/// Everything is old: every record is erased.
void ResetScoreForgetsFiles(benchmark::State& state) {
  KeepLongest(
      state, [&] { return FilesOnly(state); },
      [](Folder& folder) { ZtResetScore(folder.engine().handle(), 20'000'000'000, kNever); });
}

/// The exited children of one parent leave: the second call collects them all.
void ResetScoreCollectsChildren(benchmark::State& state) {
  KeepLongest(
      state,
      [&] {
        Folder folder(1);
        GiveChildren(folder, Scaled(state.range(0)), true);
        ZtResetScore(folder.engine().handle(), 20000, kNever);
        return folder;
      },
      [](Folder& folder) { ZtResetScore(folder.engine().handle(), 20000, kNever); });
}

void GetFinalState(Folder& folder) { benchmark::DoNotOptimize(CountToRestore(folder)); }

/// Every file is to be restored.
void FinalStateOfFiles(benchmark::State& state) {
  KeepLongest(
      state,
      [&] {
        Folder folder = FilesOnly(state);
        for (std::size_t file = 0; file < Scaled(state.range(0)); ++file) {
          folder.Insert(MakeWrite(file));
        }
        return folder;
      },
      GetFinalState);
}

/// One file and a large family.
void FinalStateOfFamily(benchmark::State& state) {
  KeepLongest(
      state,
      [&] {
        Folder folder(1);
        GiveChildren(folder, Scaled(state.range(0)), false);
        return folder;
      },
      GetFinalState);
}

void FewAndMany(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(1000)->Arg(100000)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(ResetScoreKeepsFiles)->Apply(FewAndMany);
BENCHMARK(ResetScoreForgetsFiles)->Apply(FewAndMany);
BENCHMARK(ResetScoreCollectsChildren)->Apply(FewAndMany);
BENCHMARK(FinalStateOfFiles)->Apply(FewAndMany);
BENCHMARK(FinalStateOfFamily)->Apply(FewAndMany);

}  // namespace
}  // namespace zt::bench
