#include "engine/length_counts.h"

#include <gtest/gtest.h>

namespace zt::testing {
namespace {

TEST(LengthCountsTest, TellsTheNextLengthThereIs) {
  LengthCounts lengths;
  EXPECT_EQ(lengths.Next(0), LengthCounts::kNone);
  lengths.Add(3);
  lengths.Add(7);
  EXPECT_EQ(lengths.Next(0), 3u);
  EXPECT_EQ(lengths.Next(3), 3u);
  EXPECT_EQ(lengths.Next(4), 7u);
  EXPECT_EQ(lengths.Next(7), 7u);
  EXPECT_EQ(lengths.Next(8), LengthCounts::kNone);
  EXPECT_EQ(lengths.Next(LengthCounts::kNone), LengthCounts::kNone);
}

TEST(LengthCountsTest, LengthIsThereUntilItsLastTextIsRemoved) {
  LengthCounts lengths;
  lengths.Add(0);
  lengths.Add(5);
  lengths.Add(5);
  lengths.Remove(5);
  EXPECT_EQ(lengths.Next(1), 5u);
  lengths.Remove(5);
  EXPECT_EQ(lengths.Next(1), LengthCounts::kNone);
  EXPECT_EQ(lengths.Next(0), 0u);
}

}  // namespace
}  // namespace zt::testing
