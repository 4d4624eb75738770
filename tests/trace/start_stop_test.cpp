#include "trace/start_stop.h"

#include "tests/trace/trace_test.h"

namespace zt::testing {
namespace {

using StartStopTest = TraceTest;

TEST_F(StartStopTest, StartSetsFlagsAndName) {
  Start(0x10000102);
  EXPECT_EQ(TraceFlags, 0x10000102u);
  EXPECT_STREQ(SharedTraceState().module_name, "zteng");
  EXPECT_TRUE(SharedTraceState().started);
  EXPECT_TRUE(SharedTraceState().lock.IsInitialised());
}

TEST_F(StartStopTest, SecondStartChangesNothing) {
  Start(0x100);
  EXPECT_FALSE(TraceBringUp(0x800, nullptr));
  EXPECT_EQ(TraceFlags, 0x100u);
  EXPECT_EQ(SharedTraceState().stream, &stream_);
}

TEST_F(StartStopTest, StopWritesWhatIsPendingAndClosesTheFile) {
  Start(0x100 | 0xFF0000);
  TracePrint(nullptr, 0, 1, "", "last words");
  TraceTakeDown();
  EXPECT_EQ(stream_.text, "last words\r\n");
  EXPECT_FALSE(stream_.IsOpen());
}

TEST_F(StartStopTest, StopClearsTheState) {
  Start(0xF00);
  TraceTakeDown();
  const TraceState& state = SharedTraceState();
  EXPECT_FALSE(state.started);
  EXPECT_EQ(TraceFlags, 0u);
  EXPECT_STREQ(state.module_name, "");
  EXPECT_EQ(state.ring, nullptr);
  EXPECT_EQ(state.stream, nullptr);
  EXPECT_EQ(state.fill, 0u);
  EXPECT_FALSE(state.lock.IsInitialised());
}

TEST_F(StartStopTest, StopWithoutStartDoesNothing) {
  TraceTakeDown();
  EXPECT_FALSE(SharedTraceState().started);
}

TEST_F(StartStopTest, LibraryStartsAgain) {
  for (const char* text : {"first", "second"}) {
    Start(0x100 | 0xFF0000);
    TracePrint(nullptr, 0, 1, "", "%s", text);
    TraceTakeDown();
  }
  EXPECT_EQ(stream_.text, "first\r\nsecond\r\n");
}

TEST_F(StartStopTest, LockOutlivesAStopThatFindsAPrinter) {
  Start(0x100);
  ++SharedTraceState().lock_users;
  TraceTakeDown();
  EXPECT_FALSE(SharedTraceState().started);
  EXPECT_TRUE(SharedTraceState().lock.IsInitialised());
  --SharedTraceState().lock_users;
  Start(0x100);
  TraceTakeDown();
  EXPECT_FALSE(SharedTraceState().lock.IsInitialised());
}

// In the middle of a print, after its look at the flags and before it takes the lock, the time is read: there the library
// changes.
class StopDuringPrintTest : public TraceTest {
 protected:
  template <typename Change>
  void PrintWhile(Change /*captureless*/) {
    environment_.file_time_now = [] {
      Change()();
      return kFakeFileTime;
    };
    SharedTraceState().environment = &environment_;
    Start(0x900);
    TracePrint(nullptr, 0, 1, "", "late");
  }

 private:
  TraceEnvironment environment_ = kFakeEnvironment;
};

TEST_F(StopDuringPrintTest, LineIsDropped) {
  PrintWhile([] { TraceTakeDown(); });
  EXPECT_EQ(SharedTraceState().fill, 0u);
  EXPECT_THAT(Events(), ::testing::IsEmpty());
}

TEST_F(StopDuringPrintTest, LineIsDroppedWhateverTheFlagsSay) {
  PrintWhile([] {
    TraceTakeDown();
    TraceFlags = 0x900;
  });
  EXPECT_EQ(SharedTraceState().fill, 0u);
  EXPECT_THAT(Events(), ::testing::IsEmpty());
}

TEST_F(StopDuringPrintTest, LockIsLeftToThePrint) {
  PrintWhile([] {
    TraceTakeDown();
    EXPECT_TRUE(SharedTraceState().lock.IsInitialised());
  });
  EXPECT_EQ(SharedTraceState().lock_users, 0u);
}

TEST_F(StopDuringPrintTest, LineIsDroppedWhenAllOutputsAreSwitchedOff) {
  PrintWhile([] { TraceFlags = 0x2; });
  EXPECT_EQ(SharedTraceState().fill, 0u);
  EXPECT_EQ(Written(), "");
}

TEST_F(StartStopTest, RingExistsWhileTheFlagsAskForIt) {
  Start(0x100);
  EXPECT_EQ(SharedTraceState().ring, nullptr);
  TraceFlags = 0x300;
  TraceMatchRing();
  TraceMemLogHead* const ring = SharedTraceState().ring;
  ASSERT_NE(ring, nullptr);
  TracePrint(nullptr, 0, 1, "", "kept");
  TraceMatchRing();
  EXPECT_EQ(SharedTraceState().ring, ring);
  EXPECT_EQ(ring->count, 1u);
  TraceFlags = 0x100;
  TraceMatchRing();
  EXPECT_EQ(SharedTraceState().ring, nullptr);
}

TEST_F(StartStopTest, PrintsDoNothingBetweenOpeningTheStateAndTheStart) {
  TraceOpenState(0x100 | 0xFF0000, &stream_);
  TracePrint(nullptr, 0, 1, "", "early");
  TraceMarkStarted();
  TracePrint(nullptr, 0, 1, "", "started");
  EXPECT_EQ(Written(), "started\r\n");
}

TEST_F(StartStopTest, PrintsDoNothingBetweenClosingTheStateAndTheEnd) {
  Start(0x100 | 0xFF0000);
  TraceCloseState();
  TracePrint(nullptr, 0, 1, "", "late");
  EXPECT_EQ(SharedTraceState().fill, 0u);
  TraceMarkStopped();
  EXPECT_EQ(stream_.text, "");
}

}  // namespace
}  // namespace zt::testing
