// The fixture of the trace library's tests: a system whose time and ids are fixed, and outputs that remember.

#ifndef ZT_TESTS_TRACE_TRACE_TEST_H
#define ZT_TESTS_TRACE_TRACE_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "trace/append_stream.h"
#include "trace/log_file.h"
#include "trace/start_stop.h"
#include "trace/trace.h"
#include "trace/trace_state.h"

namespace zt::testing {

/// A log file in memory. It can refuse to open and can run full.
class MemoryStream : public AppendStream {
 public:
  [[nodiscard]] bool IsOpen() const override { return is_open; }
  std::optional<std::uint64_t> Open() override {
    ++open_count;
    if (!can_open) {
      return std::nullopt;
    }
    is_open = true;
    return text.size();
  }
  std::size_t Append(std::string_view added) override {
    added = added.substr(0, append_limit);
    text += added;
    ++append_count;
    return added.size();
  }
  void Close() override { is_open = false; }
  void StartNext() override {
    finished.push_back(text);
    text.clear();
  }

  std::string text;
  std::vector<std::string> finished;  ///< What the files held that the log went on from.
  bool is_open = false;
  bool can_open = true;
  int open_count = 0;
  int append_count = 0;
  std::size_t append_limit = std::string_view::npos;  ///< Bytes that one Append takes.
};

/// What the fake system was asked for.
struct SystemLog {
  int time_reads = 0;
  int counter_reads = 0;
  /// "console:TEXT", "debugger:TEXT", "color:N" and "restore:N", in their order.
  std::vector<std::string> events;
};

inline SystemLog& FakeSystemLog() {
  static SystemLog log;
  return log;
}

/// 2025-07-15 09:24:23.1234567 UTC: 20284 days, 33863 seconds and 1234567 units after 1970.
inline constexpr std::uint64_t kFakeFileTime = 116444736000000000 + 17525714631234567;

/// A zone without offset, at one moment only: any other comes out as zeros.
inline LocalTime FakeLocalTime(std::int64_t unix_seconds) {
  return unix_seconds == 1752571463 ? LocalTime{2025, 7, 15, 9, 24, 23} : LocalTime{};
}

/// Process 1234, thread 5678, at kFakeFileTime; the performance counter counts its readings. A console whose color was 7.
inline constexpr TraceEnvironment kFakeEnvironment = {
    .file_time_now =
        [] {
          ++FakeSystemLog().time_reads;
          return kFakeFileTime;
        },
    .to_local_time = &FakeLocalTime,
    .performance_counter = [] { return std::int64_t{++FakeSystemLog().counter_reads}; },
    .process_id = [] { return std::uint32_t{1234}; },
    .thread_id = [] { return std::uint32_t{5678}; },
    .write_console = [](std::string_view text) { FakeSystemLog().events.push_back("console:" + std::string(text)); },
    .set_console_color =
        [](ConsoleColor color) {
          FakeSystemLog().events.push_back("color:" + std::to_string(static_cast<int>(color)));
          return SavedConsoleColor(7);
        },
    .restore_console_color =
        [](SavedConsoleColor saved) { FakeSystemLog().events.push_back("restore:" + std::to_string(saved.value_or(0))); },
    .write_debugger = [](std::string_view text) { FakeSystemLog().events.push_back("debugger:" + std::string(text)); },
    .write_console_in_crash =
        [](std::string_view text) { FakeSystemLog().events.push_back("console in crash:" + std::string(text)); },
    .write_debugger_in_crash =
        [](std::string_view text) { FakeSystemLog().events.push_back("debugger in crash:" + std::string(text)); },
    .uptime_milliseconds = [] { return std::uint32_t{86461999}; },
};

/// An unstarted trace library on the fake system.
class TraceTest : public ::testing::Test {
 protected:
  TraceTest() {
    FakeSystemLog() = {};
    SharedTraceState().environment = &kFakeEnvironment;
  }
  ~TraceTest() override {
    TraceTakeDown();
    TraceFlags = 0;
    SharedTraceState().environment = &kSystemEnvironment;
  }

  /// Starts with a log file in memory.
  void Start(std::uint64_t flags) { ASSERT_TRUE(TraceBringUp(flags, &stream_)); }

  /// What the log file holds when all that is pending has been written.
  [[nodiscard]] std::string Written() const {
    Flush();
    return stream_.text;
  }
  static void Flush() {
    const CriticalSectionLock lock(SharedTraceState().lock);
    TraceFlushFile(nullptr);
  }

  static const std::vector<std::string>& Events() { return FakeSystemLog().events; }

  MemoryStream stream_;
};

}  // namespace zt::testing

#endif  // ZT_TESTS_TRACE_TRACE_TEST_H
