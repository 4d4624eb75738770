// What the benchmarks have to reach, and a reporter that says whether they do.

#ifndef ZT_BENCH_TARGETS_H
#define ZT_BENCH_TARGETS_H

#include <benchmark/benchmark.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace zt::bench {

/// The console reporter, which also keeps every counter for a summary.
class TargetReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override;

  /// Prints each target whose benchmarks have run, with the figure and whether it is met. Returns how many were left out.
  std::size_t PrintTargets();

 private:
  std::map<std::string, double> counters_;  ///< "benchmark:counter" to value.
};

}  // namespace zt::bench

#endif  // ZT_BENCH_TARGETS_H
