// How large the benchmarks are.

#ifndef ZT_BENCH_SIZES_H
#define ZT_BENCH_SIZES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace zt::bench {

/// Whether the environment variable ZT_BENCH_TINY is set: then the figures mean nothing, but all code runs, in seconds.
inline bool IsTiny() {
  static const bool kIsTiny = std::getenv("ZT_BENCH_TINY") != nullptr;
  return kIsTiny;
}
/// `full`, or `tiny` in a tiny run.
inline std::size_t Sized(std::size_t full, std::size_t tiny) { return IsTiny() ? tiny : full; }
/// The argument of a benchmark, which in a tiny run means at most 100 things, whatever the benchmark is called.
inline std::size_t Scaled(std::int64_t argument) {
  const auto count = static_cast<std::size_t>(argument);
  return Sized(count, std::min<std::size_t>(count, 100));
}

}  // namespace zt::bench

#endif  // ZT_BENCH_SIZES_H
