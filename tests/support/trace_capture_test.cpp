#include "tests/support/trace_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "trace/trace.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(TraceCaptureTest, LinesComeInTheirParts) {
  TraceCapture capture(kTraceDebug);
  TracePrint(nullptr, 0, 649, "debug", "x=%d", 5);
  TracePrint(nullptr, 0, 12, "warning", "[y] z");
  EXPECT_THAT(capture.Take(), ElementsAre(TraceLine{649, "debug", "x=5"}, TraceLine{12, "warning", "[y] z"}));
}

TEST(TraceCaptureTest, EmptyPartsComeEmpty) {
  TraceCapture capture(kTraceDebug);
  TracePrint(nullptr, 0, 649, "", "a");
  TracePrint(nullptr, 0, 0, "debug", "b");
  TracePrint(nullptr, 0, 0, "", "c");
  TracePrint(nullptr, 0, 0, "", "");
  EXPECT_THAT(capture.Take(),
              ElementsAre(TraceLine{649, "", "a"}, TraceLine{0, "debug", "b"}, TraceLine{0, "", "c"}, TraceLine{0, "", ""}));
}

TEST(TraceCaptureTest, LineEndsOfTheMessageStay) {
  TraceCapture capture(kTraceDebug);
  TracePrint(nullptr, 0, 1, "debug", "a\r\n[2 debug] b\n");
  EXPECT_THAT(capture.TakeMessages(), ElementsAre("a\r\n[2 debug] b\n"));
}

TEST(TraceCaptureTest, LinesAreTakenOnce) {
  TraceCapture capture(kTraceDebug);
  TracePrint(nullptr, 0, 1, "debug", "a");
  EXPECT_THAT(capture.TakeMessages(), ElementsAre("a"));
  EXPECT_THAT(capture.TakeMessages(), IsEmpty());
}

TEST(TraceCaptureTest, EachCaptureBeginsEmpty) {
  {
    const TraceCapture capture(kTraceDebug);
    TracePrint(nullptr, 0, 1, "debug", "not taken");
  }
  TracePrint(nullptr, 0, 1, "debug", "not captured");
  TraceCapture capture(kTraceWarning);
  EXPECT_THAT(capture.Take(), IsEmpty());
  EXPECT_EQ(TraceFlags & 0x7, kTraceWarning);
}

TEST(TraceCaptureTest, ThereIsOneAtATime) {
  const TraceCapture capture(kTraceDebug);
  EXPECT_THROW(TraceCapture{kTraceDebug}, std::logic_error);
}

}  // namespace
}  // namespace zt::testing
