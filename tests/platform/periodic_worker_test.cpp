#include "platform/periodic_worker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <thread>

#include "platform/clock.h"
#include "tests/support/gate.h"

namespace zt::testing {
namespace {

// Ticks are counted, and can be waited for.
struct Ticks {
  std::mutex mutex;
  std::condition_variable changed;
  int count = 0;
  std::thread::id thread;

  void WaitFor(int wanted) {
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return count >= wanted; });
  }
};

Ticks* ticks = nullptr;

void CountTick() {
  const std::lock_guard lock(ticks->mutex);
  ++ticks->count;
  ticks->thread = std::this_thread::get_id();
  ticks->changed.notify_all();
}

class PeriodicWorkerTest : public ::testing::Test {
 protected:
  PeriodicWorkerTest() { ticks = &ticks_; }
  ~PeriodicWorkerTest() override { StopPeriodicWorker(); }

  Ticks ticks_;
};

TEST_F(PeriodicWorkerTest, TicksComeAgainAndAgainOnAnotherThread) {
  ASSERT_TRUE(StartPeriodicWorker(1, &CountTick));
  ticks_.WaitFor(3);
  StopPeriodicWorker();
  EXPECT_NE(ticks_.thread, std::this_thread::get_id());
}

TEST_F(PeriodicWorkerTest, NoTickRunsAfterAStop) {
  ASSERT_TRUE(StartPeriodicWorker(1, &CountTick));
  ticks_.WaitFor(1);
  StopPeriodicWorker();
  const int count = ticks_.count;
  // Another worker's ticks tell that time has passed.
  Ticks others;
  ticks = &others;
  ASSERT_TRUE(StartPeriodicWorker(1, &CountTick));
  others.WaitFor(20);
  StopPeriodicWorker();
  EXPECT_EQ(ticks_.count, count);
}

// A tick that a test lets in and out.
struct GuardedTick {
  Gate is_inside;
  Gate may_leave;
  Gate has_left;
  std::atomic<bool> is_done{false};
};

GuardedTick* guarded = nullptr;

void PassGates() {
  guarded->is_inside.Open();
  guarded->may_leave.Wait();
  guarded->is_done = true;
  guarded->has_left.Open();
}

// In a process of its own, which ends with the tick.
TEST(PeriodicWorkerDeathTest, AbandonedWorkerIsNotWaitedFor) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        GuardedTick tick;
        guarded = &tick;
        StartPeriodicWorker(1, &PassGates);
        tick.is_inside.Wait();
        AbandonPeriodicWorker();
        StopPeriodicWorker();  // Would never return, were the worker still known.
        std::_Exit(tick.is_done ? 1 : 0);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST_F(PeriodicWorkerTest, StopDoesNotWaitForThePeriod) {
  // A period of an hour: the test would not end.
  ASSERT_TRUE(StartPeriodicWorker(3600000, &CountTick));
  StopPeriodicWorker();
  EXPECT_EQ(ticks_.count, 0);
}

TEST_F(PeriodicWorkerTest, StopWithoutStartDoesNothing) { StopPeriodicWorker(); }

TEST_F(PeriodicWorkerTest, WorkerStartsAgain) {
  for (int round = 1; round <= 3; ++round) {
    ASSERT_TRUE(StartPeriodicWorker(1, &CountTick));
    ticks_.WaitFor(round * 2);
    StopPeriodicWorker();
  }
}

TEST_F(PeriodicWorkerTest, StopWaitsForTheTickThatRuns) {
  GuardedTick tick;
  guarded = &tick;
  ASSERT_TRUE(StartPeriodicWorker(1, &PassGates));
  tick.is_inside.Wait();
  std::thread release([&tick] { tick.may_leave.Open(); });
  StopPeriodicWorker();
  EXPECT_TRUE(tick.is_done);
  release.join();
}

TEST_F(PeriodicWorkerTest, TickCanStopTheWorker) {
  ASSERT_TRUE(StartPeriodicWorker(1, [] {
    StopPeriodicWorker();
    CountTick();
  }));
  ticks_.WaitFor(1);
  EXPECT_EQ(ticks_.count, 1);
}

TEST_F(PeriodicWorkerTest, HaltWaitsForTheTickThatRuns) {
  GuardedTick tick;
  guarded = &tick;
  ASSERT_TRUE(StartPeriodicWorker(1, &PassGates));
  tick.is_inside.Wait();
  std::thread release([&tick] { tick.may_leave.Open(); });
  HaltPeriodicWorker(3600000);  // An hour: the test would not end.
  EXPECT_TRUE(tick.is_done);
  release.join();
}

// Without an end of the wait the test would have none.
TEST_F(PeriodicWorkerTest, HaltDoesNotWaitForEver) {
  GuardedTick tick;
  guarded = &tick;
  ASSERT_TRUE(StartPeriodicWorker(1, &PassGates));
  tick.is_inside.Wait();
  HaltPeriodicWorker(1);
  EXPECT_FALSE(tick.is_done);
  tick.may_leave.Open();
  StopPeriodicWorker();
  EXPECT_TRUE(tick.is_done);
}

TEST_F(PeriodicWorkerTest, NoTickBeginsAfterAHalt) {
  ASSERT_TRUE(StartPeriodicWorker(1, &CountTick));
  ticks_.WaitFor(1);
  HaltPeriodicWorker(3600000);
  const int count = ticks_.count;
  // The time in which twenty of them would have come, by the clock that the worker goes by.
  const std::int64_t end = SteadyNanoseconds() + std::int64_t{20} * 1000000;
  while (SteadyNanoseconds() < end) {
    std::this_thread::yield();
  }
  EXPECT_EQ(ticks_.count, count);
  StopPeriodicWorker();
  // The next worker is not halted.
  ASSERT_TRUE(StartPeriodicWorker(1, &CountTick));
  ticks_.WaitFor(count + 1);
}

TEST_F(PeriodicWorkerTest, TickCanHaltTheWorker) {
  ASSERT_TRUE(StartPeriodicWorker(1, [] {
    HaltPeriodicWorker(3600000);
    CountTick();
  }));
  ticks_.WaitFor(1);
  StopPeriodicWorker();
  EXPECT_EQ(ticks_.count, 1);
}

TEST_F(PeriodicWorkerTest, HaltWithoutStartDoesNothing) { HaltPeriodicWorker(3600000); }

}  // namespace
}  // namespace zt::testing
