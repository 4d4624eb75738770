#include "engine/quarantine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>

#include "engine/tracing.h"
#include "tests/support/records.h"
#include "tests/support/trace_capture.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class QuarantineTest : public ::testing::Test {
 protected:
  QuarantineTest() { process_.Pid = 42; }

  bool Quarantine(std::wstring_view path) { return AddToQuarantineList(OwnedPath(path).name(), process_); }
  bool Release(std::wstring_view path) { return RemoveFromQuarantineList(OwnedPath(path).name(), process_); }
  void NoteCreated(std::wstring_view path) { AddToCreatedFilesList(OwnedPath(path).name(), process_); }

  ProcessItem process_;
};

TEST_F(QuarantineTest, AddedPathsStandInOrderOfInsertion) {
  EXPECT_TRUE(Quarantine(L"c:\\b"));
  EXPECT_TRUE(Quarantine(L"c:\\a"));
  EXPECT_THAT(process_.QuarantineList.Paths(), ElementsAre(L"c:\\b", L"c:\\a"));
  EXPECT_THAT(process_.CreatedFilesList.Paths(), IsEmpty());
}

TEST_F(QuarantineTest, AddingAPathTwiceLeavesOneEntry) {
  EXPECT_TRUE(Quarantine(L"c:\\a"));
  EXPECT_FALSE(Quarantine(L"c:\\a"));
  EXPECT_THAT(process_.QuarantineList.Paths(), ElementsAre(L"c:\\a"));
}

TEST_F(QuarantineTest, RemovingTheMiddleOfThreeKeepsTheOrderOfTheOthers) {
  Quarantine(L"c:\\3");
  Quarantine(L"c:\\2");
  Quarantine(L"c:\\1");
  EXPECT_TRUE(Release(L"c:\\2"));
  EXPECT_THAT(process_.QuarantineList.Paths(), ElementsAre(L"c:\\3", L"c:\\1"));
}

TEST_F(QuarantineTest, RemovingAnAbsentPathLeavesTheListUnchanged) {
  Quarantine(L"c:\\a");
  EXPECT_FALSE(Release(L"c:\\b"));
  EXPECT_THAT(process_.QuarantineList.Paths(), ElementsAre(L"c:\\a"));
}

TEST_F(QuarantineTest, EmptyPathEqualsOnlyAnotherEmptyPath) {
  EXPECT_TRUE(Quarantine(L""));
  EXPECT_TRUE(Quarantine(L"c:\\a"));
  EXPECT_FALSE(Quarantine(L""));
  EXPECT_TRUE(Release(L""));
  EXPECT_FALSE(Release(L""));
  EXPECT_THAT(process_.QuarantineList.Paths(), ElementsAre(L"c:\\a"));
}

TEST_F(QuarantineTest, CreatedFilesStandInOrderOfInsertionWithoutDuplicates) {
  NoteCreated(L"c:\\b");
  NoteCreated(L"c:\\a");
  NoteCreated(L"c:\\b");
  EXPECT_THAT(process_.CreatedFilesList.Paths(), ElementsAre(L"c:\\b", L"c:\\a"));
  EXPECT_THAT(process_.QuarantineList.Paths(), IsEmpty());
}

TEST_F(QuarantineTest, AddingIsTraced) {
  TraceCapture trace(kTraceDebug);
  Quarantine(L"c:\\a");
  Quarantine(L"c:\\a");
  EXPECT_THAT(trace.TakeMessages(), ElementsAre("Adding c:\\a to the quarantine list of pid 42",
                                                "c:\\a still exists in the quarantine list of pid 42"));
}

TEST_F(QuarantineTest, RemovingIsTraced) {
  Quarantine(L"c:\\a");
  TraceCapture trace(kTraceDebug);
  Release(L"c:\\a");
  Release(L"c:\\a");
  EXPECT_THAT(trace.TakeMessages(),
              ElementsAre("Removing c:\\a from the quarantine list", "c:\\a does not exist in the quarantine list"));
}

TEST_F(QuarantineTest, AddingACreatedFileIsTraced) {
  TraceCapture trace(kTraceDebug);
  NoteCreated(L"c:\\a");
  NoteCreated(L"c:\\a");
  EXPECT_THAT(trace.TakeMessages(),
              ElementsAre("Adding c:\\a to the created files list", "c:\\a still exists in the created files list"));
}

TEST_F(QuarantineTest, LinesHaveTheLevelDebug) {
  TraceCapture trace(kTraceDebug);
  Quarantine(L"c:\\a");
  Release(L"c:\\a");
  NoteCreated(L"c:\\a");
  const auto lines = trace.Take();
  ASSERT_EQ(lines.size(), 3u);
  for (const TraceLine& line : lines) {
    EXPECT_EQ(line.level, "debug") << line;
  }
}

TEST_F(QuarantineTest, EmptyPathIsTracedAsNothing) {
  TraceCapture trace(kTraceDebug);
  Quarantine(L"");
  EXPECT_THAT(trace.TakeMessages(), ElementsAre("Adding  to the quarantine list of pid 42"));
}

TEST_F(QuarantineTest, LongProcessIdIsTracedByItsLow32Bits) {
  process_.Pid = 0x1'0000'0007;
  TraceCapture trace(kTraceDebug);
  Quarantine(L"c:\\a");
  process_.Pid = 0xFFFFFFFF;
  Quarantine(L"c:\\b");
  EXPECT_THAT(trace.TakeMessages(),
              ElementsAre("Adding c:\\a to the quarantine list of pid 7", "Adding c:\\b to the quarantine list of pid -1"));
}

TEST_F(QuarantineTest, NothingIsTracedUnlessDebugLinesAreOn) {
  TraceCapture trace(kTraceInfo | kTraceWarning);
  trace.Take();
  Quarantine(L"c:\\a");
  Quarantine(L"c:\\a");
  Release(L"c:\\a");
  Release(L"c:\\a");
  NoteCreated(L"c:\\a");
  NoteCreated(L"c:\\a");
  EXPECT_THAT(trace.Take(), IsEmpty());
}

}  // namespace
}  // namespace zt::testing
