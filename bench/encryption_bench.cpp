// ztreplay on an encrypting run over 200,000 files, as a whole process: its processor time and its peak memory.

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

#include "bench/folder.h"

namespace zt::bench {
namespace {

constexpr std::size_t kFiles = 200000;
constexpr std::size_t kFilesOfAFolder = 20000;

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

  /// Open, read, overwrite and rename to a new extension, file by file. Returns whether all was written.
  [[nodiscard]] bool Write() const {
    std::ofstream out(path(), std::ios::binary);
    Put(out, MakeRecord(4, BehaviorProcessCreate, L"C:\\Users\\ann\\Downloads\\app.exe", kPid));
    for (std::size_t file = 0; file < kFiles; ++file) {
      const std::wstring name = PathOf(file);
      Put(out, MakeRecord(kPid, BehaviorCreate, name, 4096));
      Put(out, MakeRecord(kPid, BehaviorRead, name, 4096));
      Put(out, MakeRecord(kPid, BehaviorWrite, name + L"|4096", 0));
      Put(out, MakeRecord(kPid, BehaviorRename, name + L"|" + name + L".locked", 0));
    }
    return out.flush().good();
  }

 private:
  static std::wstring PathOf(std::size_t file) {
    return L"C:\\Users\\ann\\Documents\\" + std::to_wstring(2010 + file / kFilesOfAFolder) + L"\\report" +
           std::to_wstring(1000000 + file) + L".docx";
  }
  static void Put(std::ofstream& out, const LOG_ITEM& record) {
    out.write(reinterpret_cast<const char*>(&record), sizeof(record));
  }

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

void EncryptByRename(benchmark::State& state) {
  const Capture capture;
  if (!capture.Write()) {
    state.SkipWithError("the capture cannot be written");
    return;
  }
  for (auto _ : state) {
    rusage usage = {};
    if (!Replay(capture.path(), usage)) {
      state.SkipWithError("ztreplay failed");
      return;
    }
    state.counters["cpu_s"] = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
    state.counters["peak_MB"] = static_cast<double>(usage.ru_maxrss) * 1024 / 1e6;
  }
}

BENCHMARK(EncryptByRename)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zt::bench
