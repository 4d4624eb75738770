// Runs the benchmarks and then says which targets they meet.

#include <benchmark/benchmark.h>

#include "bench/targets.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  zt::bench::TargetReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintTargets();
  benchmark::Shutdown();
}
