// The whole library while many threads print: settings that change, stops, a crash. Run these under the thread sanitizer too.

#include <array>
#include <atomic>
#include <thread>

#include "tests/trace/library_test.h"
#include "trace/crash_filter.h"

namespace zt::testing {
namespace {

constexpr int kThreadCount = 8;

// Eight threads that print until they are told to end. Every one of their lines is its letter, 99 times.
class Printers {
 public:
  Printers() {
    for (int i = 0; i < kThreadCount; ++i) {
      threads_.at(static_cast<std::size_t>(i)) = std::thread([this, i] { Run(static_cast<char>('a' + i)); });
    }
  }
  ~Printers() {
    is_done_ = true;
    for (std::thread& thread : threads_) {
      thread.join();
    }
  }
  /// Returns when this many more lines were printed, whatever became of them.
  void WaitForLines(int count) {
    const int wanted = printed_ + count;
    while (printed_ < wanted) {
      std::this_thread::yield();
    }
  }

 private:
  void Run(char letter) {
    const std::string text(99, letter);
    while (!is_done_) {
      TracePrint(nullptr, 0, 1, "", "%s", text.c_str());
      ++printed_;
      std::this_thread::yield();  // Else others hardly ever get the lock.
    }
  }

  std::atomic<bool> is_done_{false};
  std::atomic<int> printed_{0};
  std::array<std::thread, kThreadCount> threads_;
};

// Every look at the clock comes 11 seconds after the one before: each tick finds the file idle and the settings due.
std::atomic<std::int64_t> clock_ms{0};

// The real times and ids, which stand being read by many threads; the rest is as the test says.
class LibraryConcurrencyTest : public LibraryTest {
 protected:
  LibraryConcurrencyTest() {
    environment_.file_time_now = &FileTimeNow;
    environment_.to_local_time = &ToLocalTime;
    environment_.process_id = &CurrentProcessId;
    environment_.thread_id = &CurrentThreadId;
    environment_.uptime_milliseconds = &SystemUptimeMilliseconds;
    environment_.performance_counter = [] { return std::int64_t{clock_ms += 11000}; };
  }
  ~LibraryConcurrencyTest() override { TraceStop(); }

  /// Whether the log consists of whole lines: at least `printed` of the printers', and those that tell of the library.
  void ExpectWholeLines(const std::string& name, int printed = 1) const {
    const std::string log = Log(name);
    ASSERT_TRUE(log.ends_with("\r\n"));
    int found = 0;
    std::size_t start = 0;
    for (std::size_t end = log.find("\r\n"); end != std::string::npos; end = log.find("\r\n", start)) {
      const std::string line = log.substr(start, end - start);
      start = end + 2;
      const bool is_printed = line.size() == 99 && line.find_first_not_of(line[0]) == std::string::npos;
      const bool is_librarys = line.starts_with("(") || line == "trace stopped";
      ASSERT_TRUE(is_printed || is_librarys) << name << ": " << line;
      found += is_printed ? 1 : 0;
    }
    EXPECT_GE(found, printed) << name;
  }
};

TEST_F(LibraryConcurrencyTest, SettingsChangeWhileThreadsPrint) {
  constexpr std::array<std::uint32_t, 5> kFlags = {0x100 | 0xFF0000, 0x300 | 0xFF0000, 0x200 | 0xFF0000, 0, 0x101 | 0xFF0000};
  Start(kBareToFile, 0);
  {
    Printers printers;
    for (std::uint32_t round = 0; round < 40; ++round) {
      FakeLibrary().settings = {{"flag", kFlags.at(round % kFlags.size())}, {"size", round % 3}};
      printers.WaitForLines(50);
      TraceSettingsWorker();
    }
    FakeLibrary().settings = {{"flag", kBareToFile}, {"size", 0}};
    // A tick skips its turn while a printer has the lock.
    while (TraceFlags != kBareToFile) {
      TraceSettingsWorker();
    }
    printers.WaitForLines(50);
  }
  TraceStop();
  for (const std::string& name : LogNames()) {
    ExpectWholeLines(name, 0);
  }
  EXPECT_FALSE(LogNames().empty());
}

TEST_F(LibraryConcurrencyTest, StopsAndStartsWhileThreadsPrint) {
  Start(kBareToFile, 0);
  {
    Printers printers;
    for (int round = 0; round < 50; ++round) {
      printers.WaitForLines(20);
      TraceStop();
      TraceStart();
    }
  }
  TraceStop();
  // Every life of the library saw twenty of them, in which all threads may have been on their way.
  ExpectWholeLines("zteng.log", 50 * (20 - kThreadCount));
}

TEST_F(LibraryConcurrencyTest, RotationWhileThreadsPrint) {
  Start(kBareToFile, 1);
  {
    Printers printers;
    printers.WaitForLines(30000);  // 101 bytes each: three MiB.
  }
  TraceStop();
  ASSERT_THAT(LogNames(), ::testing::ElementsAre("zteng_1.log", "zteng_2.log"));
  // The last turn may have come with the last line, but then the other file is full.
  ExpectWholeLines("zteng_1.log", 0);
  ExpectWholeLines("zteng_2.log", 0);
  EXPECT_GE(Log("zteng_1.log").size() + Log("zteng_2.log").size(), std::size_t{1} << 20);
}

TEST_F(LibraryConcurrencyTest, CrashWhileThreadsPrint) {
  static const int kAnything = 0;
  Start(kBareToFile | 0x10000000, 0);
  {
    Printers printers;
    printers.WaitForLines(100);
    TraceCrashFilter(reinterpret_cast<const CrashDetails&>(kAnything));
    printers.WaitForLines(100);
  }
  EXPECT_EQ(FakeLibrary().dumps.size(), 1u);
  EXPECT_TRUE(Log("zteng.log").ends_with(kStopped));
  ExpectWholeLines("zteng.log", 100 - kThreadCount);
}

TEST_F(LibraryConcurrencyTest, RealWorkerTicksWhileThreadsPrint) {
  environment_.start_worker = [](std::uint32_t, void (*tick)()) { return StartPeriodicWorker(1, tick); };
  environment_.stop_worker = &StopPeriodicWorker;
  environment_.performance_counter = &PerformanceCounter;
  environment_.performance_frequency = &PerformanceFrequency;
  for (int round = 0; round < 10; ++round) {
    Start(kBareToFile, 0);
    Printers printers;
    printers.WaitForLines(200);
    TraceStop();
  }
  ExpectWholeLines("zteng.log", 10 * (200 - kThreadCount));
}

}  // namespace
}  // namespace zt::testing
