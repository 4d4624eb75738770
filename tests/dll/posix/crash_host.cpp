// A host that crashes where a crash is hard to handle, as its command line says:
//
//   zt_crash_host LIBRARY zone           in the C library's conversion of times, while the lock of it is held
//   zt_crash_host LIBRARY full           while its standard output and standard error are pipes that nobody reads
//   zt_crash_host LIBRARY full-and-held  and another thread waits there in the middle of a print

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "tests/dll/crash.h"
#include "tests/dll/loaded_library.h"
#include "tests/support/events.h"

namespace {

using zt::testing::LoadedLibrary;

// The zone's file is a pipe, and the C library waits for what it will read there.
void CrashInLocalTime(const std::filesystem::path& folder) {
  const std::string zone = folder / "zone";
  mkfifo(zone.c_str(), S_IRUSR | S_IWUSR);
  setenv("TZ", (":" + zone).c_str(), 1);
  const pthread_t reader = pthread_self();
  std::thread other([&] {
    // Possible from when somebody reads.
    while (open(zone.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC) < 0) {
      std::this_thread::yield();
    }
    pthread_kill(reader, SIGSEGV);
  });
  const std::time_t time = 0;
  static_cast<void>(std::localtime(&time));
  other.join();
}

// Makes the descriptor a pipe that is full. Its reading end stays open.
void MakeFull(int descriptor) {
  std::array<int, 2> ends = {};
  if (pipe2(ends.data(), O_NONBLOCK) != 0) {
    std::abort();
  }
  const std::array<char, 4096> page = {};
  while (write(ends[1], page.data(), page.size()) > 0) {
  }
  fcntl(ends[1], F_SETFL, 0);
  dup2(ends[1], descriptor);
}

// Has the engine print lines.
void FeedOneEvent(const LoadedLibrary& library) {
  std::shared_ptr<void> engine;
  library.Function<decltype(ZtInitEngineCore)>("ZtInitEngineCore")(engine, 1);
  LOG_ITEM event = zt::testing::ProcessCreate(4, 100, 1000, L"C:\\Tools\\Lock.exe");
  library.Function<decltype(ZtInsertLog)>("ZtInsertLog")(engine, &event);
}

// Whether the thread is in a write to standard output: the system tells the call and its first argument.
bool WaitsInOutput(pid_t thread) {
  std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/syscall");
  std::string call;
  std::getline(file, call);
  return call.starts_with(std::to_string(SYS_write) + " 0x1 ");
}

void WaitInAPrint(const LoadedLibrary& library) {
  std::atomic<pid_t> printing = 0;
  std::thread([&library, &printing] {
    printing = gettid();
    FeedOneEvent(library);
  }).detach();
  while (printing == 0 || !WaitsInOutput(printing)) {
    std::this_thread::yield();
  }
}

}  // namespace

int main(int argument_count, char** arguments) {
  if (argument_count != 3) {
    return EXIT_FAILURE;
  }
  const std::string_view word = arguments[2];
  zt::testing::PrepareForCrash();
  const LoadedLibrary library(arguments[1]);
  if (word == "zone") {
    CrashInLocalTime(std::filesystem::path(arguments[0]).parent_path());
  } else {
    MakeFull(STDOUT_FILENO);
    MakeFull(STDERR_FILENO);
    if (word == "full-and-held") {
      WaitInAPrint(library);
    }
    zt::testing::Crash();
  }
  return EXIT_SUCCESS;
}
