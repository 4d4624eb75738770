// The table of the state machine: its hash, its rows, adding and looking up.

#include "engine/transition_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "engine/transition_callbacks.h"
#include "tests/support/engine_test.h"

namespace zt::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;

constexpr std::uint32_t kInputs[] = {0x4001, 0x4002, 0x4003, 0x4004, 0x4005, 0x4006, 0x4007,
                                     0x4008, 0x4009, 0x400A, 0x400B, 0xC001, 0xC002, 0xC003};

std::uint64_t FirstCallback(TransitionContext* /*context*/) { return 1; }
std::uint64_t SecondCallback(TransitionContext* /*context*/) { return 2; }

// FNV-1a: for each byte, hash = (hash xor byte) * prime, modulo 2^64.
TEST(Fnv1aHashTest, HashesTheFourBytesLeastSignificantFirst) {
  constexpr std::uint64_t kBasis = 0xcbf29ce484222325;
  constexpr std::uint64_t kPrime = 0x100000001b3;
  // 0x4001 is stored as 01 40 00 00; a zero byte only multiplies.
  constexpr std::uint64_t kByHand = (((kBasis ^ 0x01) * kPrime) ^ 0x40) * kPrime * kPrime * kPrime;
  static_assert(kByHand == 0xd7898a7881980224);
  EXPECT_EQ(Fnv1aHash{}(0x4001), kByHand);
}

TEST(Fnv1aHashTest, TakesAllFourBytes) {
  EXPECT_EQ(Fnv1aHash{}(0), 0x4d25767f9dce13f5U);
  EXPECT_EQ(Fnv1aHash{}(1), 0xad2aca7747985764U);
  EXPECT_EQ(Fnv1aHash{}(6), 0x0d301e6ef1629ad3U);
  EXPECT_EQ(Fnv1aHash{}(0x400B), 0x175442cbdfb15fceU);
  EXPECT_EQ(Fnv1aHash{}(0x04030201), 0xbe7a5e775165785dU);
}

class TransitionTableTest : public EngineTest {
 protected:
  TransitionCallback Next(std::uint32_t state, std::uint32_t input) { return NextState(core().Transitions, state, input); }
};

TEST_F(TransitionTableTest, HasExactlyTheFifteenTransitions) {
  const std::map<std::pair<std::uint32_t, std::uint32_t>, TransitionCallback> rows = {
      {{0, 0x4001}, UnknownCreate},   {{6, 0x4001}, DeletedCreate},      {{1, 0x4003}, OpenExistingRead},
      {{1, 0x4008}, OpenReadSync},    {{2, 0x4008}, OpenReadSync},       {{2, 0x4004}, ReadWrite},
      {{6, 0x4004}, DeleteWrite},     {{3, 0x4004}, SyncWrite},          {{5, 0x4005}, WriteSimilarDelete},
      {{2, 0x4005}, ReadDelete},      {{5, 0x400B}, WriteSimilarDelete}, {{2, 0x400B}, ReadDelete},
      {{6, 0x4006}, DeleteOrgRename}, {{3, 0x4006}, SyncRename},         {{5, 0x4006}, WriteSimilarRename},
  };
  ASSERT_EQ(rows.size(), 15U);
  for (std::uint32_t state = 0; state <= 11; ++state) {
    for (const std::uint32_t input : kInputs) {
      const auto row = rows.find({state, input});
      EXPECT_EQ(Next(state, input), row == rows.end() ? nullptr : row->second) << state << " on " << std::hex << input;
    }
  }
}

TEST_F(TransitionTableTest, HoldsNoRowBeyondTheFifteen) {
  std::size_t count = 0;
  for (const auto& [state, row] : core().Transitions) {
    count += row.size();
  }
  EXPECT_EQ(count, 15U);
  EXPECT_EQ(core().Transitions.size(), 6U);  // From-states 0, 1, 2, 3, 5 and 6.
}

TEST_F(TransitionTableTest, BothLevelsAskForEightBucketsAndAtMostOneEntryEach) {
  EXPECT_GE(core().Transitions.bucket_count(), kTransitionBuckets);
  EXPECT_EQ(core().Transitions.max_load_factor(), 1.0F);
  for (const auto& [state, row] : core().Transitions) {
    EXPECT_GE(row.bucket_count(), kTransitionBuckets) << state;
    EXPECT_EQ(row.max_load_factor(), 1.0F) << state;
  }
}

TEST_F(TransitionTableTest, TheStatesHaveTheValuesThatTracesPrint) {
  EXPECT_EQ(ZT_UNKNOWN, 0U);
  EXPECT_EQ(ZT_OPEN_EXISTING, 1U);
  EXPECT_EQ(ZT_READ_START, 2U);
  EXPECT_EQ(ZT_SECTION_SYNC, 3U);
  EXPECT_EQ(ZT_OVERWRITE, 4U);
  EXPECT_EQ(ZT_WRITE_SIMILAR, 5U);
  EXPECT_EQ(ZT_DELETE_ORG, 6U);
  EXPECT_EQ(ZT_RENAME_SECTION_SYNC, 7U);
  EXPECT_EQ(ZT_WRITTEN_DELETE, 8U);
  EXPECT_EQ(ZT_WRITE_SIMILAR_SYNC, 9U);
  EXPECT_EQ(ZT_MAX, 10U);
}

TEST_F(TransitionTableTest, BothDeleteCodesDoTheSameInEveryState) {
  for (std::uint32_t state = 0; state <= 10; ++state) {
    EXPECT_EQ(Next(state, 0x400B), Next(state, 0x4005)) << state;
  }
}

TEST_F(TransitionTableTest, TerminalStatesHaveNoTransitions) {
  for (const std::uint32_t state : {4U, 7U, 8U, 9U, 10U}) {
    EXPECT_EQ(core().Transitions.count(state), 0U) << state;
  }
}

TEST_F(TransitionTableTest, InitTracesTheAdditionsInTheirOrder) {
  TraceCapture trace(0x2);
  trace.Take();
  std::shared_ptr<void> engine;
  ZtInitEngineCore(engine, 1);
  const std::vector<TraceLine> lines = trace.Take();
  const std::vector<std::string> messages = MessagesOf(lines);
  EXPECT_THAT(messages, ElementsAre("Adding Transition from state 0 with input 0x004001",  //
                                    "Adding Transition from state 6 with input 0x004001",  //
                                    "Adding Transition from state 1 with input 0x004003",  //
                                    "Adding Transition from state 1 with input 0x004008",  //
                                    "Adding Transition from state 2 with input 0x004008",  //
                                    "Adding Transition from state 2 with input 0x004004",  //
                                    "Adding Transition from state 6 with input 0x004004",  //
                                    "Adding Transition from state 3 with input 0x004004",  //
                                    "Adding Transition from state 5 with input 0x004005",  //
                                    "Adding Transition from state 2 with input 0x004005",  //
                                    "Adding Transition from state 5 with input 0x00400b",  //
                                    "Adding Transition from state 2 with input 0x00400b",  //
                                    "Adding Transition from state 6 with input 0x004006",  //
                                    "Adding Transition from state 3 with input 0x004006",  //
                                    "Adding Transition from state 5 with input 0x004006"));
  EXPECT_THAT(lines, Each(Field(&TraceLine::level, "debug")));
}

TEST_F(TransitionTableTest, AddingAPairTwiceKeepsTheSecondCallback) {
  TransitionTable table;
  AddTransition(table, 3, 0x4001, FirstCallback);
  AddTransition(table, 3, 0x4001, SecondCallback);
  EXPECT_EQ(NextState(table, 3, 0x4001), &SecondCallback);
  EXPECT_EQ(table.at(3).size(), 1U);
}

TEST_F(TransitionTableTest, AddingMakesTheRowOfANewStateAndKeepsTheOthers) {
  TransitionTable table;
  AddTransition(table, 3, 0x4001, FirstCallback);
  AddTransition(table, 4, 0x4001, SecondCallback);
  AddTransition(table, 3, 0x4002, SecondCallback);
  EXPECT_EQ(NextState(table, 3, 0x4001), &FirstCallback);
  EXPECT_EQ(NextState(table, 3, 0x4002), &SecondCallback);
  EXPECT_EQ(NextState(table, 4, 0x4001), &SecondCallback);
  EXPECT_EQ(NextState(table, 4, 0x4002), nullptr);
}

TEST_F(TransitionTableTest, ManyStatesAndInputsAreAllFoundAgain) {
  TransitionTable table;
  for (std::uint32_t state = 0; state < 40; ++state) {
    for (std::uint32_t input = 0; input < 40; ++input) {
      AddTransition(table, state * 0x01010101, input * 0x01000001, (state + input) % 2 == 0 ? FirstCallback : SecondCallback);
    }
  }
  for (std::uint32_t state = 0; state < 40; ++state) {
    for (std::uint32_t input = 0; input < 40; ++input) {
      EXPECT_EQ(NextState(table, state * 0x01010101, input * 0x01000001),
                (state + input) % 2 == 0 ? &FirstCallback : &SecondCallback);
    }
  }
}

TEST_F(TransitionTableTest, ALookUpThatMissesChangesNothing) {
  TransitionTable table;
  AddTransition(table, 3, 0x4001, FirstCallback);
  EXPECT_EQ(NextState(table, 9, 0x4001), nullptr);
  EXPECT_EQ(NextState(table, 3, 0x4002), nullptr);
  EXPECT_EQ(table.size(), 1U);
  EXPECT_EQ(table.at(3).size(), 1U);
}

TEST_F(TransitionTableTest, EveryLookUpIsTracedAlsoWhenItMisses) {
  TraceCapture trace(0x2);
  trace.Take();
  Next(0, 0x4001);
  Next(4, 0x400B);
  Next(11, 0xC003);
  EXPECT_THAT(trace.TakeMessages(), ElementsAre("Next State from 0 with 0x004001", "Next State from 4 with 0x00400b",
                                                "Next State from 11 with 0x00c003"));
}

TEST_F(TransitionTableTest, WithoutTheDebugBitNeitherLookUpNorAdditionIsTraced) {
  TraceCapture trace(0x1 | 0x4);
  trace.Take();
  TransitionTable table;
  AddTransition(table, 3, 0x4001, FirstCallback);
  NextState(table, 3, 0x4001);
  NextState(table, 9, 0x4001);
  EXPECT_THAT(trace.Take(), IsEmpty());
}

}  // namespace
}  // namespace zt::testing
