#include "engine/quarantine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/tracing.h"
#include "tests/support/trace_capture.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class QuarantineTest : public ::testing::Test {
 protected:
  QuarantineTest() { process_.Pid = 42; }

  ZT_PID_ITEM process_;
};

TEST_F(QuarantineTest, AddedPathsStandInOrderOfInsertion) {
  EXPECT_TRUE(AddToQuarantineList(L"c:\\b", process_));
  EXPECT_TRUE(AddToQuarantineList(L"c:\\a", process_));
  EXPECT_THAT(process_.QuarantineList.Paths(), ElementsAre(L"c:\\b", L"c:\\a"));
  EXPECT_THAT(process_.CreatedFilesList.Paths(), IsEmpty());
}

TEST_F(QuarantineTest, AddingAPathTwiceLeavesOneEntry) {
  EXPECT_TRUE(AddToQuarantineList(L"c:\\a", process_));
  EXPECT_FALSE(AddToQuarantineList(L"c:\\a", process_));
  EXPECT_THAT(process_.QuarantineList.Paths(), ElementsAre(L"c:\\a"));
}

TEST_F(QuarantineTest, RemovingTheMiddleOfThreeKeepsTheOrderOfTheOthers) {
  AddToQuarantineList(L"c:\\3", process_);
  AddToQuarantineList(L"c:\\2", process_);
  AddToQuarantineList(L"c:\\1", process_);
  EXPECT_TRUE(RemoveFromQuarantineList(L"c:\\2", process_));
  EXPECT_THAT(process_.QuarantineList.Paths(), ElementsAre(L"c:\\3", L"c:\\1"));
}

TEST_F(QuarantineTest, RemovingAnAbsentPathLeavesTheListUnchanged) {
  AddToQuarantineList(L"c:\\a", process_);
  EXPECT_FALSE(RemoveFromQuarantineList(L"c:\\b", process_));
  EXPECT_THAT(process_.QuarantineList.Paths(), ElementsAre(L"c:\\a"));
}

TEST_F(QuarantineTest, EmptyPathEqualsOnlyAnotherEmptyPath) {
  EXPECT_TRUE(AddToQuarantineList(L"", process_));
  EXPECT_TRUE(AddToQuarantineList(L"c:\\a", process_));
  EXPECT_FALSE(AddToQuarantineList(L"", process_));
  EXPECT_TRUE(RemoveFromQuarantineList(L"", process_));
  EXPECT_FALSE(RemoveFromQuarantineList(L"", process_));
  EXPECT_THAT(process_.QuarantineList.Paths(), ElementsAre(L"c:\\a"));
}

TEST_F(QuarantineTest, LettersOfDifferentCaseDiffer) {
  EXPECT_TRUE(AddToQuarantineList(L"c:\\a", process_));
  EXPECT_TRUE(AddToQuarantineList(L"c:\\A", process_));
  EXPECT_FALSE(RemoveFromQuarantineList(L"C:\\a", process_));
  EXPECT_EQ(process_.QuarantineList.size(), 2u);
}

TEST_F(QuarantineTest, CreatedFilesStandInOrderOfInsertionWithoutDuplicates) {
  AddToCreatedFilesList(L"c:\\b", process_);
  AddToCreatedFilesList(L"c:\\a", process_);
  AddToCreatedFilesList(L"c:\\b", process_);
  EXPECT_THAT(process_.CreatedFilesList.Paths(), ElementsAre(L"c:\\b", L"c:\\a"));
  EXPECT_THAT(process_.QuarantineList.Paths(), IsEmpty());
}

TEST_F(QuarantineTest, AddingIsTraced) {
  TraceCapture trace(kTraceDebug);
  AddToQuarantineList(L"c:\\a", process_);
  AddToQuarantineList(L"c:\\a", process_);
  EXPECT_THAT(trace.TakeMessages(), ElementsAre("Adding c:\\a to the quarantine list of pid 42",
                                                "c:\\a still exists in the quarantine list of pid 42"));
}

TEST_F(QuarantineTest, RemovingIsTraced) {
  AddToQuarantineList(L"c:\\a", process_);
  TraceCapture trace(kTraceDebug);
  RemoveFromQuarantineList(L"c:\\a", process_);
  RemoveFromQuarantineList(L"c:\\a", process_);
  EXPECT_THAT(trace.TakeMessages(),
              ElementsAre("Removing c:\\a from the quarantine list", "c:\\a does not exist in the quarantine list"));
}

TEST_F(QuarantineTest, AddingACreatedFileIsTraced) {
  TraceCapture trace(kTraceDebug);
  AddToCreatedFilesList(L"c:\\a", process_);
  AddToCreatedFilesList(L"c:\\a", process_);
  EXPECT_THAT(trace.TakeMessages(),
              ElementsAre("Adding c:\\a to the created files list", "c:\\a still exists in the created files list"));
}

TEST_F(QuarantineTest, LinesHaveTheLevelDebug) {
  TraceCapture trace(kTraceDebug);
  AddToQuarantineList(L"c:\\a", process_);
  RemoveFromQuarantineList(L"c:\\a", process_);
  AddToCreatedFilesList(L"c:\\a", process_);
  const auto lines = trace.Take();
  ASSERT_EQ(lines.size(), 3u);
  for (const TraceLine& line : lines) {
    EXPECT_EQ(line.level, "debug") << line;
  }
}

TEST_F(QuarantineTest, EmptyPathIsTracedAsNothing) {
  TraceCapture trace(kTraceDebug);
  AddToQuarantineList(L"", process_);
  EXPECT_THAT(trace.TakeMessages(), ElementsAre("Adding  to the quarantine list of pid 42"));
}

TEST_F(QuarantineTest, LongProcessIdIsTracedByItsLow32Bits) {
  process_.Pid = 0x1'0000'0007;
  TraceCapture trace(kTraceDebug);
  AddToQuarantineList(L"c:\\a", process_);
  process_.Pid = 0xFFFFFFFF;
  AddToQuarantineList(L"c:\\b", process_);
  EXPECT_THAT(trace.TakeMessages(),
              ElementsAre("Adding c:\\a to the quarantine list of pid 7", "Adding c:\\b to the quarantine list of pid -1"));
}

TEST_F(QuarantineTest, NothingIsTracedUnlessDebugLinesAreOn) {
  TraceCapture trace(kTraceInfo | kTraceWarning);
  trace.Take();
  AddToQuarantineList(L"c:\\a", process_);
  AddToQuarantineList(L"c:\\a", process_);
  RemoveFromQuarantineList(L"c:\\a", process_);
  RemoveFromQuarantineList(L"c:\\a", process_);
  AddToCreatedFilesList(L"c:\\a", process_);
  AddToCreatedFilesList(L"c:\\a", process_);
  EXPECT_THAT(trace.Take(), IsEmpty());
}

}  // namespace
}  // namespace zt::testing
