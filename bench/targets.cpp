#include "bench/targets.h"

#include <array>
#include <cstdio>

namespace zt::bench {
namespace {

/// A counter, or the quotient of two, held against a bound.
struct Target {
  const char* title;
  const char* counter;
  const char* divisor;  ///< A second counter, or null.
  bool at_most;         ///< Whether the bound is the highest or the lowest good value.
  double bound;
};

constexpr std::array kTargets = {
    Target{"read, 1,000,000 : 1,000 files", "Event/read/1000000:ns", "Event/read/1000:ns", true, 4},
    Target{"write, 1,000,000 : 1,000 files", "Event/write/1000000:ns", "Event/write/1000:ns", true, 4},
    Target{"write of an unknown file, 1,000,000 : 1,000", "Event/write_unknown/1000000:ns", "Event/write_unknown/1000:ns", true,
           4},
    Target{"write of an encrypted copy, 1,000,000 : 1,000", "Event/write_copy/1000000:ns", "Event/write_copy/1000:ns", true, 4},
    Target{"open of a new path, 1,000,000 : 1,000", "Event/create/1000000:ns", "Event/create/1000:ns", true, 4},
    Target{"delete, 1,000,000 : 1,000 files", "Event/delete/1000000:ns", "Event/delete/1000:ns", true, 4},
    Target{"rename in place, 1,000,000 : 1,000 files", "Event/rename/1000000:ns", "Event/rename/1000:ns", true, 4},
    Target{"rename to another folder, 1,000,000 : 1,000", "Event/move/1000000:ns", "Event/move/1000:ns", true, 4},
    Target{"encrypted copy : read, 100,000 files", "Event/write_copy/100000:ns", "Event/read/100000:ns", true, 8},
    Target{"rename in place : read, 100,000 files", "Event/rename/100000:ns", "Event/read/100000:ns", true, 12},
    Target{"one letter and a mark: worst us", "Hostile/one_letter_and_mark:worst_us", nullptr, true, 1000},
    Target{"one stem, 100,000 extensions: worst us", "Hostile/one_stem:worst_us", nullptr, true, 1000},
    Target{"dotted stems: worst us", "Hostile/dotted_stems:worst_us", nullptr, true, 1000},
    Target{"stems of every length: worst us", "Hostile/every_stem:worst_us", nullptr, true, 1000},
    Target{"dots: worst us", "Hostile/dots:worst_us", nullptr, true, 1000},
    Target{"stems inside stems: worst us", "Hostile/stems_inside_stems:worst_us", nullptr, true, 1000},
    Target{"keys without a folder: worst us", "Hostile/keys_without_folder:worst_us", nullptr, true, 1000},
    Target{"one file a stem: worst us", "Hostile/one_file_a_stem:worst_us", nullptr, true, 1000},
    Target{"every part of one name: worst us", "Hostile/every_part:worst_us", nullptr, true, 1000},
    Target{"traced, one stem : walk", "Traced/one_stem:to_walk", nullptr, true, 1.2},
    Target{"traced, dots : walk", "Traced/dots:to_walk", nullptr, true, 1.2},
    Target{"traced, stems of every length : walk", "Traced/every_stem:to_walk", nullptr, true, 1.2},
    Target{"traced, stems inside stems : walk", "Traced/stems_inside_stems:to_walk", nullptr, true, 1.2},
    Target{"traced, every part of one name : walk", "Traced/every_part:to_walk", nullptr, true, 1.2},
    Target{"400 processes in turn : floor", "OfficeInTurn:events_per_s", "FloorInTurn:events_per_s", false, 0.5},
    Target{"400 processes together : floor", "OfficeTogether:events_per_s", "FloorTogether:events_per_s", false, 0.5},
    Target{"bytes a tracked file, 60 characters", "Memory:file_given", nullptr, true, 320},
    Target{"family query, 5,000 : 5 generations", "FamilyQuery/5000:ns", "FamilyQuery/5:ns", true, 20},
    Target{"rename, model : engine, 100,000 files", "Model/rename/100000:ns", "Event/rename/100000:ns", false, 1000},
    Target{"unknown write, model : engine, 100,000 files", "Model/write_unknown/100000:ns", "Event/write_unknown/100000:ns",
           false, 1000},
    Target{"ztreplay, 800,801 events: events a CPU second", "ReplayOffice:events_per_cpu_s", nullptr, false, 1e6},
    Target{"ztreplay, 800,801 events: peak MB", "ReplayOffice:peak_MB", nullptr, true, 250},
    Target{"events a second, mixed, 10,000 files", "Mixed/one_process:events_per_s", nullptr, false, 1e6},
    Target{"throughput, two threads : one", "Threads/threads:2:events_per_s", "Threads/threads:1:events_per_s", false, 0.9},
    Target{"a trace call that is off, ns", "TraceDisabled:ns", nullptr, true, 2},
};

/// What names a run in the table: without its number of iterations, its time and its kind of time.
std::string NameOf(const benchmark::BenchmarkReporter::Run& run) {
  std::string name = run.run_name.function_name;
  for (const std::string& part : {run.run_name.args, run.run_name.threads}) {
    if (!part.empty()) {
      name += "/" + part;
    }
  }
  return name;
}

}  // namespace

void TargetReporter::ReportRuns(const std::vector<Run>& runs) {
  ConsoleReporter::ReportRuns(runs);
  for (const Run& run : runs) {
    for (const auto& [counter, value] : run.counters) {
      counters_[NameOf(run) + ":" + counter] = value;
    }
  }
}

std::size_t TargetReporter::PrintTargets() {
  std::size_t left_out = 0;
  std::printf("\n%-48s %12s %14s\n", "target", "measured", "bound");
  for (const Target& target : kTargets) {
    const auto counter = counters_.find(target.counter);
    const auto divisor = target.divisor == nullptr ? counter : counters_.find(target.divisor);
    if (counter == counters_.end() || divisor == counters_.end()) {
      ++left_out;
      continue;
    }
    const double value = target.divisor == nullptr ? counter->second : counter->second / divisor->second;
    const bool met = target.at_most ? value <= target.bound : value >= target.bound;
    std::printf("%-48s %12.2f   %s %9.1f  %s\n", target.title, value, target.at_most ? "<=" : ">=", target.bound,
                met ? "met" : "MISSED");
  }
  return left_out;
}

}  // namespace zt::bench
