// Links, live counts, climbs, families and collection of the process tree.

#include "engine/process_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

// Short names for keys: a process and its time are the same number.
constexpr ZtProcKey Key(std::uint64_t number) { return {number, static_cast<std::int64_t>(number)}; }
constexpr ZtProcKey kNobody = {99999999, 99999999};
constexpr std::uint32_t kNoLimit = std::numeric_limits<std::uint32_t>::max();

class ProcessTreeTest : public ::testing::Test {
 protected:
  ProcessTree::Entry& Insert(const ZtProcKey& child, const ZtProcKey& parent = kNobody, std::wstring image = L"") {
    ProcessItem item;
    item.Pid = child.Pid;
    item.ImagePath = std::move(image);
    return tree_.Insert(child, parent, std::move(item));
  }
  void Exit(std::uint64_t number) { tree_.MarkExited(*tree_.Find(Key(number))); }

  // Processes 1, 2, ... count, each the creator of the next.
  void InsertChain(std::uint64_t count) {
    Insert(Key(1));
    for (std::uint64_t number = 2; number <= count; ++number) {
      Insert(Key(number), Key(number - 1));
    }
  }
  // The same, closed: the last creates the first.
  void InsertCycle(std::uint64_t count) {
    InsertChain(count);
    Insert(Key(1), Key(count));
  }

  std::uint32_t Live(std::uint64_t number) { return tree_.Find(Key(number))->LiveCount; }
  std::int32_t Exited(std::uint64_t number) { return tree_.Find(Key(number))->Exited; }
  ZtProcKey Parent(std::uint64_t number) { return tree_.Find(Key(number))->parentKey; }
  std::vector<ZtProcKey>& Children(std::uint64_t number) { return tree_.Find(Key(number))->children; }

  std::vector<std::uint64_t> Climbed(std::uint64_t first) {
    std::vector<std::uint64_t> pids;
    tree_.Climb(Key(first), [&pids](ProcessTree::Entry& entry) { pids.push_back(entry.key.Pid); });
    return pids;
  }
  std::vector<std::uint64_t> FamilyOf(const ZtProcKey& root) {
    std::vector<std::uint64_t> pids;
    for (const ProcessTree::Entry* entry : ProcessFamily(tree_, root)) {
      pids.push_back(entry->key.Pid);
    }
    return pids;
  }

  ProcessTree tree_;
};

TEST(ProcKeyTest, OnlyTheLow32BitsOfAParentsIdSayThatThereIsNone) {
  EXPECT_TRUE(NamesNoParent({0, 0}));
  EXPECT_TRUE(NamesNoParent({0, 77}));
  EXPECT_TRUE(NamesNoParent({0x100000000, 77}));
  EXPECT_FALSE(NamesNoParent({1, 0}));
  EXPECT_FALSE(NamesNoParent({0xFFFFFFFF80000000, 0}));
}

TEST_F(ProcessTreeTest, AProcessOfAnUnknownCreatorHasNoLinkAndCountsItself) {
  const ProcessTree::Entry& entry = Insert(Key(1), kNobody, L"C:\\a.exe");
  EXPECT_EQ(entry.key, Key(1));
  EXPECT_EQ(entry.parentKey, (ZtProcKey{0, 0}));
  EXPECT_THAT(entry.children, IsEmpty());
  EXPECT_EQ(entry.LiveCount, 1U);
  EXPECT_EQ(entry.Exited, 0);
  EXPECT_EQ(entry.Item.ImagePath, L"C:\\a.exe");
  EXPECT_EQ(tree_.Find(Key(1)), &entry);
  EXPECT_EQ(tree_.Find(kNobody), nullptr);
  EXPECT_EQ(tree_.size(), 1U);
}

TEST_F(ProcessTreeTest, AChildIsLinkedBothWays) {
  Insert(Key(1));
  Insert(Key(3), Key(1));
  Insert(Key(2), Key(1));
  EXPECT_EQ(Parent(2), Key(1));
  EXPECT_EQ(Parent(3), Key(1));
  EXPECT_THAT(Children(1), ElementsAre(Key(3), Key(2)));
}

TEST_F(ProcessTreeTest, EachInsertionRaisesTheLiveCountsOfAllAncestors) {
  InsertChain(3);
  EXPECT_EQ(Live(1), 3U);
  EXPECT_EQ(Live(2), 2U);
  EXPECT_EQ(Live(3), 1U);
  Insert(Key(4), Key(2));
  EXPECT_EQ(Live(1), 4U);
  EXPECT_EQ(Live(2), 3U);
  EXPECT_EQ(Live(3), 1U);
}

TEST_F(ProcessTreeTest, AnExitLowersTheLiveCountsOfTheProcessAndItsAncestors) {
  InsertChain(3);
  Exit(2);
  EXPECT_EQ(Live(1), 2U);
  EXPECT_EQ(Live(2), 1U);
  EXPECT_EQ(Live(3), 1U);
  EXPECT_EQ(Exited(2), 1);
  EXPECT_EQ(tree_.Find(Key(2))->Item.Exiting, 1U);
  EXPECT_EQ(Exited(1), 0);
  EXPECT_EQ(Exited(3), 0);
}

TEST_F(ProcessTreeTest, CountsOfDeepChainsReachTheTop) {
  InsertChain(100);
  EXPECT_EQ(Live(1), 100U);
  EXPECT_EQ(Live(50), 51U);
  Exit(100);
  EXPECT_EQ(Live(1), 99U);
  EXPECT_EQ(Live(100), 0U);
}

TEST_F(ProcessTreeTest, AnExitLowersCountsOnlyUpToTheFirstMissingAncestor) {
  InsertChain(4);
  // A key that nobody has stands where the grandparent was.
  tree_.Find(Key(3))->parentKey = kNobody;
  Exit(4);
  EXPECT_EQ(Live(4), 0U);
  EXPECT_EQ(Live(3), 1U);
  EXPECT_EQ(Live(2), 3U);
  EXPECT_EQ(Live(1), 4U);
}

TEST_F(ProcessTreeTest, TheLiveCountWrapsBelowZero) {
  Insert(Key(1));
  Exit(1);
  Exit(1);
  EXPECT_EQ(Live(1), 0xFFFFFFFF);
}

TEST_F(ProcessTreeTest, ClimbsDoNotEndAtAKnownProcessWhoseIdHasZeroLowBits) {
  const ZtProcKey zero = {0x100000000, 5};
  Insert(Key(1));
  Insert(zero, Key(1));
  Insert(Key(2), zero);
  EXPECT_EQ(Live(1), 3U);
  EXPECT_EQ(tree_.Find(zero)->LiveCount, 2U);
  EXPECT_THAT(Climbed(2), ElementsAre(2, 0x100000000, 1));
  EXPECT_EQ(tree_.FamilyRoot(Key(2), 4), Key(1));
}

// The same key once more.

TEST_F(ProcessTreeTest, TheSameKeyTwiceReplacesTheItemButIsListedTwice) {
  Insert(Key(1));
  Insert(Key(2), Key(1), L"C:\\first.exe");
  Insert(Key(2), Key(1), L"C:\\second.exe");
  EXPECT_EQ(tree_.size(), 2U);
  EXPECT_EQ(tree_.Find(Key(2))->Item.ImagePath, L"C:\\second.exe");
  EXPECT_THAT(Children(1), ElementsAre(Key(2), Key(2)));
  EXPECT_EQ(Live(2), 1U);
  EXPECT_EQ(Live(1), 3U);
}

TEST_F(ProcessTreeTest, AnEntryThatExistsKeepsItsChildrenAndItsExitedFlag) {
  InsertChain(3);
  Exit(2);
  ASSERT_EQ(Exited(2), 1);
  Insert(Key(2), Key(1));
  EXPECT_THAT(Children(2), ElementsAre(Key(3)));
  EXPECT_EQ(Exited(2), 1);
  EXPECT_EQ(Live(2), 1U);
  EXPECT_EQ(tree_.Find(Key(2))->Item.Exiting, 0U);
  EXPECT_EQ(Live(1), 3U);  // 3, less one for the exit, and one more for the insertion.
}

TEST_F(ProcessTreeTest, AnEntryThatExistsTakesAKnownCreatorAsItsParent) {
  Insert(Key(1));
  Insert(Key(2));
  Insert(Key(3), Key(1));
  Insert(Key(3), Key(2));
  EXPECT_EQ(Parent(3), Key(2));
  EXPECT_THAT(Children(1), ElementsAre(Key(3)));
  EXPECT_THAT(Children(2), ElementsAre(Key(3)));
  EXPECT_EQ(Live(1), 2U);
  EXPECT_EQ(Live(2), 2U);
}

TEST_F(ProcessTreeTest, AnEntryThatExistsKeepsItsParentWhenTheNewCreatorIsUnknown) {
  Insert(Key(1));
  Insert(Key(2), Key(1));
  Insert(Key(2), kNobody, L"C:\\new.exe");
  EXPECT_EQ(Parent(2), Key(1));
  EXPECT_EQ(tree_.Find(Key(2))->Item.ImagePath, L"C:\\new.exe");
  EXPECT_EQ(Live(2), 1U);
  EXPECT_EQ(Live(1), 2U);
}

// Cycles of parents.

TEST_F(ProcessTreeTest, AProcessThatCreatesItselfIsItsOwnParentAndCountsOne) {
  InsertCycle(1);
  EXPECT_EQ(Parent(1), Key(1));
  EXPECT_THAT(Children(1), ElementsAre(Key(1)));
  EXPECT_EQ(Live(1), 1U);
  EXPECT_THAT(Climbed(1), ElementsAre(1));
  EXPECT_THAT(FamilyOf(Key(1)), ElementsAre(1));
  EXPECT_EQ(tree_.FamilyRoot(Key(1), 4), Key(1));
  Exit(1);
  EXPECT_EQ(Live(1), 0U);
}

TEST_F(ProcessTreeTest, ACycleOfTwoEndsEveryClimbAndIsCountedOnce) {
  InsertCycle(2);
  EXPECT_EQ(Parent(1), Key(2));
  EXPECT_EQ(Parent(2), Key(1));
  EXPECT_EQ(Live(1), 1U);  // Set anew after the climb.
  EXPECT_EQ(Live(2), 2U);
  EXPECT_THAT(Climbed(1), ElementsAre(1, 2));
  EXPECT_THAT(Climbed(2), ElementsAre(2, 1));
  EXPECT_THAT(FamilyOf(Key(1)), ElementsAre(1, 2));
  EXPECT_THAT(FamilyOf(Key(2)), ElementsAre(2, 1));
  Exit(1);
  EXPECT_EQ(Live(1), 0U);
  EXPECT_EQ(Live(2), 1U);
  Exit(2);
  EXPECT_EQ(Live(1), 0xFFFFFFFF);
  EXPECT_EQ(Live(2), 0U);
}

TEST_F(ProcessTreeTest, ACycleOfThreeEndsEveryClimbAndIsCountedOnce) {
  InsertCycle(3);
  EXPECT_EQ(Parent(1), Key(3));
  EXPECT_EQ(Live(1), 1U);
  EXPECT_EQ(Live(2), 3U);
  EXPECT_EQ(Live(3), 2U);
  EXPECT_THAT(Climbed(1), ElementsAre(1, 3, 2));
  EXPECT_THAT(FamilyOf(Key(2)), ElementsAre(2, 3, 1));
  Exit(2);
  EXPECT_EQ(Live(2), 2U);
  EXPECT_EQ(Live(1), 0U);
  EXPECT_EQ(Live(3), 1U);
}

TEST_F(ProcessTreeTest, AClimbFromOutsideACycleVisitsItOnce) {
  InsertCycle(3);
  Insert(Key(4), Key(3));
  EXPECT_THAT(Climbed(4), ElementsAre(4, 3, 2, 1));
  EXPECT_EQ(Live(4), 1U);
  EXPECT_EQ(Live(3), 3U);
  EXPECT_EQ(Live(2), 4U);
  EXPECT_EQ(Live(1), 2U);
}

TEST_F(ProcessTreeTest, ACycleLongerThanAnyUsualChainIsClimbedOnce) {
  InsertCycle(100);
  EXPECT_THAT(Climbed(1), SizeIs(100));
  EXPECT_THAT(FamilyOf(Key(7)), SizeIs(100));
}

TEST_F(ProcessTreeTest, TheRootOfACycleIsAMemberWhateverTheLimit) {
  InsertCycle(3);
  for (const std::uint32_t limit : {0U, 1U, 2U, 3U, 4U, 1000U}) {
    EXPECT_THAT(FamilyOf(tree_.FamilyRoot(Key(1), limit)), UnorderedElementsAre(1, 2, 3)) << limit;
  }
}

// The levels of a climb go round a cycle: 1, 3, 2, 1, 3, ...
TEST_F(ProcessTreeTest, TheRootOfACycleLiesTheLimitAboveTheProcess) {
  InsertCycle(3);
  EXPECT_EQ(tree_.FamilyRoot(Key(1), 1), Key(3));
  EXPECT_EQ(tree_.FamilyRoot(Key(1), 2), Key(2));
  EXPECT_EQ(tree_.FamilyRoot(Key(1), 3), Key(1));
  EXPECT_EQ(tree_.FamilyRoot(Key(1), 4), Key(3));
  EXPECT_EQ(tree_.FamilyRoot(Key(1), 999), Key(1));
}

TEST_F(ProcessTreeTest, TheWayIntoACycleCountsAmongTheLevels) {
  InsertCycle(2);
  Insert(Key(3), Key(2));
  Insert(Key(4), Key(3));
  EXPECT_EQ(tree_.FamilyRoot(Key(4), 1), Key(3));
  EXPECT_EQ(tree_.FamilyRoot(Key(4), 2), Key(2));
  EXPECT_EQ(tree_.FamilyRoot(Key(4), 3), Key(1));
  EXPECT_EQ(tree_.FamilyRoot(Key(4), 4), Key(2));
  EXPECT_EQ(tree_.FamilyRoot(Key(4), 999), Key(1));
}

// Climbs.

TEST_F(ProcessTreeTest, AClimbGoesFromTheFirstProcessToTheLastKnownAncestor) {
  InsertChain(3);
  EXPECT_THAT(Climbed(3), ElementsAre(3, 2, 1));
  EXPECT_THAT(Climbed(1), ElementsAre(1));
}

TEST_F(ProcessTreeTest, AClimbFromAnUnknownProcessVisitsNothing) { EXPECT_THAT(Climbed(1), IsEmpty()); }

// The family's root.

TEST_F(ProcessTreeTest, TheRootIsAtMostTheLimitAboveTheProcess) {
  InsertChain(6);
  EXPECT_EQ(tree_.FamilyRoot(Key(6), 0), Key(6));
  EXPECT_EQ(tree_.FamilyRoot(Key(6), 1), Key(5));
  EXPECT_EQ(tree_.FamilyRoot(Key(6), 3), Key(3));
  EXPECT_EQ(tree_.FamilyRoot(Key(6), 4), Key(2));
  EXPECT_EQ(tree_.FamilyRoot(Key(6), 5), Key(1));
  EXPECT_EQ(tree_.FamilyRoot(Key(6), 6), Key(1));
  EXPECT_EQ(tree_.FamilyRoot(Key(6), kNoLimit), Key(1));
}

TEST_F(ProcessTreeTest, AShortChainEndsAtItsTop) {
  InsertChain(3);
  EXPECT_EQ(tree_.FamilyRoot(Key(3), 4), Key(1));
  EXPECT_EQ(tree_.FamilyRoot(Key(2), 4), Key(1));
  EXPECT_EQ(tree_.FamilyRoot(Key(1), 4), Key(1));
}

TEST_F(ProcessTreeTest, AnUnknownKeyIsItsOwnRootAndHasNoFamily) {
  InsertChain(3);
  EXPECT_EQ(tree_.FamilyRoot(kNobody, 4), kNobody);
  EXPECT_THAT(FamilyOf(kNobody), IsEmpty());
}

// Families.

TEST_F(ProcessTreeTest, AFamilyIsListedDepthFirstInOrderOfCreation) {
  Insert(Key(5));
  Insert(Key(4), Key(5));
  Insert(Key(1), Key(5));
  Insert(Key(3), Key(4));
  Insert(Key(6), Key(1));
  Insert(Key(2), Key(4));
  EXPECT_THAT(FamilyOf(Key(5)), ElementsAre(5, 4, 3, 2, 1, 6));
  EXPECT_THAT(FamilyOf(Key(4)), ElementsAre(4, 3, 2));
}

TEST_F(ProcessTreeTest, AFamilyNamesAProcessOnceThoughListsNameItTwice) {
  Insert(Key(1));
  Insert(Key(2), Key(1));
  Insert(Key(3), Key(1));
  Insert(Key(2), Key(1));
  Insert(Key(2), Key(3));
  EXPECT_THAT(FamilyOf(Key(1)), ElementsAre(1, 2, 3));
}

TEST_F(ProcessTreeTest, AFamilyLeavesOutChildrenThatAreNotInTheTree) {
  InsertChain(2);
  Children(1).insert(Children(1).begin(), kNobody);
  EXPECT_THAT(FamilyOf(Key(1)), ElementsAre(1, 2));
}

TEST_F(ProcessTreeTest, AnExitedProcessStaysInItsFamily) {
  InsertChain(3);
  Exit(2);
  EXPECT_THAT(FamilyOf(Key(1)), ElementsAre(1, 2, 3));
}

// Built from the bottom, where each insertion has a short climb: a process is entered and its child is then re-entered under
// it.
TEST_F(ProcessTreeTest, AFamilyOfAHundredThousandGenerationsIsWalked) {
  constexpr std::uint64_t kGenerations = 100000;
  Insert(Key(kGenerations));
  for (std::uint64_t number = kGenerations - 1; number > 0; --number) {
    Insert(Key(number));
    Insert(Key(number + 1), Key(number));
  }
  const std::vector<std::uint64_t> family = FamilyOf(Key(1));
  ASSERT_THAT(family, SizeIs(kGenerations));
  EXPECT_EQ(family.back(), kGenerations);
  EXPECT_THAT(Climbed(kGenerations), SizeIs(kGenerations));
  EXPECT_EQ(tree_.FamilyRoot(Key(kGenerations), kNoLimit), Key(1));
}

// The processor time of a search for the root at the end of a chain, in clock ticks for many searches.
std::clock_t TimeOfRoots(const ProcessTree& tree, std::uint64_t from) {
  const std::clock_t start = std::clock();
  for (int search = 0; search < 2000; ++search) {
    EXPECT_EQ(tree.FamilyRoot(Key(from), 4), Key(from - 4));
  }
  return std::clock() - start;
}

// At most four levels are looked at. A walk over the whole ancestry takes thousands of times as long.
TEST_F(ProcessTreeTest, TheRootIsFoundInADeepTreeAsInAShallowOne) {
  constexpr std::uint64_t kGenerations = 20000;
  Insert(Key(kGenerations));
  for (std::uint64_t number = kGenerations - 1; number > 0; --number) {
    Insert(Key(number));
    Insert(Key(number + 1), Key(number));
  }
  const std::clock_t shallow = TimeOfRoots(tree_, 5);
  EXPECT_LT(TimeOfRoots(tree_, kGenerations), 100 * (shallow + CLOCKS_PER_SEC / 1000));
}

// Collection.

// Process 3 was created by 1 and then, under the same key, by 2: it leaves the list of the creator that it has now.
TEST_F(ProcessTreeTest, AProcessWithANewParentStaysInTheListOfTheFormerOne) {
  Insert(Key(1));
  Insert(Key(2));
  Insert(Key(3), Key(1));
  Insert(Key(4), Key(1));
  Insert(Key(3), Key(2));
  Exit(3);
  Exit(4);
  tree_.CollectExited();
  tree_.CollectExited();
  EXPECT_EQ(tree_.Find(Key(3)), nullptr);
  EXPECT_EQ(tree_.Find(Key(4)), nullptr);
  EXPECT_THAT(Children(1), ElementsAre(Key(3)));
  EXPECT_THAT(Children(2), IsEmpty());
}

TEST_F(ProcessTreeTest, AProcessThatNeverExitedIsNotCollected) {
  InsertChain(2);
  tree_.CollectExited();
  EXPECT_EQ(tree_.size(), 2U);
}

TEST_F(ProcessTreeTest, AnExitedProcessSurvivesOneCollection) {
  Insert(Key(1));
  Exit(1);
  tree_.CollectExited();
  ASSERT_EQ(tree_.size(), 1U);
  EXPECT_EQ(Exited(1), 0);
  tree_.CollectExited();
  EXPECT_EQ(tree_.size(), 0U);
}

TEST_F(ProcessTreeTest, AnExitedProcessWithALiveDescendantStays) {
  InsertChain(2);
  Exit(1);
  for (int i = 0; i < 4; ++i) {
    tree_.CollectExited();
  }
  EXPECT_EQ(tree_.size(), 2U);
  EXPECT_EQ(Exited(1), 0);
}

TEST_F(ProcessTreeTest, TheCollectedProcessLeavesItsParentsListAndItsSiblingsKeepTheirOrder) {
  Insert(Key(1));
  for (const std::uint64_t number : {4U, 2U, 5U, 3U}) {
    Insert(Key(number), Key(1));
  }
  Exit(2);
  tree_.CollectExited();
  tree_.CollectExited();
  EXPECT_THAT(Children(1), ElementsAre(Key(4), Key(5), Key(3)));
  EXPECT_EQ(tree_.Find(Key(2)), nullptr);
}

TEST_F(ProcessTreeTest, CollectingRemovesOneOfTwoEqualLinks) {
  Insert(Key(1));
  Insert(Key(2), Key(1));
  Insert(Key(3), Key(1));
  Insert(Key(2), Key(1));
  Exit(2);
  tree_.CollectExited();
  tree_.CollectExited();
  EXPECT_THAT(Children(1), ElementsAre(Key(3), Key(2)));
  EXPECT_THAT(FamilyOf(Key(1)), ElementsAre(1, 3));
}

TEST_F(ProcessTreeTest, ChildrenOfACollectedProcessStayWithTheirParentKey) {
  InsertChain(2);
  Exit(1);
  tree_.CollectExited();
  Exit(2);
  tree_.CollectExited();
  EXPECT_EQ(tree_.Find(Key(1)), nullptr);
  ASSERT_NE(tree_.Find(Key(2)), nullptr);
  EXPECT_EQ(Parent(2), Key(1));
  EXPECT_THAT(Climbed(2), ElementsAre(2));
}

TEST_F(ProcessTreeTest, AnEntryWhoseCountWrappedIsNeverCollected) {
  Insert(Key(1));
  Exit(1);
  Exit(1);
  tree_.CollectExited();
  tree_.CollectExited();
  tree_.CollectExited();
  EXPECT_EQ(tree_.size(), 1U);
}

TEST_F(ProcessTreeTest, ACollectedSelfCreationIsErasedOnce) {
  InsertCycle(1);
  Exit(1);
  tree_.CollectExited();
  tree_.CollectExited();
  EXPECT_EQ(tree_.size(), 0U);
}

}  // namespace
}  // namespace zt::testing
