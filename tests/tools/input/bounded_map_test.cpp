#include "tools/replay/input/bounded_map.h"

#include <gtest/gtest.h>

#include "tests/tools/input/ordered.h"

namespace replay {
namespace {

TEST(BoundedMapTest, FindsWhatWasSetLast) {
  BoundedMap<int> map(2);
  EXPECT_TRUE(map.Set("a", 1));
  EXPECT_FALSE(map.Set("a", 2));
  ASSERT_NE(map.Find("a"), nullptr);
  EXPECT_EQ(*map.Find("a"), 2);
  EXPECT_EQ(map.Find("b"), nullptr);
}

TEST(BoundedMapTest, ForgetsTheOldestKeyBeyondItsCapacity) {
  BoundedMap<int> map(2);
  map.Set("a", 1);
  map.Set("b", 2);
  map.Set("c", 3);
  EXPECT_EQ(map.Find("a"), nullptr);
  EXPECT_NE(map.Find("b"), nullptr);
  EXPECT_NE(map.Find("c"), nullptr);
}

TEST(BoundedMapTest, NeverGrowsBeyondItsCapacityHoweverOftenKeysComeAndGo) {
  BoundedMap<int> map(3);
  for (int i = 0; i < 1000; ++i) {
    map.Set(std::to_string(i % 5), i);
    if (i % 2 == 0) {
      map.Erase(std::to_string(i % 5));
    }
    ASSERT_LE(map.size(), 3U);
  }
}

TEST(BoundedMapTest, EraseTellsWhetherTheKeyWasThere) {
  BoundedMap<int> map(2);
  map.Set("a", 1);
  EXPECT_TRUE(map.Erase("a"));
  EXPECT_FALSE(map.Erase("a"));
}

TEST(BoundedMapTest, NoChoiceOfKeysMakesItSlow) { EXPECT_TRUE(testing::IsOrdered<BoundedMap<int>::Entries>); }

}  // namespace
}  // namespace replay
