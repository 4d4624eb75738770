#include "tools/replay/input/handle_table.h"

#include <gtest/gtest.h>

#include "tests/tools/input/ordered.h"

namespace replay {
namespace {

TEST(HandleTableTest, HandlesAreThoseOfOneProcess) {
  HandleTable table;
  table.Open(1, 0x10, "C:\\a").position = 5;
  table.Open(2, 0x10, "C:\\b");
  ASSERT_NE(table.Find(1, 0x10), nullptr);
  EXPECT_EQ(table.Find(1, 0x10)->name, "C:\\a");
  EXPECT_EQ(table.Find(1, 0x10)->position, 5U);
  EXPECT_EQ(table.Find(2, 0x10)->name, "C:\\b");
  EXPECT_EQ(table.Find(2, 0x10)->position, 0U);
  EXPECT_EQ(table.Find(3, 0x10), nullptr);
  EXPECT_EQ(table.Find(1, 0x14), nullptr);
}

TEST(HandleTableTest, AnOpenReplacesWhatTheHandleStoodFor) {
  HandleTable table;
  table.Open(1, 0x10, "C:\\a").position = 5;
  table.Open(1, 0x10, "C:\\b");
  EXPECT_EQ(table.Find(1, 0x10)->name, "C:\\b");
  EXPECT_EQ(table.Find(1, 0x10)->position, 0U);
}

TEST(HandleTableTest, DuplicatesShareThePosition) {
  HandleTable table;
  table.Open(1, 0x10, "C:\\a");
  table.Duplicate(1, 0x10, 0x20);
  table.Find(1, 0x20)->position = 7;
  EXPECT_EQ(table.Find(1, 0x10)->position, 7U);
  table.Close(1, 0x10);
  EXPECT_EQ(table.Find(1, 0x10), nullptr);
  ASSERT_NE(table.Find(1, 0x20), nullptr);
  EXPECT_EQ(table.Find(1, 0x20)->position, 7U);
}

TEST(HandleTableTest, ADuplicateOfSomethingElseIsNoFile) {
  HandleTable table;
  table.Open(1, 0x20, "C:\\a");
  table.Duplicate(1, 0x10, 0x20);
  EXPECT_EQ(table.Find(1, 0x20), nullptr);
}

TEST(HandleTableTest, CloseAllClosesThoseOfOneProcess) {
  HandleTable table;
  table.Open(1, 0x10, "C:\\a");
  table.Open(2, 0x10, "C:\\b");
  table.CloseAll(1);
  EXPECT_EQ(table.Find(1, 0x10), nullptr);
  EXPECT_NE(table.Find(2, 0x10), nullptr);
  table.Close(1, 0x10);  // Nothing happens.
}

TEST(HandleTableTest, NoChoiceOfIdsOrHandlesMakesItSlow) {
  EXPECT_TRUE(testing::IsOrdered<HandleTable::Processes>);
  EXPECT_TRUE(testing::IsOrdered<HandleTable::Handles>);
}

}  // namespace
}  // namespace replay
