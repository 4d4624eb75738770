// How large the benchmarks are.

#ifndef ZT_BENCH_SIZES_H
#define ZT_BENCH_SIZES_H

#include <cstddef>
#include <cstdlib>

namespace zt::bench {

/// `full`, or `tiny` where the environment variable ZT_BENCH_TINY is set: then the figures mean nothing, but all code runs.
inline std::size_t Sized(std::size_t full, std::size_t tiny) {
  static const bool kIsTiny = std::getenv("ZT_BENCH_TINY") != nullptr;
  return kIsTiny ? tiny : full;
}

}  // namespace zt::bench

#endif  // ZT_BENCH_SIZES_H
