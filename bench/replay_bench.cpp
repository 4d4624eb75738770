// ztreplay on a real capture as a whole process: start, decompression, parsing, engine and summary.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

namespace {

void ReplayCapture(benchmark::State& state, const std::string& capture) {
  const std::string command = "'" ZT_REPLAY_PATH "' '" ZT_CAPTURES_PATH "/" + capture + "' >/dev/null 2>&1; test $? -le 1";
  for (auto _ : state) {
    if (std::system(command.c_str()) != 0) {
      state.SkipWithError("ztreplay failed");
      break;
    }
  }
}

void BM_ReplayEncryptingRun(benchmark::State& state) { ReplayCapture(state, "cuckoo-encrypting-run-2016/calls.jsonl.xz"); }
void BM_ReplayDesktop(benchmark::State& state) {
  ReplayCapture(state, "procmon-win10-desktop-2020/LogfileTests64bitUTC.CSV.xz");
}

BENCHMARK(BM_ReplayEncryptingRun)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReplayDesktop)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
