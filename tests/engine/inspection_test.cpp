// The look inside an engine: what an observer is told, and in which order; finding a process.

#include "engine/inspection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/transition_table.h"
#include "tests/support/engine_test.h"
#include "tests/support/state_dump.h"
#include "tests/support/trace_capture.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char* NameOf(ScoreReport::Cause cause) {
  switch (cause) {
    case ScoreReport::Cause::kModuleLoad:
      return "module load";
    case ScoreReport::Cause::kPenalty:
      return "penalty";
    case ScoreReport::Cause::kParentPenalty:
      return "parent penalty";
    case ScoreReport::Cause::kClamp:
      return "clamp";
    case ScoreReport::Cause::kUpdate:
      return "update";
    case ScoreReport::Cause::kReset:
      return "reset";
  }
  return "none";
}

/// Writes down what it is told, a line each.
class Recorder : public EngineObserver {
 public:
  void OnStep(const StepReport& step) override {
    std::ostringstream out;
    out << "step ";
    DumpKey(out, step.process);
    out << " " << Narrow(step.file_path) << " by " << Narrow(step.event_path) << (step.similar ? " similar " : " ")
        << step.state_before << " to " << step.state_after << " penalty " << step.penalty;
    lines_.push_back(out.str());
  }
  void OnScore(const ScoreReport& score) override {
    std::ostringstream out;
    out << NameOf(score.cause) << " ";
    DumpKey(out, score.process);
    out << " " << score.score_before << " to " << score.score_after << " factor " << score.factor << " "
        << Narrow(score.charged_file);
    lines_.push_back(out.str());
  }
  void OnSimilarFile(const ZtProcKey& process, std::wstring_view target, std::wstring_view key) override {
    std::ostringstream out;
    out << "similar ";
    DumpKey(out, process);
    out << " " << Narrow(target) << " to " << Narrow(key);
    lines_.push_back(out.str());
  }

  /// The lines since the last call.
  std::vector<std::string> Take() { return std::exchange(lines_, {}); }

 private:
  std::vector<std::string> lines_;
};

class InspectionTest : public EngineTest {
 protected:
  /// Process 1, its child 10, its grandchild 20.
  InspectionTest() {
    StartProcess(1, 50);
    StartChild(1, 10, 100);
    StartChild(10, 20, 200);
    SetEngineObserver(engine_, &recorder_);
  }

  Recorder recorder_;
};

TEST_F(InspectionTest, EachPassOfAnEventReportsItsStep) {
  Insert(Open(20, L"C:\\D\\A.doc"));
  EXPECT_THAT(recorder_.Take(), ElementsAre("step (20, 200) C:\\D\\A.doc by c:\\d\\a.doc 0 to 1 penalty 0",
                                            "step (10, 100) C:\\D\\A.doc by c:\\d\\a.doc 0 to 1 penalty 0"));
}

TEST_F(InspectionTest, AnEventWithoutACallbackReportsNothing) {
  Track(20, L"c:\\d\\a.doc", ZT_UNKNOWN);
  Insert(Read(20, L"c:\\d\\a.doc"));
  Insert(SizeChange(20, L"c:\\d\\a.doc"));
  Insert(ProcessExit(20));
  Insert(MakeEvent(0x8001, 20, L"c:\\d\\a.doc"));
  EXPECT_THAT(recorder_.Take(), IsEmpty());
}

TEST_F(InspectionTest, ARefusedStepIsReportedWithItsStateUnchanged) {
  Track(1, L"c:\\d\\a.doc", ZT_DELETE_ORG);
  Insert(Open(1, L"c:\\d\\a.doc"));
  EXPECT_THAT(recorder_.Take(), ElementsAre("step (1, 50) c:\\d\\a.doc by c:\\d\\a.doc 6 to 6 penalty 0"));
}

TEST_F(InspectionTest, APenaltyReportsStepsThenTheProcessThenItsAncestors) {
  Overwrite(20, L"C:\\D\\First.doc");  // Charges that must not be mistaken for those below.
  OpenAndRead(20, L"C:\\D\\A.doc");
  recorder_.Take();
  Insert(Write(20, L"C:\\D\\A.doc"));
  EXPECT_THAT(recorder_.Take(), ElementsAre("step (20, 200) C:\\D\\A.doc by c:\\d\\a.doc 2 to 4 penalty 2",
                                            "step (10, 100) C:\\D\\A.doc by c:\\d\\a.doc 2 to 4 penalty 2",
                                            "penalty (20, 200) 2 to 4 factor 2 c:\\d\\a.doc",
                                            "parent penalty (10, 100) 2 to 4 factor 2 c:\\d\\a.doc",
                                            "parent penalty (1, 50) 2 to 4 factor 2 c:\\d\\a.doc"));
}

TEST_F(InspectionTest, AnAncestorThatWasChargedBeforeIsNotReported) {
  Track(20, L"c:\\d\\a.doc", ZT_READ_START);
  Track(10, L"c:\\d\\a.doc", ZT_UNKNOWN).penalized = true;
  Insert(Write(20, L"c:\\d\\a.doc"));
  EXPECT_THAT(recorder_.Take(), ElementsAre("step (20, 200) c:\\d\\a.doc by c:\\d\\a.doc 2 to 4 penalty 2",
                                            "penalty (20, 200) 1 to 2 factor 2 c:\\d\\a.doc",
                                            "parent penalty (1, 50) 1 to 2 factor 2 c:\\d\\a.doc"));
}

TEST_F(InspectionTest, AnIgnoredProcessReportsItsProductOfZero) {
  ItemOf(1)->Score = 0;
  Track(1, L"c:\\d\\a.doc", ZT_READ_START);
  Insert(Write(1, L"c:\\d\\a.doc"));
  EXPECT_THAT(recorder_.Take(), ElementsAre("step (1, 50) c:\\d\\a.doc by c:\\d\\a.doc 2 to 4 penalty 2",
                                            "penalty (1, 50) 0 to 0 factor 2 c:\\d\\a.doc"));
}

TEST_F(InspectionTest, AClampIsReportedAfterTheCharge) {
  ItemOf(1)->Score = 0x40000001;
  Track(1, L"c:\\d\\a.doc", ZT_READ_START);
  Insert(Write(1, L"c:\\d\\a.doc"));
  EXPECT_THAT(recorder_.Take(), ElementsAre("step (1, 50) c:\\d\\a.doc by c:\\d\\a.doc 2 to 4 penalty 2",
                                            "penalty (1, 50) 1073741825 to -2147483646 factor 2 c:\\d\\a.doc",
                                            "clamp (1, 50) -2147483646 to 2147483647 factor 0 "));
}

TEST_F(InspectionTest, ALoadOfAWatchedLibraryIsReported) {
  Insert(ModuleLoad(20, L"C:\\bcrypt.dll"));
  EXPECT_THAT(recorder_.Take(), ElementsAre("module load (20, 200) 1 to 2 factor 0 "));
}

TEST_F(InspectionTest, ALoadOfAnotherModuleIsNotReported) {
  Insert(ModuleLoad(20, L"C:\\kernel32.dll"));
  EXPECT_THAT(recorder_.Take(), IsEmpty());
}

TEST_F(InspectionTest, AnUpdateOfAScoreIsReportedAlsoWhenItChangesNothing) {
  ZtUpdateScore(engine_, Handle(20), 9);
  ZtUpdateScore(engine_, Handle(20), 9);
  ZtUpdateScore(engine_, Handle(77), 9);
  EXPECT_THAT(recorder_.Take(), ElementsAre("update (20, 200) 1 to 9 factor 0 ", "update (20, 200) 9 to 9 factor 0 "));
}

TEST_F(InspectionTest, AResetReportsTheScoresThatItSets) {
  ItemOf(1)->Score = 7;
  ItemOf(1)->ScoreTime = 10000000;
  ItemOf(10)->Score = 0;
  ItemOf(10)->ScoreTime = 10000000;
  ItemOf(20)->Score = 5;
  ItemOf(20)->ScoreTime = 11000000;
  ZtResetScore(engine_, 11000000, 99);
  EXPECT_THAT(recorder_.Take(), ElementsAre("reset (1, 50) 7 to 1 factor 0 ", "reset (10, 100) 0 to 1 factor 0 "));
}

TEST_F(InspectionTest, ASimilarFileIsReportedBeforeItsStepWithTheStateItHad) {
  Track(1, L"c:\\d\\a.doc", ZT_DELETE_ORG).Path = MakePath(L"C:\\D\\A.doc");
  Insert(Write(1, L"C:\\D\\A.doc.enc"));
  EXPECT_THAT(recorder_.Take(), ElementsAre("similar (1, 50) c:\\d\\a.doc.enc to c:\\d\\a.doc",
                                            "step (1, 50) C:\\D\\A.doc by c:\\d\\a.doc.enc similar 6 to 8 penalty 6",
                                            "penalty (1, 50) 1 to 6 factor 6 c:\\d\\a.doc"));
}

TEST_F(InspectionTest, ARenameReportsItsSimilarFileAndThenItsSource) {
  Track(1, L"c:\\d\\a.doc", ZT_DELETE_ORG);
  Track(1, L"c:\\t\\1.bin", ZT_SECTION_SYNC);
  Insert(Rename(1, L"C:\\T\\1.bin", L"C:\\D\\A.doc.enc"));
  EXPECT_THAT(recorder_.Take(), ElementsAre("similar (1, 50) c:\\d\\a.doc.enc to c:\\d\\a.doc",
                                            "step (1, 50) c:\\d\\a.doc by c:\\d\\a.doc.enc similar 6 to 8 penalty 6",
                                            "step (1, 50) c:\\t\\1.bin by c:\\d\\a.doc.enc 3 to 7 penalty 2",
                                            "penalty (1, 50) 1 to 2 factor 2 c:\\t\\1.bin"));
}

TEST_F(InspectionTest, NoObserverIsToldNothing) {
  SetEngineObserver(engine_, nullptr);
  Overwrite(20, L"c:\\d\\a.doc");
  EXPECT_THAT(recorder_.Take(), IsEmpty());
}

TEST_F(InspectionTest, AnObserverDoesNotChangeResults) {
  EXPECT_EQ(Overwrite(20, L"c:\\d\\a.doc"), 2);
  SetEngineObserver(engine_, nullptr);
  EXPECT_EQ(Overwrite(20, L"c:\\d\\b.doc"), 4);
}

// Finding a process.

TEST_F(InspectionTest, AProcessIsFoundByItsIdAsTheTreeHoldsIt) {
  StartChild(1, 30, 300, L"C:\\Thirty.exe");
  ItemOf(30)->Score = 12;
  ProcessView process;
  ASSERT_TRUE(FindProcess(engine_, 30, process));
  EXPECT_EQ(process.key, (ZtProcKey{30, 300}));
  EXPECT_EQ(process.parent, (ZtProcKey{1, 50}));
  EXPECT_EQ(process.score, 12);
  EXPECT_FALSE(process.exited);
  EXPECT_EQ(process.image_path, L"C:\\Thirty.exe");
}

TEST_F(InspectionTest, AProcessOfAnUnknownCreatorHasNoParent) {
  ProcessView process;
  ASSERT_TRUE(FindProcess(engine_, 1, process));
  EXPECT_EQ(process.parent, (ZtProcKey{0, 0}));
}

TEST_F(InspectionTest, AnExitedProcessIsFoundAsSuch) {
  Insert(ProcessExit(20));
  ProcessView process;
  ASSERT_TRUE(FindProcess(engine_, 20, process));
  EXPECT_TRUE(process.exited);
}

// Collections count the tree's flag down; the process has exited all the same.
TEST_F(InspectionTest, AnExitedProcessStaysExitedAfterACollection) {
  Insert(ProcessExit(10));
  ZtResetScore(engine_, 0, 0);
  ZtResetScore(engine_, 0, 0);
  ProcessView process;
  ASSERT_TRUE(FindProcess(engine_, 10, process));
  EXPECT_TRUE(process.exited);
}

TEST_F(InspectionTest, AnIdMeansTheNewestProcessAndAKeyAnyProcess) {
  StartProcess(10, 900, L"C:\\new.exe");
  ProcessView process;
  ASSERT_TRUE(FindProcess(engine_, 10, process));
  EXPECT_EQ(process.key, (ZtProcKey{10, 900}));
  ASSERT_TRUE(FindProcess(engine_, ZtProcKey{10, 100}, process));
  EXPECT_EQ(process.key, (ZtProcKey{10, 100}));
  EXPECT_EQ(process.parent, (ZtProcKey{1, 50}));
}

TEST_F(InspectionTest, AnUnknownProcessIsNotFoundAndNotRemembered) {
  const std::string before = DumpState(core());
  ProcessView process;
  EXPECT_FALSE(FindProcess(engine_, 77, process));
  EXPECT_FALSE(FindProcess(engine_, ZtProcKey{10, 101}, process));
  EXPECT_EQ(DumpState(core()), before);
}

TEST_F(InspectionTest, AnIdThatOnlyAQueryMadeKnownIsNotFound) {
  ZtGetProcTree(engine_, Handle(77));
  ProcessView process;
  EXPECT_FALSE(FindProcess(engine_, 77, process));
}

// What it is told, in order: "list SIZE" and "KEY = PATH", with "!" behind what was overwritten.
class FinalStateRecorder : public FinalStateVisitor {
 public:
  void OnQuarantine(const PathList& list) override { told.push_back(L"list " + std::to_wstring(list.size())); }
  void OnFile(const TrackedFile& file, bool restored) override {
    told.push_back(Widen(file.key.Lower()) + L" = " + file.item.Path.Wide() + (restored ? L"!" : L""));
  }

  std::vector<std::wstring> told;
};

TEST_F(InspectionTest, FinalStateIsToldFileByFileInTheOrderOfKeys) {
  FileItem& moved = Track(1, L"c:\\d\\b.doc", ZT_DELETE_ORG);
  moved.Similar = true;
  moved.Path = MakePath(L"C:\\D\\B.doc");
  Track(1, L"c:\\d\\a.doc", ZT_OVERWRITE).Similar = true;
  Track(1, L"c:\\d\\c.doc", ZT_OVERWRITE);
  AddPath(ItemOf(1)->QuarantineList, L"c:\\d\\x.doc");
  FinalStateRecorder recorder;
  EXPECT_TRUE(VisitFinalState(engine_, 1, recorder));
  EXPECT_EQ(recorder.told,
            (std::vector<std::wstring>{L"list 1", L"c:\\d\\a.doc = c:\\d\\a.doc!", L"c:\\d\\b.doc = C:\\D\\B.doc"}));
}

TEST_F(InspectionTest, TheFamilyIsThatOfTheQueryForHosts) {
  ItemOf(1)->Score = 2;
  std::map<void*, std::wstring> procs;
  ZtGetProcTree(engine_, Handle(1), procs);
  ASSERT_EQ(procs.size(), 1U);
  EXPECT_EQ(SuspiciousFamily(engine_, 1), (std::map<std::uint64_t, std::wstring>{{1, procs[Handle(1)]}}));
}

TEST_F(InspectionTest, QuestionsLeaveNoTraceAndNothingInTheEngine) {
  ItemOf(1)->Score = 2;
  Track(1, L"c:\\d\\a.doc", ZT_OVERWRITE).Similar = true;
  Track(1, L"c:\\d\\b.doc", ZT_OVERWRITE);
  const std::string before = DumpState(core());
  TraceCapture trace(7);
  FinalStateRecorder recorder;
  for (const std::uint64_t pid : {1U, 77U}) {
    EXPECT_TRUE(VisitFinalState(engine_, pid, recorder));
    EXPECT_EQ(SuspiciousFamily(engine_, pid).size(), pid == 1 ? 1U : 0U);
  }
  EXPECT_TRUE(trace.TakeMessages().empty());
  EXPECT_EQ(DumpState(core()), before);
}

TEST_F(InspectionTest, FinalStateOfAnUnknownProcessIsNothing) {
  FinalStateRecorder recorder;
  EXPECT_TRUE(VisitFinalState(engine_, 77, recorder));
  EXPECT_TRUE(recorder.told.empty());
  std::shared_ptr<void> none;
  EXPECT_FALSE(VisitFinalState(none, 1, recorder));
}

}  // namespace
}  // namespace zt::testing
