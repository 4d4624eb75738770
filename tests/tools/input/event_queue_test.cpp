#include "tools/replay/input/event_queue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/input/reading.h"

namespace replay::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

TEST(EventQueueTest, EventsComeOutInOrderAndNumbered) {
  EventQueue events;
  events.Add({10, 1, 2, "C:\\dir\\a.exe"}, BehaviorCreate, 5, "C:\\x");
  events.Add({11, 1, 2, "a.exe"}, BehaviorDelete, 0, "C:\\x");
  Call call;
  ASSERT_TRUE(events.Pop(call));
  EXPECT_EQ(call.kind, CallKind::kInsertLog);
  EXPECT_EQ(EventText(call), "4001 1 5 C:\\x");
  EXPECT_EQ(call.record.Time, 10);
  EXPECT_EQ(call.record.Tid, 2U);
  EXPECT_EQ(PathText(call.record), "C:\\dir\\a.exe");
  EXPECT_EQ(call.number, 1U);
  ASSERT_TRUE(events.Pop(call));
  EXPECT_EQ(EventText(call), "4005 1 0 C:\\x");
  EXPECT_EQ(call.number, 2U);
  EXPECT_FALSE(events.Pop(call));
}

TEST(EventQueueTest, ARepeatedEventMovesOnByItsStep) {
  EventQueue events;
  events.Add({}, BehaviorRead, 100, "x", {3, 50});
  std::vector<std::string> all;
  Call call;
  while (events.Pop(call)) {
    all.push_back(EventText(call));
  }
  EXPECT_THAT(all, ElementsAre("4003 0 100 x", "4003 0 150 x", "4003 0 200 x"));
  EXPECT_EQ(call.number, 3U);
}

TEST(EventQueueTest, CutTargetsAreCountedForEachTime) {
  EventQueue events;
  events.Add({}, BehaviorRead, 0, std::string(525, 'x'), {3, 0});
  EXPECT_EQ(events.counts().targets_cut, 3U);
}

TEST(EventQueueTest, SkippedRowsAreCountedByReason) {
  EventQueue events;
  events.Skip("a");
  events.Skip("b");
  events.Skip("a");
  EXPECT_THAT(events.counts().skipped, ElementsAre(Pair("a", 2), Pair("b", 1)));
}

}  // namespace
}  // namespace replay::testing
