#include "platform/critical_section.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace zt {
namespace {

TEST(CriticalSectionTest, LifeIsExplicit) {
  CriticalSection section;
  EXPECT_FALSE(section.IsInitialised());
  section.Init();
  EXPECT_TRUE(section.IsInitialised());
  section.Delete();
  EXPECT_FALSE(section.IsInitialised());
}

TEST(CriticalSectionTest, DeleteWithoutInitDoesNothing) {
  CriticalSection section;
  section.Delete();
  section.Init();
  section.Delete();
  section.Delete();
  EXPECT_FALSE(section.IsInitialised());
}

TEST(CriticalSectionTest, LockCanBeMadeAgain) {
  CriticalSection section;
  for (int life = 0; life < 3; ++life) {
    section.Init();
    { const CriticalSectionLock lock(section); }
    section.Delete();
  }
}

TEST(CriticalSectionTest, HolderMayEnterAgain) {
  CriticalSection section;
  section.Init();
  const CriticalSectionLock outer(section);
  const CriticalSectionLock inner(section);
}

TEST(CriticalSectionTest, OthersWaitForTheLastLeave) {
  CriticalSection section;
  section.Init();
  int stage = 0;
  int seen = -1;
  section.Enter();
  section.Enter();
  std::thread other([&] {
    const CriticalSectionLock lock(section);
    seen = stage;
  });
  stage = 1;
  section.Leave();
  stage = 2;
  section.Leave();
  other.join();
  EXPECT_EQ(seen, 2);
}

TEST(CriticalSectionTest, TryingTakesAFreeLockOnly) {
  CriticalSection section;
  section.Init();
  ASSERT_TRUE(section.TryEnter());
  EXPECT_TRUE(section.TryEnter());  // The holder may take it again.
  bool others = true;
  std::thread([&] { others = section.TryEnter(); }).join();
  EXPECT_FALSE(others);
  section.Leave();
  section.Leave();
  std::thread([&] {
    others = section.TryEnter();
    section.Leave();
  }).join();
  EXPECT_TRUE(others);
}

TEST(CriticalSectionTest, OneThreadAtATime) {
  constexpr int kThreadCount = 4;
  constexpr int kRounds = 20000;
  CriticalSection section;
  section.Init();
  int count = 0;
  std::vector<std::thread> threads;
  threads.reserve(kThreadCount);
  for (int thread = 0; thread < kThreadCount; ++thread) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        const CriticalSectionLock lock(section);
        ++count;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(count, kThreadCount * kRounds);
}

TEST(CriticalSectionTest, BoundedTryTakesAFreeLock) {
  CriticalSection section;
  section.Init();
  ASSERT_TRUE(section.TryEnterFor(0));
  EXPECT_TRUE(section.TryEnterFor(0)) << "its holder may take it again";
  std::thread([&section] { EXPECT_FALSE(section.TryEnter()); }).join();
  section.Leave();
  section.Leave();
  std::thread([&section] {
    EXPECT_TRUE(section.TryEnter());
    section.Leave();
  }).join();
}

// Without an end of the wait the test would have none.
TEST(CriticalSectionTest, BoundedTryGivesUp) {
  CriticalSection section;
  section.Init();
  const CriticalSectionLock lock(section);
  std::thread([&section] { EXPECT_FALSE(section.TryEnterFor(1)); }).join();
}

TEST(CriticalSectionTest, BoundedTryWaitsForALeave) {
  CriticalSection section;
  section.Init();
  section.Enter();
  std::thread other([&section] {
    // An hour: the test would not end.
    EXPECT_TRUE(section.TryEnterFor(3600000));
    section.Leave();
  });
  section.Leave();
  other.join();
}

}  // namespace
}  // namespace zt
