#include "tools/replay/input/known_processes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/input/ordered.h"
#include "tests/tools/input/reading.h"

namespace replay::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class KnownProcessesTest : public ::testing::Test {
 protected:
  // The events since the last look.
  std::vector<std::string> NewEvents() {
    std::vector<std::string> texts;
    Call call;
    while (events_.Pop(call)) {
      texts.push_back(EventText(call));
    }
    return texts;
  }
  EventQueue events_;
  KnownProcesses processes_;
};

TEST_F(KnownProcessesTest, AProcessIsEnteredOnceByNobodyWhereNoParentIsTold) {
  processes_.See({100, 0, "C:\\a.exe", "a.exe"}, 7, events_);
  processes_.See({100, 0, "C:\\a.exe", "a.exe"}, 8, events_);
  Call call;
  ASSERT_TRUE(events_.Pop(call));
  EXPECT_EQ(EventText(call), "c003 0 100 C:\\a.exe");
  EXPECT_EQ(call.record.Time, 7);
  EXPECT_EQ(PathText(call.record), "");
  EXPECT_FALSE(events_.Pop(call));
}

TEST_F(KnownProcessesTest, AKnownParentIsTheCreator) {
  processes_.See({100, 0, "C:\\parent.exe", "parent.exe"}, 1, events_);
  processes_.See({200, 100, "", "child.exe"}, 2, events_);
  Call call;
  ASSERT_TRUE(events_.Pop(call));
  ASSERT_TRUE(events_.Pop(call));
  EXPECT_EQ(EventText(call), "c003 100 200 child.exe");
  EXPECT_EQ(PathText(call.record), "C:\\parent.exe");
}

TEST_F(KnownProcessesTest, AnUnknownParentIsEnteredFirst) {
  processes_.See({200, 100, "C:\\child.exe", ""}, 2, events_);
  EXPECT_THAT(NewEvents(), ElementsAre("c003 0 100 pid 100", "c003 100 200 C:\\child.exe"));
  processes_.See({100, 50, "C:\\parent.exe", ""}, 3, events_);
  EXPECT_THAT(NewEvents(), IsEmpty());
}

TEST_F(KnownProcessesTest, TheImageOfAParentIsLearnedFromItsOwnRows) {
  processes_.See({200, 100, "C:\\child.exe", "child.exe"}, 2, events_);
  EXPECT_EQ(processes_.See({100, 0, "C:\\parent.exe", "parent.exe"}, 3, events_).image, "C:\\parent.exe");
}

TEST_F(KnownProcessesTest, AProcessIsNotItsOwnParent) {
  processes_.See({100, 100, "a.exe", ""}, 1, events_);
  EXPECT_THAT(NewEvents(), ElementsAre("c003 0 100 a.exe"));
}

TEST_F(KnownProcessesTest, AnIdWithAnotherProgramsNameIsAnotherProcess) {
  const std::uint64_t first = processes_.See({100, 0, "", "a.exe"}, 1, events_).generation;
  EXPECT_EQ(processes_.See({100, 0, "", "A.EXE"}, 2, events_).generation, first);
  EXPECT_NE(processes_.See({100, 0, "", "b.exe"}, 3, events_).generation, first);
  EXPECT_THAT(NewEvents(), ElementsAre("c003 0 100 a.exe", "c003 0 100 b.exe"));
}

TEST_F(KnownProcessesTest, ACreatedProcessIsKnown) {
  processes_.Create({5, 100, 9, "C:\\parent.exe"}, 200, "C:\\child.exe", events_);
  processes_.See({200, 100, "C:\\child.exe", "CHILD~1.EXE"}, 6, events_);
  EXPECT_THAT(NewEvents(), ElementsAre("c003 100 200 C:\\child.exe"));
}

TEST_F(KnownProcessesTest, ACreationReplacesAProcessOfTheSameId) {
  processes_.Create({5, 100, 9, {}}, 200, "C:\\one.exe", events_);
  const std::uint64_t first = processes_.Find(200)->generation;
  processes_.Find(200)->exited = true;
  processes_.Create({6, 100, 9, {}}, 200, "C:\\two.exe", events_);
  EXPECT_NE(processes_.Find(200)->generation, first);
  EXPECT_FALSE(processes_.Find(200)->exited);
  EXPECT_THAT(NewEvents(), ElementsAre("c003 100 200 C:\\one.exe", "c003 100 200 C:\\two.exe"));
}

TEST_F(KnownProcessesTest, AProcessWithoutAnyNameIsCalledByItsId) {
  processes_.Create({5, 100, 9, {}}, 200, "", events_);
  processes_.See({300, 0, "", ""}, 6, events_);
  EXPECT_THAT(NewEvents(), ElementsAre("c003 100 200 pid 200", "c003 0 300 pid 300"));
}

TEST_F(KnownProcessesTest, AStartWithoutACreationEntersAnew) {
  processes_.See({100, 0, "", "a.exe"}, 1, events_);
  processes_.Start({100, 50, "C:\\a.exe", "a.exe"}, 2, events_);
  EXPECT_THAT(NewEvents(), ElementsAre("c003 0 100 a.exe", "c003 0 50 pid 50", "c003 50 100 C:\\a.exe"));
}

TEST_F(KnownProcessesTest, NoChoiceOfIdsMakesItSlow) { EXPECT_TRUE(IsOrdered<KnownProcesses::Processes>); }

}  // namespace
}  // namespace replay::testing
