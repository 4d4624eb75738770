// Many threads print while others print, start and stop. Run these under the thread sanitizer too.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/trace/trace_test.h"

namespace zt::testing {
namespace {

constexpr int kThreadCount = 8;

// On the real system: its clock and ids have to stand being read by many threads.
class TraceConcurrencyTest : public TraceTest {
 protected:
  TraceConcurrencyTest() { SharedTraceState().environment = &kSystemEnvironment; }

  template <typename Work>
  static void RunThreads(const Work& work) {
    std::vector<std::thread> threads;
    threads.reserve(kThreadCount);
    for (int thread = 0; thread < kThreadCount; ++thread) {
      threads.emplace_back(work, thread);
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
  }
};

std::vector<std::string_view> SplitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  for (std::size_t end = text.find("\r\n"); end != std::string_view::npos; end = text.find("\r\n")) {
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end + 2);
  }
  EXPECT_EQ(text, "") << "a line without its end";
  return lines;
}

// A line is "THREAD:NUMBER:" and then one letter, repeated as often as it takes to notice a foreign piece.
std::string Body(int thread) {
  std::string body;
  body.assign(100 + static_cast<std::size_t>(thread), static_cast<char>('a' + thread));
  return body;
}

TEST_F(TraceConcurrencyTest, LinesNeverInterleave) {
  constexpr int kLinesPerThread = 500;  // 8 * 500 lines of more than 100 bytes make several flushes.
  Start(0x300 | kTraceBare);
  RunThreads([](int thread) {
    const std::string body = Body(thread);
    for (int number = 0; number < kLinesPerThread; ++number) {
      TracePrint(nullptr, 0, 1, "", "%d:%d:%s", thread, number, body.c_str());
    }
  });
  const std::string written = Written();
  EXPECT_GT(stream_.append_count, 1);
  std::array<int, kThreadCount> next = {};
  for (const std::string_view line : SplitLines(written)) {
    int thread = -1;
    int number = -1;
    ASSERT_EQ(std::sscanf(std::string(line).c_str(), "%d:%d:", &thread, &number), 2) << line;  // NOLINT(cert-err34-c)
    ASSERT_TRUE(thread >= 0 && thread < kThreadCount) << line;
    EXPECT_EQ(line,
              std::to_string(thread) + ":" + std::to_string(next.at(static_cast<std::size_t>(thread))++) + ":" + Body(thread));
  }
  EXPECT_THAT(next, ::testing::Each(kLinesPerThread));
  EXPECT_EQ(SharedTraceState().ring->count, static_cast<std::uint64_t>(kThreadCount * kLinesPerThread));
}

TEST_F(TraceConcurrencyTest, DumpsStayWithTheirLines) {
  Start(0x100 | kTraceBare);
  RunThreads([](int thread) {
    const std::string data(32, static_cast<char>('a' + thread));
    for (int number = 0; number < 50; ++number) {
      TracePrint(data.data(), data.size(), 1, "", "%c", 'a' + thread);
    }
  });
  const std::string written = Written();
  const std::vector<std::string_view> lines = SplitLines(written);
  ASSERT_EQ(lines.size(), 3u * kThreadCount * 50);
  for (std::size_t i = 0; i < lines.size(); i += 3) {
    const std::string row(16, lines[i].front());
    EXPECT_EQ(lines[i], row.substr(0, 1) + " length=32");
    EXPECT_TRUE(lines[i + 1].starts_with("00000000  ") && lines[i + 1].ends_with("  " + row)) << lines[i + 1];
    EXPECT_TRUE(lines[i + 2].starts_with("00000010  ") && lines[i + 2].ends_with("  " + row)) << lines[i + 2];
  }
}

TEST_F(TraceConcurrencyTest, PrintsRunThroughStopsAndStarts) {
  constexpr int kCycleCount = 100;
  std::atomic<bool> done{false};
  std::thread starter([this, &done] {
    for (int cycle = 0; cycle < kCycleCount; ++cycle) {
      TraceBringUp(0x300 | kTraceBare, &stream_);
      TracePrint(nullptr, 0, 1, "", "up");
      TraceTakeDown();
    }
    done = true;
  });
  RunThreads([&done](int thread) {
    const std::string body = Body(thread);
    while (!done) {
      TracePrint(nullptr, 0, 1, "", "%s", body.c_str());
      std::this_thread::yield();  // Else the starter hardly ever gets the lock.
    }
  });
  starter.join();
  int starts = 0;
  for (const std::string_view line : SplitLines(stream_.text)) {
    starts += line == "up" ? 1 : 0;
    EXPECT_TRUE(line == "up" || line == Body(line.front() - 'a')) << line;
  }
  EXPECT_EQ(starts, kCycleCount);
}

}  // namespace
}  // namespace zt::testing
