// Insertion from several threads at once: nothing is lost and nothing is counted twice.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/engine_test.h"

namespace zt::testing {
namespace {

using ::testing::Each;
using ::testing::SizeIs;

constexpr std::uint64_t kThreads = 4;

/// Runs work(0), work(1), ... at the same time and waits for all.
void RunTogether(const std::function<void(std::uint64_t)>& work) {
  std::atomic<std::uint64_t> ready = 0;
  std::vector<std::thread> threads;
  for (std::uint64_t number = 0; number < kThreads; ++number) {
    threads.emplace_back([&ready, &work, number] {
      ++ready;
      while (ready < kThreads) {
        std::this_thread::yield();
      }
      work(number);
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

class LogInsertionThreadsTest : public EngineTest {};

TEST_F(LogInsertionThreadsTest, EveryLineOfOneProcessIsCounted) {
  StartProcess(10);
  LOG_ITEM load = ModuleLoad(10, L"C:\\bcrypt.dll");
  RunTogether([this, &load](std::uint64_t) {
    for (int i = 0; i < 1000; ++i) {
      ZtInsertLog(engine_, &load);
    }
  });
  EXPECT_EQ(ScoreOf(10), 1 + 4 * 1000);
}

TEST_F(LogInsertionThreadsTest, OneFileIsChargedOnceHoweverManyWriteIt) {
  StartProcess(10);
  std::atomic<int> penalised = 0;
  for (int round = 0; round < 100; ++round) {
    const std::wstring path = L"c:\\d\\file" + std::to_wstring(round);
    OpenAndRead(10, path);
    ItemOf(10)->Score = 1;
    LOG_ITEM write = Write(10, path);
    RunTogether([this, &write, &penalised](std::uint64_t) {
      if (ZtInsertLog(engine_, &write) == 2) {
        ++penalised;
      }
    });
    EXPECT_EQ(ScoreOf(10), 2);
  }
  EXPECT_EQ(penalised, 100);
}

TEST_F(LogInsertionThreadsTest, ProcessesOfTheirOwnGiveTheResultsOfOneThread) {
  for (std::uint64_t number = 0; number < kThreads; ++number) {
    StartProcess(10 + number);
  }
  std::vector<std::vector<ZtLong>> results(kThreads);
  RunTogether([this, &results](std::uint64_t number) {
    for (int file = 0; file < 20; ++file) {
      results[number].push_back(Overwrite(10 + number, L"c:\\d\\" + std::to_wstring(file) + L".doc"));
    }
  });
  std::vector<ZtLong> powers_of_two;
  for (int file = 1; file <= 20; ++file) {
    powers_of_two.push_back(ZtLong{1} << file);
  }
  EXPECT_THAT(results, Each(powers_of_two));
}

TEST_F(LogInsertionThreadsTest, CountsOfACommonAncestorAreRight) {
  StartProcess(1);
  RunTogether([this](std::uint64_t number) {
    for (std::uint64_t i = 0; i < 100; ++i) {
      const std::uint64_t pid = 1000 * (number + 1) + i;
      StartChild(1, pid);
      if (i % 2 == 0) {
        Insert(ProcessExit(pid));
      }
    }
  });
  EXPECT_EQ(EntryOf(1)->LiveCount, 1 + 4 * 50U);
  EXPECT_THAT(EntryOf(1)->children, SizeIs(4 * 100));
  EXPECT_EQ(core().Tree.size(), 1 + 4 * 100U);
}

TEST_F(LogInsertionThreadsTest, AllLockedExportsMayRunTogether) {
  StartProcess(1);
  for (std::uint64_t number = 0; number < kThreads; ++number) {
    StartChild(1, 10 + number);
  }
  RunTogether([this](std::uint64_t number) {
    const std::uint64_t pid = 10 + number;
    for (int i = 0; i < 50; ++i) {
      Overwrite(pid, L"c:\\d\\" + std::to_wstring(i) + L".doc");
      ZtUpdateScore(engine_, Handle(pid), 5);
      ZtResetScore(engine_, 0, 0);
      std::map<std::wstring, ZT_FILE_ITEM_PUBLIC> files;
      std::vector<std::wstring> paths;
      EXPECT_EQ(ZtGetFinalStateFileByPid(engine_, Handle(pid), files, paths), 1);
      EXPECT_THAT(paths, SizeIs(i + 1));
    }
  });
  for (std::uint64_t number = 0; number < kThreads; ++number) {
    EXPECT_THAT(ItemOf(10 + number)->files, SizeIs(50));
    EXPECT_EQ(ScoreOf(10 + number), 5);
  }
}

TEST_F(LogInsertionThreadsTest, CopiesOfTheHandleMayBeDroppedWhileOthersWork) {
  StartProcess(10);
  const std::weak_ptr<void> context = engine_;
  std::vector<std::shared_ptr<void>> handles(kThreads, engine_);
  engine_.reset();
  RunTogether([&handles](std::uint64_t number) {
    std::shared_ptr<void>& handle = handles[number];
    LOG_ITEM load = ModuleLoad(10, L"C:\\bcrypt.dll");
    for (std::uint64_t i = 0; i < 100 * (number + 1); ++i) {
      EXPECT_EQ(ZtInsertLog(handle, &load), 0);
    }
    handle.reset();
  });
  EXPECT_TRUE(context.expired());
}

}  // namespace
}  // namespace zt::testing
