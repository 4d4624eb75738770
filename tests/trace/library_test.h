// The fixture of tests of the whole trace library: it lies in a folder of its own on the real disk, its clock stands until the
// test moves it, its settings are what the test says, and its worker ticks when the test calls it.

#ifndef ZT_TESTS_TRACE_LIBRARY_TEST_H
#define ZT_TESTS_TRACE_LIBRARY_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"
#include "tests/trace/trace_test.h"
#include "trace/library.h"
#include "trace/log_files.h"
#include "trace/settings_worker.h"

namespace zt::testing {

/// The system of these tests: what it was asked for, and what it answers.
struct FakeLibrarySystem {
  std::string executable;                         ///< Empty when it is not known.
  std::map<std::string, std::uint32_t> settings;  ///< Under the library's key.
  std::int64_t milliseconds = 1000;               ///< The performance counter.
  int settings_reads = 0;
  bool is_thread_prepared = false;  ///< For crashes.
  std::vector<std::string> events;  ///< What the worker, the crash filter and the settings were asked, in its order.
  std::vector<std::string> dumps;   ///< Paths of the crash dumps.
};

inline FakeLibrarySystem& FakeLibrary() {
  static FakeLibrarySystem system;
  return system;
}

inline std::size_t FakeExecutablePath(char* buffer, std::size_t size) {
  const std::string& path = FakeLibrary().executable;
  const std::size_t length = path.copy(buffer, size - 1);
  buffer[length] = '\0';
  return length;
}

inline void FakeReadSettings(const char* key, std::span<NumberSetting> settings) {
  EXPECT_STREQ(key, "SOFTWARE\\jqmlog\\zteng");
  ++FakeLibrary().settings_reads;
  for (NumberSetting& setting : settings) {
    const auto found = FakeLibrary().settings.find(setting.name);
    setting.value = found == FakeLibrary().settings.end() ? std::nullopt : std::optional(found->second);
  }
}

inline TraceEnvironment FakeLibraryEnvironment() {
  TraceEnvironment environment = kFakeEnvironment;
  environment.performance_counter = [] { return FakeLibrary().milliseconds; };
  environment.performance_frequency = [] { return std::int64_t{1000}; };
  environment.executable_path = &FakeExecutablePath;
  environment.read_settings = &FakeReadSettings;
  environment.start_worker = [](std::uint32_t period_ms, void (*tick)()) {
    EXPECT_EQ(tick, &TraceSettingsWorker);
    FakeLibrary().events.push_back("start worker " + std::to_string(period_ms));
    return true;
  };
  environment.halt_worker = [](std::uint32_t patience_ms) {
    FakeLibrary().events.push_back("halt worker " + std::to_string(patience_ms));
  };
  environment.stop_worker = [] { FakeLibrary().events.emplace_back("stop worker"); };
  environment.prepare_thread_for_crashes = [] { FakeLibrary().is_thread_prepared = true; };
  environment.install_crash_filter = [](CrashHandler) { FakeLibrary().events.emplace_back("install crash filter"); };
  environment.remove_crash_filter = [] { FakeLibrary().events.emplace_back("remove crash filter"); };
  environment.write_crash_dump = [](const char* path, const CrashDetails&) { FakeLibrary().dumps.emplace_back(path); };
  return environment;
}

class LibraryTest : public ::testing::Test {
 protected:
  LibraryTest() {
    const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::temp_directory_path() /
              (std::string("zteng-") + std::to_string(CurrentProcessId()) + "-" + test->test_suite_name() + "." + test->name());
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directory(folder_);
    FakeSystemLog() = {};
    FakeLibrary() = {};
    FakeLibrary().executable = (folder_ / "host.exe").string();
    SharedTraceState().environment = &environment_;
  }
  ~LibraryTest() override {
    TraceStop();
    SharedTraceState().environment = &kSystemEnvironment;
  }

  /// Starts with these settings.
  static void Start(std::uint32_t flag, std::uint32_t size) {
    FakeLibrary().settings = {{"flag", flag}, {"size", size}};
    TraceStart();
  }
  static void Print(const char* text) { TracePrint(nullptr, 0, 1, "", "%s", text); }
  /// Lets time pass and the worker tick.
  static void TickAfter(std::int64_t milliseconds) {
    FakeLibrary().milliseconds += milliseconds;
    TraceSettingsWorker();
  }
  static void Flush() {
    const CriticalSectionLock lock(SharedTraceState().lock);
    TraceFlushFile(nullptr);
  }

  [[nodiscard]] std::filesystem::path LogPath(const std::string& name) const { return folder_ / "logs" / "trace" / name; }
  /// What the log file of this name holds.
  [[nodiscard]] std::string Log(const std::string& name) const {
    std::ifstream file(LogPath(name), std::ios::binary);
    EXPECT_TRUE(file.is_open()) << name << " is missing";
    return {std::istreambuf_iterator<char>(file), {}};
  }
  /// The names of the log files that there are, in order.
  [[nodiscard]] std::vector<std::string> LogNames() const {
    std::vector<std::string> names;
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / "logs" / "trace", missing)) {
      names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
  }
  /// Makes a log file of `size` bytes that was changed `seconds` after another moment.
  void MakeLog(const std::string& name, std::uintmax_t size, int seconds) const {
    std::filesystem::create_directories(LogPath(name).parent_path());
    std::ofstream(LogPath(name), std::ios::binary) << "old";
    std::filesystem::resize_file(LogPath(name), size);
    const auto moment = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    std::filesystem::last_write_time(LogPath(name), moment + std::chrono::seconds(seconds));
  }

  ScratchFolder scratch_;
  std::filesystem::path folder_ = scratch_.path();
  TraceEnvironment environment_ = FakeLibraryEnvironment();
};

/// The flags of these tests: to the file, bare messages without any prefix.
inline constexpr std::uint32_t kBareToFile = 0x100 | 0xFF0000;
/// The line that a stop writes with them.
inline constexpr const char kStopped[] = "trace stopped\r\n";

}  // namespace zt::testing

#endif  // ZT_TESTS_TRACE_LIBRARY_TEST_H
