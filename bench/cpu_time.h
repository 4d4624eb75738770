// The time that a benchmark counts.

#ifndef ZT_BENCH_CPU_TIME_H
#define ZT_BENCH_CPU_TIME_H

#include <ctime>

namespace zt::bench {

/// Seconds for which a processor ran the calling thread. A wall clock would also count what other programs of the machine take.
inline double CpuSeconds() {
  timespec time = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

}  // namespace zt::bench

#endif  // ZT_BENCH_CPU_TIME_H
