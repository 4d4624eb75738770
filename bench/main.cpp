// Runs the benchmarks and then says which targets they meet. A tiny run fails where a target has no figure.

#include <benchmark/benchmark.h>

#include "bench/sizes.h"
#include "bench/targets.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  zt::bench::TargetReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  const std::size_t left_out = reporter.PrintTargets();
  benchmark::Shutdown();
  // A tiny run is there to show that every benchmark works.
  return zt::bench::IsTiny() && left_out != 0 ? 1 : 0;
}
