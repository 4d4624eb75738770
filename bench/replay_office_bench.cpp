// ztreplay as a whole process on a binary capture of 400 programs that encrypt 500 documents each: events a second of its
// processor time, and its peak memory.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "bench/office.h"
#include "bench/sizes.h"

namespace zt::bench {
namespace {

/// A capture of records in a folder of its own, which goes with the object.
class Capture {
 public:
  Capture() {
    std::string pattern = std::filesystem::temp_directory_path() / "zt-bench-XXXXXX";
    folder_ = ::mkdtemp(pattern.data()) == nullptr ? std::filesystem::path() : std::filesystem::path(pattern);
  }
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;
  ~Capture() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  [[nodiscard]] std::string path() const { return folder_ / "encryption.records"; }

  /// Returns whether all was written.
  [[nodiscard]] bool Write(Office& office) const {
    std::ofstream out(path(), std::ios::binary);
    for (std::vector<LOG_ITEM>* portion = &office.Next(); !portion->empty(); portion = &office.Next()) {
      out.write(reinterpret_cast<const char*>(portion->data()),
                static_cast<std::streamsize>(portion->size() * sizeof(LOG_ITEM)));
    }
    return out.flush().good();
  }

 private:
  std::filesystem::path folder_;
};

/// Runs ztreplay to its end, without its output. Returns whether it ran and ended with an alarm.
bool Replay(std::string capture, rusage& usage) {
  std::string program = ZT_REPLAY_PATH;
  std::string option = "--format";
  std::string format = "records";
  char* const arguments[] = {program.data(), option.data(), format.data(), capture.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  int status = 0;
  const bool ran = posix_spawn(&child, program.c_str(), &actions, nullptr, arguments, environ) == 0 &&
                   wait4(child, &status, 0, &usage) == child;
  posix_spawn_file_actions_destroy(&actions);
  return ran && WIFEXITED(status) && WEXITSTATUS(status) == 1;
}

double Seconds(const timeval& time) { return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6; }

void ReplayOffice(benchmark::State& state) {
  const Capture capture;
  Office office(Sized(400, 4), Sized(500, 20), Office::Life::kInTurn);
  if (!capture.Write(office)) {
    state.SkipWithError("the capture cannot be written");
    return;
  }
  for (auto _ : state) {
    rusage usage = {};
    if (!Replay(capture.path(), usage)) {
      state.SkipWithError("ztreplay failed");
      return;
    }
    const double seconds = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
    state.counters["events"] = static_cast<double>(office.events());
    state.counters["events_per_cpu_s"] = static_cast<double>(office.events()) / seconds;
    state.counters["peak_MB"] = static_cast<double>(usage.ru_maxrss) * 1024 / 1e6;
  }
}

BENCHMARK(ReplayOffice)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zt::bench
