// The index of a file map where memory runs out: its answers stay those of the map.

#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include "tests/engine/failing_allocator.h"
#include "zteng/zt_items.h"

namespace zt::testing {
namespace {

using Extent = AllocationFailure::Extent;

class FileIndexFailureTest : public ::testing::Test {
 protected:
  static std::vector<std::wstring> Paths(std::size_t count) {
    std::vector<std::wstring> paths;
    for (std::size_t number = 0; number < count; ++number) {
      paths.push_back(L"c:\\users\\ann\\documents\\report" + std::to_wstring(100 + number * 7 % 100) + L".docx");
    }
    return paths;
  }

  /// Adds what can be added. Nothing here takes memory but what is tested.
  void TryToAdd(const std::vector<std::wstring>& paths) {
    for (const std::wstring& path : paths) {
      try {
        index_.FindOrAdd(files_, path);
      } catch (const std::bad_alloc&) {
        continue;
      }
    }
  }

  /// Of how many paths index and map disagree.
  std::size_t CountWrongAnswers(const std::vector<std::wstring>& paths) {
    std::size_t wrong = 0;
    for (const std::wstring& path : paths) {
      const auto expected = files_.find(path);
      wrong += index_.Find(files_, path) == (expected == files_.end() ? nullptr : &*expected) ? 0 : 1;
      if (index_.Prepare(files_)) {
        wrong += index_.LowerBound(files_, path) == files_.lower_bound(path) ? 0 : 1;
      }
    }
    return wrong;
  }

  ZtFileMap files_;
  ZtFileIndex index_;
};

TEST_F(FileIndexFailureTest, AnswersAreThoseOfTheMapWhicheverAllocationFails) {
  const std::vector<std::wstring> paths = Paths(100);
  for (const Extent extent : {Extent::kOnce, Extent::kFromThenOn}) {
    bool failed = true;
    for (std::uint64_t number = 1; failed; ++number) {
      SCOPED_TRACE("allocation " + std::to_string(number));
      const std::int64_t live = LiveAllocations();
      std::size_t wrong = 0;
      {
        const AllocationFailure failure(number, extent);
        TryToAdd(paths);
        wrong = CountWrongAnswers(paths);
        failed = AllocationFailure::HasFailed();
      }
      EXPECT_EQ(wrong, 0u);
      TryToAdd(paths);
      EXPECT_EQ(files_.size(), 100u);
      EXPECT_EQ(CountWrongAnswers(paths), 0u);
      files_ = {};
      index_ = {};
      EXPECT_EQ(LiveAllocations(), live);
      ASSERT_LT(number, 2000u) << "it never stops to fail";
    }
  }
}

TEST_F(FileIndexFailureTest, IsTriedAgainOnceTheMapHasGrownByAnEighth) {
  const std::vector<std::wstring> paths = Paths(100);
  for (std::size_t path = 0; path < 64; ++path) {
    files_.try_emplace(paths[path]);
  }
  {
    const AllocationFailure failure(1, Extent::kFromThenOn);
    EXPECT_FALSE(index_.Prepare(files_));
  }
  for (std::size_t path = 64; path < 72; ++path) {
    EXPECT_FALSE(index_.Prepare(files_)) << files_.size();
    index_.FindOrAdd(files_, paths[path]);
  }
  EXPECT_FALSE(index_.Prepare(files_));
  index_.FindOrAdd(files_, paths[72]);
  EXPECT_TRUE(index_.Prepare(files_));
}

}  // namespace
}  // namespace zt::testing
