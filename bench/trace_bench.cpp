// What a trace call costs: switched off, and on to the file beside an asynchronous logging library that writes the same text.

#include <benchmark/benchmark.h>
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <string>

#include "bench/cpu_time.h"
#include "bench/sizes.h"
#include "engine/tracing.h"
#include "trace/library.h"
#include "trace/trace_state.h"

namespace zt::bench {
namespace {

constexpr std::uint32_t kToFile = 0x2 | 0x100;
const auto kLines = static_cast<std::int64_t>(Sized(1'000'000, 1000));

std::filesystem::path Folder() { return std::filesystem::temp_directory_path() / "zteng-trace-bench"; }

/// The library writing to a folder of the benchmark's own, with these flags and one file that grows.
class TraceRun {
 public:
  explicit TraceRun(std::uint32_t flags) {
    std::filesystem::remove_all(Folder());
    std::filesystem::create_directories(Folder());
    stored_flags = flags;
    environment_.executable_path = [](char* buffer, std::size_t size) {
      const std::string path = (Folder() / "host").string();
      const std::size_t length = path.copy(buffer, size - 1);
      buffer[length] = '\0';
      return length;
    };
    environment_.read_settings = [](const char*, std::span<NumberSetting> settings) {
      settings[0].value = stored_flags;
      settings[1].value = 0;
    };
    SharedTraceState().environment = &environment_;
    TraceStart();
  }
  ~TraceRun() {
    TraceStop();
    SharedTraceState().environment = &kSystemEnvironment;
    std::filesystem::remove_all(Folder());
  }

  static std::uintmax_t FileSize() { return std::filesystem::file_size(Folder() / "logs" / "trace" / "zteng.log"); }

 private:
  static inline std::uint32_t stored_flags = 0;
  TraceEnvironment environment_;
};

/// Processor time of all threads: an asynchronous logger's lines are written by a thread of its own.
double ProcessCpuSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

void Report(benchmark::State& state, double seconds, double cpu_seconds, double bytes) {
  const double lines = static_cast<double>(kLines);
  state.SetIterationTime(seconds);
  state.counters["ns_per_line"] = seconds * 1e9 / lines;
  state.counters["cpu_ns_per_line"] = cpu_seconds * 1e9 / lines;
  state.counters["lines_per_s"] = lines / seconds;
  state.counters["bytes_per_line"] = bytes / lines;
}

void TraceDisabled(benchmark::State& state) {
  const TraceRun run(0);
  std::int64_t calls = 0;
  const double start = CpuSeconds();
  for (auto _ : state) {
    ZT_TRACE_DEBUG("%lld of pid %d is %ws\n", Trace64(calls), Trace32(42), L"C:\\Users\\somebody\\document.docx");
    benchmark::DoNotOptimize(++calls);
  }
  state.counters["ns"] = (CpuSeconds() - start) * 1e9 / static_cast<double>(calls);
}
BENCHMARK(TraceDisabled);

// One line as the engine writes them; all of them in the file at the end.
void TraceToFile(benchmark::State& state) {
  for (auto _ : state) {
    double bytes = 0;
    const double cpu = ProcessCpuSeconds();
    const auto start = std::chrono::steady_clock::now();
    {
      const TraceRun run(kToFile);
      for (std::int64_t i = 0; i < kLines; ++i) {
        ZT_TRACE_DEBUG("line %lld of pid %d is %s", Trace64(i), Trace32(42), "C:\\Users\\somebody\\document.docx");
      }
      TraceStop();
      bytes = static_cast<double>(TraceRun::FileSize());
    }
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    Report(state, time.count(), ProcessCpuSeconds() - cpu, bytes);
  }
}
BENCHMARK(TraceToFile)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

void AsyncLogger(benchmark::State& state) {
  const std::string path = (std::filesystem::temp_directory_path() / "zteng-async-bench.log").string();
  for (auto _ : state) {
    std::filesystem::remove(path);
    const double cpu = ProcessCpuSeconds();
    const auto start = std::chrono::steady_clock::now();
    spdlog::init_thread_pool(8192, 1);
    auto logger = spdlog::create_async<spdlog::sinks::basic_file_sink_mt>("bench", path, true);
    logger->set_pattern("[%Y-%m-%d %H:%M:%S.%F] [%P:%t] [zteng %# %l] %v");
    for (std::int64_t i = 0; i < kLines; ++i) {
      SPDLOG_LOGGER_CALL(logger, spdlog::level::info, "line {} of pid {} is {}", i, 42, "C:\\Users\\somebody\\document.docx");
    }
    logger.reset();
    spdlog::shutdown();  // Writes what is queued.
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    Report(state, time.count(), ProcessCpuSeconds() - cpu, static_cast<double>(std::filesystem::file_size(path)));
  }
  std::filesystem::remove(path);
}
BENCHMARK(AsyncLogger)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zt::bench
