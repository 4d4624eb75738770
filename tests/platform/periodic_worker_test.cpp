#include "platform/periodic_worker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <semaphore>
#include <thread>

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
  static std::atomic<int> others;
  others = 0;
  ASSERT_TRUE(StartPeriodicWorker(1, [] {
    ++others;
    others.notify_all();
  }));
  for (int seen = others; seen < 20; seen = others) {
    others.wait(seen);
  }
  StopPeriodicWorker();
  EXPECT_EQ(ticks_.count, count);
}

TEST_F(PeriodicWorkerTest, AbandonedWorkerIsNotWaitedFor) {
  static std::binary_semaphore is_inside(0);
  static std::binary_semaphore may_leave(0);
  static std::binary_semaphore has_left(0);
  ASSERT_TRUE(StartPeriodicWorker(1, [] {
    is_inside.release();
    may_leave.acquire();
    has_left.release();
  }));
  is_inside.acquire();
  AbandonPeriodicWorker();
  StopPeriodicWorker();  // Would never return, were the worker still known.
  may_leave.release();
  has_left.acquire();
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
  static std::atomic<bool> is_inside{false};
  static std::atomic<bool> has_left{false};
  static std::atomic<bool> may_leave{false};
  ASSERT_TRUE(StartPeriodicWorker(1, [] {
    is_inside = true;
    is_inside.notify_all();
    may_leave.wait(false);
    has_left = true;
  }));
  is_inside.wait(false);
  std::thread release([] {
    may_leave = true;
    may_leave.notify_all();
  });
  StopPeriodicWorker();
  EXPECT_TRUE(has_left);
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

}  // namespace
}  // namespace zt::testing
