// Each callback with its guard holding and failing: state, flags, penalty and trace lines.

#include "engine/transition_callbacks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "engine/transition_table.h"
#include "tests/support/engine_test.h"
#include "tests/support/events.h"
#include "tests/support/state_dump.h"
#include "tests/support/trace_capture.h"

namespace zt::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;

// The callbacks that read nothing but SimilarFound, and what they do.
struct PlainRow {
  const char* name;
  TransitionCallback callback;
  std::uint8_t from;
  bool with_similar;     // Runs when a similar file was found.
  bool without_similar;  // Runs when none was.
  std::uint8_t to;
  bool written;
  bool similar;
  std::uint64_t penalty;
  const char* label;
};

void PrintTo(const PlainRow& row, std::ostream* out) { *out << row.name << " from " << row.from; }

constexpr PlainRow kPlainRows[] = {
    {"ReadWrite", ReadWrite, 2, false, true, 4, true, false, 2, "ZT_OVERWRITE"},
    {"DeleteWrite", DeleteWrite, 6, true, false, 8, true, true, 6, "ZT_DELETE_ORG + ZT_WRITE_SIMILAR"},
    {"SyncWrite", SyncWrite, 3, true, false, 4, true, true, 2, "ZT_SECTION_SYNC + ZT_WRITE_SIMILAR"},
    {"WriteSimilarDelete", WriteSimilarDelete, 5, true, true, 8, true, false, 6, "ZT_WRITTEN_DELETE"},
    {"ReadDelete", ReadDelete, 2, true, true, 6, false, false, 0, "ZT_DELETE_ORG"},
    {"DeleteOrgRename", DeleteOrgRename, 6, true, false, 8, true, true, 6, "ZT_DELETE_ORG + Renamed + ZT_WRITE_SIMILAR"},
    {"SyncRename", SyncRename, 3, false, true, 7, true, false, 2, "ZT_RENAME_SECTION_SYNC"},
};

class PlainCallbackTest : public ::testing::TestWithParam<PlainRow> {
 protected:
  static void ExpectStep(bool similar_found) {
    FileItem file;
    file.State = GetParam().from;
    TransitionContext context;
    context.Item = &file;
    context.SimilarFound = similar_found;
    TraceCapture trace(0x2);
    trace.Take();
    const bool runs = similar_found ? GetParam().with_similar : GetParam().without_similar;
    EXPECT_EQ(GetParam().callback(&context), runs ? GetParam().penalty : 0U);
    const std::string first_line = std::string("Callback: ") + GetParam().name;
    if (runs) {
      EXPECT_THAT(trace.TakeMessages(), ElementsAre(first_line, GetParam().label));
    } else {
      EXPECT_THAT(trace.TakeMessages(), ElementsAre(first_line));
    }
    ExpectFile(file, runs);
    EXPECT_EQ(context.SectionRenamed, 0U);
  }

 private:
  static void ExpectFile(const FileItem& file, bool stepped) {
    EXPECT_EQ(file.State, stepped ? GetParam().to : GetParam().from);
    EXPECT_EQ(file.Written, stepped && GetParam().written);
    EXPECT_EQ(file.Similar, stepped && GetParam().similar);
    EXPECT_FALSE(file.Renamed || file.SimilarMark || file.Created || file.ReadStarted || file.penalized);
    EXPECT_EQ(file.Path, L"");
  }
};

TEST_P(PlainCallbackTest, StepsOrStaysWithASimilarFile) { ExpectStep(true); }
TEST_P(PlainCallbackTest, StepsOrStaysWithoutASimilarFile) { ExpectStep(false); }

TEST_P(PlainCallbackTest, KeepsFlagsThatAreSet) {
  FileItem file;
  file.State = GetParam().from;
  file.Written = file.Similar = file.Renamed = file.SimilarMark = file.Created = file.ReadStarted = file.penalized = true;
  TransitionContext context;
  context.Item = &file;
  context.SimilarFound = GetParam().with_similar;
  GetParam().callback(&context);
  EXPECT_EQ(file.State, GetParam().to);
  EXPECT_TRUE(file.Written && file.Similar && file.Renamed && file.SimilarMark && file.Created && file.ReadStarted &&
              file.penalized);
}

INSTANTIATE_TEST_SUITE_P(Rows, PlainCallbackTest, ::testing::ValuesIn(kPlainRows),
                         [](const ::testing::TestParamInfo<PlainRow>& row) { return std::string(row.param.name); });

class CallbackTest : public ::testing::Test {
 protected:
  CallbackTest() {
    context_.Item = &file_;
    trace_.Take();
  }
  [[nodiscard]] std::string Dump() const {
    std::ostringstream out;
    TrackedFile tracked(PathText(), 0);
    tracked.item = file_;
    DumpFile(out, tracked);
    return out.str();
  }

  FileItem file_;
  TransitionContext context_;
  TraceCapture trace_{0x2};
};

// UnknownCreate.

class UnknownCreateTest : public CallbackTest {
 protected:
  UnknownCreateTest() {
    context_.Log = &log_;
    context_.FilePath = &path_;
    log_.Time = 555;
    log_.Context = 0x1122334455667788;
    log_.TargetPid = 0xAAAAAAAA00000001;
    log_.Behavior = BehaviorCreate;
  }

  LOG_ITEM log_ = {};
  PathName path_{u"c:\\dir\\a.doc", u"C:\\Dir\\A.doc"};
};

TEST_F(UnknownCreateTest, FillsTheRecordOfAFileThatExisted) {
  EXPECT_EQ(UnknownCreate(&context_), 0U);
  EXPECT_EQ(file_.State, 1U);
  EXPECT_EQ(file_.FirstTime, 555);
  EXPECT_EQ(file_.Context, 0x1122334455667788U);
  EXPECT_EQ(file_.Path, L"C:\\Dir\\A.doc");
  EXPECT_EQ(file_.CreateInfo, 1U);
  EXPECT_FALSE(file_.Created || file_.Written || file_.Similar || file_.ReadStarted);
  EXPECT_THAT(trace_.TakeMessages(), ElementsAre("Callback: UnknownCreate", "ZT_OPEN_EXISTING"));
}

TEST_F(UnknownCreateTest, LeavesTheRecordOfANewFileUnnamed) {
  log_.TargetPid = 0;
  const std::string before = Dump();
  EXPECT_EQ(UnknownCreate(&context_), 0U);
  EXPECT_EQ(Dump(), before);
  EXPECT_EQ(file_.State, 0U);
  EXPECT_EQ(file_.Path, L"");
  EXPECT_THAT(trace_.TakeMessages(), ElementsAre("Callback: UnknownCreate"));
}

TEST_F(UnknownCreateTest, TakesATargetPidWhoseLowHalfIsZeroAsSet) {
  log_.TargetPid = 0x100000000;
  EXPECT_EQ(UnknownCreate(&context_), 0U);
  EXPECT_EQ(file_.State, 1U);
  EXPECT_EQ(file_.CreateInfo, 0U);
}

TEST_F(UnknownCreateTest, MarksTheFileCreatedByTheSecondCreateCode) {
  log_.Behavior = BehaviorCreateNew;
  UnknownCreate(&context_);
  EXPECT_TRUE(file_.Created);
}

TEST_F(UnknownCreateTest, LeavesAnEarlierCreatedMarkAsItIs) {
  file_.Created = true;
  UnknownCreate(&context_);
  EXPECT_TRUE(file_.Created);
}

// DeletedCreate.

TEST_F(CallbackTest, DeletedCreateStepsWhenTheFileIsMadeAnew) {
  const LOG_ITEM log = CreateFresh(10, L"C:\\a.doc");
  file_.State = ZT_DELETE_ORG;
  context_.Log = &log;
  EXPECT_EQ(DeletedCreate(&context_), 0U);
  EXPECT_EQ(file_.State, 2U);
  EXPECT_FALSE(file_.Written || file_.Similar || file_.ReadStarted || file_.Created);
  EXPECT_THAT(trace_.TakeMessages(),
              ElementsAre("Callback: DeletedCreate", "ZT_READ_START: Found creating already deleted file with identical name"));
}

TEST_F(CallbackTest, DeletedCreateStaysWhenTheFileExisted) {
  const LOG_ITEM log = Open(10, L"C:\\a.doc", 0x100000000);
  file_.State = ZT_DELETE_ORG;
  context_.Log = &log;
  const std::string before = Dump();
  EXPECT_EQ(DeletedCreate(&context_), 0U);
  EXPECT_EQ(Dump(), before);
  EXPECT_THAT(trace_.TakeMessages(), ElementsAre("Callback: DeletedCreate"));
}

// OpenExistingRead.

TEST_F(CallbackTest, OpenExistingReadRecordsThePosition) {
  file_.State = ZT_OPEN_EXISTING;
  context_.ReadInfo = 0x123456789A;
  EXPECT_EQ(OpenExistingRead(&context_), 0U);
  EXPECT_EQ(file_.State, 2U);
  EXPECT_EQ(file_.ReadInfo, 0x123456789AU);
  EXPECT_TRUE(file_.ReadStarted);
  EXPECT_FALSE(file_.Written || file_.Similar);
  EXPECT_THAT(trace_.TakeMessages(), ElementsAre("Callback: OpenExistingRead", "ZT_READ_START"));
}

// OpenReadSync.

TEST_F(CallbackTest, OpenReadSyncMovesAFileToTheSectionState) {
  for (const std::uint8_t from : std::initializer_list<std::uint8_t>{1U, 2U}) {
    file_ = FileItem();
    file_.State = from;
    EXPECT_EQ(OpenReadSync(&context_), 0U);
    EXPECT_EQ(file_.State, 3U);
    EXPECT_FALSE(file_.Written || file_.Similar);
    EXPECT_EQ(context_.SectionRenamed, 0U);
    EXPECT_THAT(trace_.TakeMessages(), ElementsAre("Callback: OpenReadSync", "LB_PreSectionSync ZT_READ_START"));
  }
}

TEST_F(CallbackTest, OpenReadSyncMovesARenamedFileThroughBothStates) {
  for (const std::uint8_t from : std::initializer_list<std::uint8_t>{1U, 2U}) {
    file_ = FileItem();
    file_.State = from;
    file_.Renamed = true;
    context_.SectionRenamed = 0;
    EXPECT_EQ(OpenReadSync(&context_), 2U);
    EXPECT_EQ(file_.State, 7U);
    EXPECT_TRUE(file_.Written && file_.Similar && file_.Renamed);
    EXPECT_NE(context_.SectionRenamed, 0U);
    EXPECT_THAT(trace_.TakeMessages(),
                ElementsAre("Callback: OpenReadSync", "LB_PreSectionSync ZT_READ_START", "ZT_RENAME_SECTION_SYNC"));
  }
}

// WriteSimilarRename.

class WriteSimilarRenameTest : public CallbackTest {
 protected:
  WriteSimilarRenameTest() {
    file_.State = ZT_WRITE_SIMILAR;
    file_.ReadStarted = file_.SimilarMark = true;
    context_.PrevFolder = &prev_folder_;
  }
  std::uint64_t Move(std::u16string_view source, std::u16string_view dest) {
    context_.SourcePath = source;
    context_.DestPath = dest;
    return WriteSimilarRename(&context_);
  }

  std::u16string prev_folder_;
};

TEST_F(WriteSimilarRenameTest, NeedsBothAReadAndASimilarMark) {
  for (const bool read_started : {false, true}) {
    file_.ReadStarted = read_started;
    file_.SimilarMark = !read_started;
    prev_folder_ = u"C:\\out";
    EXPECT_EQ(Move(u"C:\\a\\x.doc", u"C:\\out\\x.doc"), 0U);
    EXPECT_EQ(file_.State, 5U);
    EXPECT_EQ(prev_folder_, u"C:\\out");
    EXPECT_THAT(trace_.TakeMessages(), ElementsAre("Callback: WriteSimilarRename"));
  }
}

TEST_F(WriteSimilarRenameTest, ADestinationWithoutABackslashIsNamedInTheTrace) {
  EXPECT_EQ(Move(u"C:\\a\\x.doc", u"x.enc"), 0U);
  EXPECT_EQ(file_.State, 5U);
  EXPECT_THAT(trace_.TakeMessages(), ElementsAre("Callback: WriteSimilarRename", "Cannot find \\ in Dst:x.enc"));
}

TEST_F(WriteSimilarRenameTest, AnEmptyDestinationNeedsNoFolderToCompareWith) {
  context_.PrevFolder = nullptr;  // As for a file that the similar-file search found.
  EXPECT_EQ(Move(u"", u""), 0U);
  EXPECT_EQ(file_.State, 5U);
  EXPECT_THAT(trace_.TakeMessages(), ElementsAre("Callback: WriteSimilarRename", "Cannot find \\ in Dst:"));
}

TEST_F(WriteSimilarRenameTest, ARenameWithinItsFolderWritesNoFurtherLine) {
  EXPECT_EQ(Move(u"C:\\a\\x.doc", u"C:\\a\\x.doc.enc"), 0U);
  EXPECT_EQ(file_.State, 5U);
  EXPECT_EQ(prev_folder_, u"");
  EXPECT_THAT(trace_.TakeMessages(), ElementsAre("Callback: WriteSimilarRename"));
}

TEST_F(WriteSimilarRenameTest, FoldersAreComparedByTheirCharactersAlone) {
  // The first 4 characters agree, though the source lies deeper.
  EXPECT_EQ(Move(u"C:\\abc\\x.doc", u"C:\\a\\x.doc"), 0U);
  EXPECT_THAT(trace_.TakeMessages(), ElementsAre("Callback: WriteSimilarRename"));
}

TEST_F(WriteSimilarRenameTest, ASourceShorterThanTheFolderDiffersFromIt) {
  EXPECT_EQ(Move(u"C:", u"C:\\out\\x.doc"), 0U);
  EXPECT_EQ(prev_folder_, u"C:\\out");
}

TEST_F(WriteSimilarRenameTest, FoldersThatDifferInLetterCaseDiffer) {
  EXPECT_EQ(Move(u"C:\\A\\x.doc", u"C:\\a\\x.doc"), 0U);
  EXPECT_EQ(prev_folder_, u"C:\\a");
  EXPECT_EQ(Move(u"C:\\B\\x.doc", u"C:\\A\\x.doc"), 0U);
  EXPECT_EQ(prev_folder_, u"C:\\A");
  EXPECT_EQ(file_.State, 5U);
}

TEST_F(WriteSimilarRenameTest, ABackslashAtTheStartIsTheFolderOfNoCharacters) {
  // Nothing comes before it, so source and destination agree there.
  EXPECT_EQ(Move(u"C:\\a\\x.doc", u"\\x.doc"), 0U);
  EXPECT_THAT(trace_.TakeMessages(), ElementsAre("Callback: WriteSimilarRename"));
}

TEST_F(WriteSimilarRenameTest, TheFirstMoveArmsAndTheSecondFires) {
  EXPECT_EQ(Move(u"C:\\a\\x.doc", u"C:\\out\\x.doc"), 0U);
  EXPECT_EQ(file_.State, 5U);
  EXPECT_EQ(prev_folder_, u"C:\\out");
  EXPECT_THAT(trace_.TakeMessages(), ElementsAre("Callback: WriteSimilarRename", "New folder:C:\\out"));

  FileItem second = file_;
  context_.Item = &second;
  EXPECT_EQ(Move(u"C:\\b\\y.doc", u"C:\\out\\y.doc"), 2U);
  EXPECT_EQ(second.State, 9U);
  EXPECT_EQ(file_.State, 5U);
  EXPECT_EQ(prev_folder_, u"C:\\out");
  EXPECT_THAT(trace_.TakeMessages(), ElementsAre("Callback: WriteSimilarRename", "New folder:C:\\out",
                                                 "Same folder as previous, ZT_WRITE_SIMILAR_SYNC"));
}

TEST_F(WriteSimilarRenameTest, AMoveElsewhereArmsAnew) {
  Move(u"C:\\a\\x.doc", u"C:\\out\\x.doc");
  EXPECT_EQ(Move(u"C:\\a\\y.doc", u"C:\\out2\\y.doc"), 0U);
  EXPECT_EQ(prev_folder_, u"C:\\out2");
  EXPECT_EQ(Move(u"C:\\a\\z.doc", u"C:\\out\\z.doc"), 0U);
  EXPECT_EQ(file_.State, 5U);
}

TEST_F(WriteSimilarRenameTest, FiringChangesNothingButTheState) {
  prev_folder_ = u"C:\\out";
  EXPECT_EQ(Move(u"C:\\a\\x.doc", u"C:\\out\\x.doc"), 2U);
  EXPECT_FALSE(file_.Written || file_.Similar || file_.Renamed);
  EXPECT_TRUE(file_.ReadStarted && file_.SimilarMark);
}

// Tracing.

TEST(CallbackTraceTest, EveryLineIsADebugLine) {
  TraceCapture trace(0x2);
  trace.Take();
  FileItem file;
  file.State = ZT_READ_START;
  TransitionContext context;
  context.Item = &file;
  ReadWrite(&context);
  EXPECT_THAT(trace.Take(), Each(Field(&TraceLine::level, "debug")));
}

TEST(CallbackTraceTest, WithoutTheDebugBitNothingIsWritten) {
  TraceCapture trace(0x1 | 0x4);
  trace.Take();
  FileItem file;
  file.State = ZT_READ_START;
  TransitionContext context;
  context.Item = &file;
  EXPECT_EQ(ReadWrite(&context), 2U);
  EXPECT_THAT(trace.Take(), IsEmpty());
}

// Whoever looks a line of the trace up in the code finds the statement that wrote it.
TEST(CallbackTraceTest, EveryLineCarriesItsOwnStatementsNumber) {
  PathName path(u"c:\\a.doc", u"C:\\a.doc");
  const LOG_ITEM open = Open(1, L"C:\\a.doc");
  const LOG_ITEM fresh = CreateFresh(1, L"C:\\a.doc");
  std::set<std::int32_t> numbers;
  std::size_t lines = 0;
  for (const TransitionCallback callback :
       {UnknownCreate, DeletedCreate, OpenExistingRead, OpenReadSync, ReadWrite, DeleteWrite, SyncWrite, WriteSimilarDelete,
        ReadDelete, DeleteOrgRename, SyncRename, WriteSimilarRename}) {
    FileItem file;
    file.Renamed = file.ReadStarted = file.SimilarMark = true;
    std::u16string folder = u"d:\\out";
    TransitionContext context;
    context.Item = &file;
    context.FilePath = &path;
    context.Log = callback == DeletedCreate ? &fresh : &open;
    context.SimilarFound = callback == DeleteWrite || callback == SyncWrite || callback == DeleteOrgRename;
    context.PrevFolder = &folder;
    context.SourcePath = u"c:\\a.doc";
    context.DestPath = u"d:\\out\\a.doc";
    TraceCapture trace(0x2);
    trace.Take();
    callback(&context);
    for (const TraceLine& line : trace.Take()) {
      numbers.insert(line.line);
      ++lines;
    }
  }
  // Two lines each; OpenReadSync and WriteSimilarRename have three.
  EXPECT_EQ(lines, 26U);
  EXPECT_EQ(numbers.size(), lines);
}

}  // namespace
}  // namespace zt::testing
