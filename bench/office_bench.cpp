// Events a second of 400 programs that encrypt 500 documents each, under one parent: the engine, and the floor, which puts the
// same events into an ordered map for each process and does nothing else.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <string>

#include "bench/cpu_time.h"
#include "bench/office.h"
#include "bench/sizes.h"

namespace zt::bench {
namespace {

/// What any engine has to do at least: copy the record, lower-case the target, find or enter the file.
class Floor {
 public:
  ZtLong InsertLog(LOG_ITEM* log) {
    const LOG_ITEM record = *log;
    std::u16string target(std::begin(record.Target),
                          std::find(std::begin(record.Target), std::end(record.Target), ZtWideChar{0}));
    std::transform(target.begin(), target.end(), target.begin(),
                   [](char16_t unit) { return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit; });
    Files& files = processes_[record.Pid];
    const std::size_t separator = target.find(u'|');
    files[target.substr(0, separator)].events += 1;
    if (record.Behavior == BehaviorRename) {
      files[target.substr(separator + 1)].events += 1;
    }
    return 0;
  }

 private:
  struct File {
    std::uint64_t events = 0;
    std::uint64_t other[5] = {};
  };
  using Files = std::map<std::u16string, File>;

  std::map<std::uint64_t, Files> processes_;
};

template <typename Engine>
void FeedOffice(benchmark::State& state, Office::Life life) {
  double seconds = 0;
  std::size_t events = 0;
  ZtLong highest = 0;
  for (auto _ : state) {
    Engine engine;
    Office office(Sized(400, 4), Sized(500, 20), life);
    double time = 0;
    for (std::vector<LOG_ITEM>* portion = &office.Next(); !portion->empty(); portion = &office.Next()) {
      const double start = CpuSeconds();
      for (LOG_ITEM& event : *portion) {
        highest = std::max(highest, engine.InsertLog(&event));
      }
      time += CpuSeconds() - start;
    }
    state.SetIterationTime(time);
    seconds += time;
    events += office.events();
  }
  state.counters["events_per_s"] = static_cast<double>(events) / seconds;
  state.counters["highest_score"] = static_cast<double>(highest);
}

void OfficeInTurn(benchmark::State& state) { FeedOffice<RealEngine>(state, Office::Life::kInTurn); }
void OfficeTogether(benchmark::State& state) { FeedOffice<RealEngine>(state, Office::Life::kTogether); }
void FloorInTurn(benchmark::State& state) { FeedOffice<Floor>(state, Office::Life::kInTurn); }
void FloorTogether(benchmark::State& state) { FeedOffice<Floor>(state, Office::Life::kTogether); }

BENCHMARK(OfficeInTurn)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(FloorInTurn)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(OfficeTogether)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(FloorTogether)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zt::bench
