// The time of one event where 1,000 files are tracked in one folder and where 100,000 or 1,000,000 are: on files in shuffled
// order, and in the order of the folder, as programs mostly go through one.
//
// Events come in batches on files that no event but open and read has met before. A small folder is made anew for each batch;
// the large ones are made once, and all batches together touch a few percent of their files, so what is tracked stays about the
// same in both.

#include <benchmark/benchmark.h>

#include <array>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "bench/cpu_time.h"
#include "bench/folder.h"
#include "bench/sizes.h"

namespace zt::bench {
namespace {

using Folder = TrackedFolder<RealEngine>;

std::size_t Batch() { return Sized(200, 20); }
std::size_t Batches() { return Sized(50, 2); }
constexpr std::int64_t kLargeFolder = 100000;

constexpr std::array kKinds = {
    EventKind{"read", MakeRead},
    EventKind{"write", MakeWrite},
    EventKind{"write_unknown", MakeUnknownWrite},
    EventKind{"write_copy", MakeCopyWrite},
    EventKind{"create", MakeOpenOfNewPath},
    EventKind{"delete", MakeDelete},
    EventKind{"rename", MakeRename},
    EventKind{"move", MakeMove},
};

std::shared_ptr<Folder> FolderOf(std::int64_t files, Order order) {
  static std::map<std::pair<std::int64_t, Order>, std::shared_ptr<Folder>> large;
  if (files < kLargeFolder || IsTiny()) {
    return std::make_shared<Folder>(Scaled(files), order);
  }
  std::shared_ptr<Folder>& folder = large[{files, order}];
  if (!folder) {
    folder = std::make_shared<Folder>(Scaled(files), order);
  }
  return folder;
}

void FeedBatches(benchmark::State& state, EventMaker make, Order order) {
  double seconds = 0;
  std::size_t penalties = 0;
  for (auto _ : state) {
    const auto folder = FolderOf(state.range(0), order);
    std::vector<LOG_ITEM> events = folder->NextEvents(make, Batch());
    const double start = CpuSeconds();
    for (LOG_ITEM& event : events) {
      penalties += folder->Insert(event) != 0 ? 1 : 0;
    }
    const double time = CpuSeconds() - start;
    state.SetIterationTime(time);
    seconds += time;
  }
  state.counters["ns"] = seconds * 1e9 / static_cast<double>(static_cast<std::size_t>(state.iterations()) * Batch());
  state.counters["penalties"] = static_cast<double>(penalties) / static_cast<double>(state.iterations());
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const auto& [family, order] : {std::pair("Event/", Order::kShuffled), std::pair("ListedEvent/", Order::kListed)}) {
    for (const std::int64_t files : {1000, 100000, 1000000}) {
      for (const EventKind& kind : kKinds) {
        benchmark::RegisterBenchmark((family + std::string(kind.name)).c_str(), FeedBatches, kind.make, order)
            ->Arg(files)
            ->Iterations(static_cast<std::int64_t>(Batches()))
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
      }
    }
  }
  return true;
}();

}  // namespace
}  // namespace zt::bench
