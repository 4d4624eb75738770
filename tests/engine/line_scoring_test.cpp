#include "engine/line_scoring.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "engine/tracing.h"
#include "tests/support/engine_test.h"

namespace zt::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint64_t kPid = 10;

class LineScoringTest : public EngineTest {
 protected:
  ZtLong ScoreAfter(LOG_ITEM line, ZtLong score) { return ZtCalculateSingleLineScore(engine_, &line, score); }
  ZtLong ScoreAfterLoad(std::wstring_view path, ZtLong score = 5) { return ScoreAfter(ModuleLoad(kPid, path), score); }
};

TEST_F(LineScoringTest, LoadOfAWatchedLibraryAddsAPoint) {
  EXPECT_EQ(ScoreAfterLoad(L"C:\\Windows\\System32\\bcrypt.dll"), 6);
  EXPECT_EQ(ScoreAfterLoad(L"C:\\Windows\\System32\\cryptbase.dll"), 6);
  EXPECT_EQ(ScoreAfterLoad(L"C:\\Windows\\System32\\bcryptprimitives.dll"), 6);
  EXPECT_EQ(ScoreAfterLoad(L"C:\\Windows\\System32\\cryptsp.dll"), 6);
}

TEST_F(LineScoringTest, WatchedNamesMatchInTheirOwnLetterCaseOnly) {
  EXPECT_EQ(ScoreAfterLoad(L"C:\\Windows\\System32\\BCrypt.dll"), 5);
  EXPECT_EQ(ScoreAfterLoad(L"C:\\Windows\\System32\\BCRYPT.DLL"), 5);
}

TEST_F(LineScoringTest, LettersOfTheFolderDoNotMatter) { EXPECT_EQ(ScoreAfterLoad(L"D:\\ANY\\FOLDER\\bcrypt.dll"), 6); }

TEST_F(LineScoringTest, OtherNamesAddNothing) {
  EXPECT_EQ(ScoreAfterLoad(L"C:\\Windows\\System32\\kernel32.dll"), 5);
  EXPECT_EQ(ScoreAfterLoad(L"C:\\Windows\\System32\\bcrypt.dll2"), 5);
  EXPECT_EQ(ScoreAfterLoad(L"C:\\Windows\\System32\\bcrypt.dl"), 5);
  EXPECT_EQ(ScoreAfterLoad(L"C:\\Windows\\System32\\xbcrypt.dll"), 5);
  EXPECT_EQ(ScoreAfterLoad(L"C:\\bcrypt.dll\\other.dll"), 5);
  EXPECT_EQ(ScoreAfterLoad(L""), 5);
}

TEST_F(LineScoringTest, FileNameBeginsAfterAnySeparator) {
  EXPECT_EQ(ScoreAfterLoad(L"bcrypt.dll"), 6);
  EXPECT_EQ(ScoreAfterLoad(L"C:/Windows/bcrypt.dll"), 6);
  EXPECT_EQ(ScoreAfterLoad(L"C:bcrypt.dll"), 6);
}

TEST_F(LineScoringTest, SeparatorAtTheEndBelongsToTheName) { EXPECT_EQ(ScoreAfterLoad(L"C:\\Windows\\bcrypt.dll\\"), 5); }

TEST_F(LineScoringTest, IgnoredProcessStaysIgnored) { EXPECT_EQ(ScoreAfterLoad(L"C:\\bcrypt.dll", 0), 0); }

TEST_F(LineScoringTest, NullLineScoresZero) { EXPECT_EQ(ZtCalculateSingleLineScore(engine_, nullptr, 5), 0); }

TEST_F(LineScoringTest, ScoresWrapAt32Bits) {
  EXPECT_EQ(ScoreAfterLoad(L"C:\\bcrypt.dll", std::numeric_limits<ZtLong>::max()), std::numeric_limits<ZtLong>::min());
  EXPECT_EQ(ScoreAfterLoad(L"C:\\bcrypt.dll", -5), -4);
  EXPECT_EQ(ScoreAfterLoad(L"C:\\bcrypt.dll", -1), 0);
}

TEST_F(LineScoringTest, OtherBehaviorsLeaveTheScore) {
  for (const std::uint32_t behavior : {0u, 0x4001u, 0x4004u, 0x400Bu, 0x8001u, 0xC000u, 0xC002u, 0xC003u, 0x1C001u}) {
    EXPECT_EQ(ScoreAfter(MakeEvent(behavior, kPid, L"C:\\bcrypt.dll"), 5), 5) << std::hex << behavior;
  }
}

TEST_F(LineScoringTest, OnlyModuleLoadsCountEvenWhenTheTableWatchesMore) {
  core().CryptoModules[BehaviorRead] = {L"bcrypt.dll"};
  EXPECT_EQ(ScoreAfter(Read(kPid, L"C:\\bcrypt.dll"), 5), 5);
}

TEST_F(LineScoringTest, TableDecidesWhichNamesAreWatched) {
  core().CryptoModules[BehaviorModuleLoad] = {L"first.dll", L"second.dll"};
  EXPECT_EQ(ScoreAfterLoad(L"C:\\first.dll"), 6);
  EXPECT_EQ(ScoreAfterLoad(L"C:\\second.dll"), 6);
  EXPECT_EQ(ScoreAfterLoad(L"C:\\bcrypt.dll"), 5);
  core().CryptoModules.clear();
  EXPECT_EQ(ScoreAfterLoad(L"C:\\first.dll"), 5);
}

TEST_F(LineScoringTest, NameListedTwiceAddsOnePoint) {
  core().CryptoModules[BehaviorModuleLoad] = {L"first.dll", L"first.dll"};
  EXPECT_EQ(ScoreAfterLoad(L"C:\\first.dll"), 6);
}

TEST_F(LineScoringTest, TargetWithoutTerminatorEndsWithTheRecord) {
  const std::wstring name = L"\\bcrypt.dll";
  EXPECT_EQ(ScoreAfterLoad(std::wstring(524 - name.size(), L'd') + name), 6);
}

TEST_F(LineScoringTest, NothingIsStored) {
  StartProcess(kPid);
  EXPECT_EQ(ScoreAfterLoad(L"C:\\bcrypt.dll", ScoreOf(kPid)), 2);
  EXPECT_EQ(ScoreOf(kPid), 1);
}

TEST_F(LineScoringTest, NothingIsTraced) {
  TraceCapture trace(kTraceDebug);
  ScoreAfterLoad(L"C:\\bcrypt.dll");
  EXPECT_THAT(trace.Take(), IsEmpty());
}

TEST_F(LineScoringTest, InsertedLoadsRaiseTheScoreOneByOne) {
  StartProcess(kPid);
  EXPECT_EQ(Insert(ModuleLoad(kPid, L"C:\\bcrypt.dll")), 0);
  EXPECT_EQ(ScoreOf(kPid), 2);
  Insert(ModuleLoad(kPid, L"C:\\bcrypt.dll"));
  EXPECT_EQ(ScoreOf(kPid), 3);
  Insert(ModuleLoad(kPid, L"C:\\kernel32.dll"));
  EXPECT_EQ(ScoreOf(kPid), 3);
}

TEST_F(LineScoringTest, LoadsAreNotChargedToTheParent) {
  StartProcess(kPid);
  StartChild(kPid, 20);
  Insert(ModuleLoad(20, L"C:\\bcrypt.dll"));
  EXPECT_EQ(ScoreOf(kPid), 1);
  EXPECT_EQ(ScoreOf(20), 2);
}

class UpdateScoreTest : public EngineTest {
 protected:
  UpdateScoreTest() { StartProcess(kPid); }
};

TEST_F(UpdateScoreTest, SetsTheScore) {
  ZtUpdateScore(engine_, Handle(kPid), 17);
  EXPECT_EQ(ScoreOf(kPid), 17);
  ZtUpdateScore(engine_, Handle(kPid), -3);
  EXPECT_EQ(ItemOf(kPid)->Score, -3);
}

TEST_F(UpdateScoreTest, ProcessSetToZeroIsIgnoredFromThenOn) {
  ZtUpdateScore(engine_, Handle(kPid), 0);
  Insert(ModuleLoad(kPid, L"C:\\bcrypt.dll"));
  EXPECT_EQ(ScoreOf(kPid), 0);
  EXPECT_EQ(Overwrite(kPid, L"c:\\a.doc"), 0);
  EXPECT_TRUE(FileOf(kPid, L"c:\\a.doc")->penalized);
  EXPECT_EQ(ScoreOf(kPid), 0);
}

TEST_F(UpdateScoreTest, NewestProcessOfAReusedIdIsMeant) {
  StartProcess(kPid, 300);
  ZtUpdateScore(engine_, Handle(kPid), 9);
  EXPECT_EQ(core().Tree.Find({kPid, 300})->Item.Score, 9);
  EXPECT_EQ(core().Tree.Find({kPid, 100})->Item.Score, 1);
}

TEST_F(UpdateScoreTest, OtherMembersStay) {
  ItemOf(kPid)->ScoreTime = 55;
  ZtUpdateScore(engine_, Handle(kPid), 9);
  EXPECT_EQ(ItemOf(kPid)->ScoreTime, 55);
}

TEST_F(UpdateScoreTest, UnknownIdIsRememberedWithStartTimeZero) {
  ZtUpdateScore(engine_, Handle(99), 9);
  ASSERT_NE(core().FindStartTime(99), nullptr);
  EXPECT_EQ(*core().FindStartTime(99), 0);
  EXPECT_EQ(core().Tree.size(), 1u);
  EXPECT_EQ(ScoreOf(kPid), 1);
}

TEST_F(UpdateScoreTest, KnownIdWithoutAProcessKeepsItsStartTime) {
  core().StartTimes[99] = 44;
  ZtUpdateScore(engine_, Handle(99), 9);
  EXPECT_EQ(*core().FindStartTime(99), 44);
  EXPECT_EQ(core().Tree.size(), 1u);
}

TEST_F(UpdateScoreTest, TracedTextSaysZeroWhateverTheScore) {
  TraceCapture trace(kTraceDebug);
  ZtUpdateScore(engine_, Handle(kPid), 9);
  EXPECT_THAT(trace.Take(), ElementsAre(TraceLine{154, "debug", "Ignore 10, setting score to 0"}));
}

TEST_F(UpdateScoreTest, IdIsTracedUnsigned) {
  StartProcess(0xFFFFFFF0);
  TraceCapture trace(kTraceDebug);
  ZtUpdateScore(engine_, Handle(0xFFFFFFF0), 0);
  EXPECT_THAT(trace.TakeMessages(), ElementsAre("Ignore 4294967280, setting score to 0"));
}

TEST_F(UpdateScoreTest, UnknownIdIsNotTraced) {
  TraceCapture trace(kTraceDebug);
  ZtUpdateScore(engine_, Handle(99), 9);
  EXPECT_THAT(trace.Take(), IsEmpty());
}

TEST_F(UpdateScoreTest, NothingIsTracedUnlessDebugLinesAreOn) {
  TraceCapture trace(kTraceInfo | kTraceWarning);
  trace.Take();
  ZtUpdateScore(engine_, Handle(kPid), 9);
  EXPECT_THAT(trace.Take(), IsEmpty());
}

}  // namespace
}  // namespace zt::testing
