#include "tools/replay/input/look_ahead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace replay {
namespace {

using ::testing::ElementsAre;

class LookAheadTest : public ::testing::Test {
 protected:
  // Reads 1, 2, 3 ... up to `last_`; fails at `bad_`.
  LookAhead<int> Rows(std::size_t rows_ahead) {
    return {[this](int& row) {
              if (next_ > last_) {
                return false;
              }
              if (next_ == bad_) {
                throw InputError("capture", static_cast<std::uint64_t>(bad_), "bad");
              }
              row = next_++;
              return true;
            },
            [this](const int& row) { learned_ = row; }, rows_ahead};
  }
  int next_ = 1;
  int last_ = 5;
  int bad_ = 0;
  int learned_ = 0;
};

TEST_F(LookAheadTest, RowsAheadAreLearnedBeforeARowIsHandedOut) {
  LookAhead<int> rows = Rows(2);
  int row = 0;
  ASSERT_TRUE(rows.Next(row));
  EXPECT_EQ(row, 1);
  EXPECT_EQ(learned_, 3);
  ASSERT_TRUE(rows.Next(row));
  EXPECT_EQ(row, 2);
  EXPECT_EQ(learned_, 4);
}

TEST_F(LookAheadTest, EveryRowComesOut) {
  LookAhead<int> rows = Rows(100);
  std::vector<int> all;
  int row = 0;
  while (rows.Next(row)) {
    all.push_back(row);
  }
  EXPECT_THAT(all, ElementsAre(1, 2, 3, 4, 5));
  EXPECT_FALSE(rows.Next(row));
}

TEST_F(LookAheadTest, AnErrorComesAfterTheRowsBeforeIt) {
  bad_ = 4;
  LookAhead<int> rows = Rows(100);
  int row = 0;
  for (int expected = 1; expected <= 3; ++expected) {
    ASSERT_TRUE(rows.Next(row));
    EXPECT_EQ(row, expected);
  }
  EXPECT_THROW(rows.Next(row), InputError);
}

}  // namespace
}  // namespace replay
