#include "tools/replay/process_ledger.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <map>
#include <optional>
#include <set>

namespace replay {
namespace {

using Cause = zt::ScoreReport::Cause;

constexpr ZtProcKey kParent = {10, 100};
constexpr ZtProcKey kChild = {11, 110};

ScoreChange Charge(ZtProcKey process, std::int32_t before, std::int32_t after, const wchar_t* file) {
  return {process, process == kParent ? Cause::kParentPenalty : Cause::kPenalty, before, after, 2, file};
}
ScoreChange Change(ZtProcKey process, Cause cause, std::int32_t before, std::int32_t after) {
  return {process, cause, before, after, 0, {}};
}

/// Knows the two processes.
bool LookUp(const ZtProcKey& key, zt::ProcessView& process) {
  if (key == kParent) {
    process = {kParent, {}, 1, false, L"C:\\parent.exe"};
    return true;
  }
  if (key == kChild) {
    process = {kChild, kParent, 1, false, L"C:\\child.exe"};
    return true;
  }
  return false;
}

class ProcessLedgerTest : public ::testing::Test {
 protected:
  void Apply(std::initializer_list<ScoreChange> scores, std::uint64_t number = 1, std::int64_t time = 1000) {
    CallReports reports;
    reports.scores = scores;
    ledger_.Apply(reports, number, time, LookUp);
  }

  ProcessLedger ledger_{8};
};

TEST_F(ProcessLedgerTest, EntersAChargedProcessWithItsParent) {
  Apply({Charge(kChild, 1, 2, L"a")});
  const ProcessRecord* child = ledger_.Find(kChild);
  ASSERT_NE(child, nullptr);
  EXPECT_EQ(child->image, L"C:\\child.exe");
  EXPECT_EQ(child->parent, kParent);
  EXPECT_EQ(child->parent_image, L"C:\\parent.exe");
  EXPECT_EQ(child->score, 2);
  EXPECT_TRUE(child->suspicious);
  EXPECT_FALSE(child->alarm);
  EXPECT_EQ(ledger_.records().size(), 1U);
}

TEST_F(ProcessLedgerTest, EntersASuspiciousProcessThatWasNotCharged) {
  Apply({Change(kChild, Cause::kModuleLoad, 1, 2)});
  ASSERT_NE(ledger_.Find(kChild), nullptr);
  EXPECT_TRUE(ledger_.Find(kChild)->damaged_files.empty());
}

TEST_F(ProcessLedgerTest, LeavesOutWhoIsNeitherChargedNorSuspicious) {
  Apply({Change(kChild, Cause::kUpdate, 1, 0), Change(kParent, Cause::kReset, 0, 1)});
  EXPECT_TRUE(ledger_.records().empty());
}

TEST_F(ProcessLedgerTest, AnIgnoredProcessThatIsChargedIsNotSuspicious) {
  Apply({Charge(kChild, 0, 0, L"a")});
  ASSERT_NE(ledger_.Find(kChild), nullptr);
  EXPECT_FALSE(ledger_.Find(kChild)->suspicious);
}

TEST_F(ProcessLedgerTest, TheAlarmComesWithTheFirstScoreThatReachesIt) {
  Apply({Charge(kChild, 1, 2, L"a")}, 1, 1000);
  Apply({Charge(kChild, 2, 4, L"b")}, 2, 2000);
  EXPECT_FALSE(ledger_.Find(kChild)->alarm);
  Apply({Charge(kChild, 4, 8, L"c")}, 3, 3000);
  Apply({Charge(kChild, 8, 16, L"d")}, 4, 4000);
  const ProcessRecord& child = *ledger_.Find(kChild);
  ASSERT_TRUE(child.alarm);
  EXPECT_EQ(child.alarm->number, 3U);
  EXPECT_EQ(child.alarm->time, 3000);
  EXPECT_EQ(child.alarm->damaged_files, 3U);
  EXPECT_EQ(child.score, 16);
}

TEST_F(ProcessLedgerTest, AnAncestorReachesTheAlarmInTheSameEvent) {
  Apply({Change(kParent, Cause::kUpdate, 1, 4)}, 1);
  Apply({Charge(kChild, 1, 2, L"a"), Charge(kParent, 4, 8, L"a")}, 2);
  EXPECT_FALSE(ledger_.Find(kChild)->alarm);
  ASSERT_TRUE(ledger_.Find(kParent)->alarm);
  EXPECT_EQ(ledger_.Find(kParent)->alarm->number, 2U);
  EXPECT_EQ(ledger_.Find(kParent)->alarm->damaged_files, 1U);
}

TEST_F(ProcessLedgerTest, AModuleLoadCanReachTheAlarm) {
  Apply({Change(kChild, Cause::kModuleLoad, 7, 8)}, 5);
  ASSERT_TRUE(ledger_.Find(kChild)->alarm);
  EXPECT_EQ(ledger_.Find(kChild)->alarm->damaged_files, 0U);
}

TEST_F(ProcessLedgerTest, AFileDamagedTwiceCountsOnce) {
  Apply({Charge(kChild, 1, 2, L"a")});
  Apply({Change(kChild, Cause::kReset, 2, 1)});
  Apply({Charge(kChild, 1, 2, L"a")});
  EXPECT_EQ(ledger_.Find(kChild)->damaged_files.size(), 1U);
}

TEST_F(ProcessLedgerTest, TheScoreAfterTheEventCounts) {
  // The product wraps below zero and is cut back within the same event.
  Apply({Charge(kChild, 0x40000000, -0x7FFFFFFF - 1, L"a"), Change(kChild, Cause::kClamp, -0x7FFFFFFF - 1, 0x7FFFFFFF)});
  EXPECT_TRUE(ledger_.Find(kChild)->alarm);
  EXPECT_EQ(ledger_.Find(kChild)->highest_score, 0x7FFFFFFF);
}

TEST_F(ProcessLedgerTest, AScoreBelowZeroIsSuspiciousButNoAlarm) {
  Apply({Charge(kParent, 0x7FFFFFFF, -2, L"a")});
  EXPECT_TRUE(ledger_.Find(kParent)->suspicious);
  EXPECT_FALSE(ledger_.Find(kParent)->alarm);
}

TEST_F(ProcessLedgerTest, RemembersTheHighestScore) {
  Apply({Change(kChild, Cause::kUpdate, 1, 6)});
  Apply({Change(kChild, Cause::kReset, 6, 1)});
  EXPECT_EQ(ledger_.Find(kChild)->score, 1);
  EXPECT_EQ(ledger_.Find(kChild)->highest_score, 6);
  EXPECT_TRUE(ledger_.Find(kChild)->suspicious);
}

TEST_F(ProcessLedgerTest, AForgottenKeyStartsANewRecord) {
  Apply({Charge(kChild, 1, 2, L"a")});
  ledger_.Forget(kChild);
  EXPECT_EQ(ledger_.Find(kChild), nullptr);
  Apply({Charge(kChild, 1, 2, L"b")});
  EXPECT_EQ(ledger_.records().size(), 2U);
  EXPECT_EQ(ledger_.Find(kChild), &ledger_.records().back());
}

TEST_F(ProcessLedgerTest, AProcessThatCannotBeFoundHasNoImage) {
  Apply({Charge({99, 1}, 1, 2, L"a")});
  EXPECT_EQ(ledger_.records().front().image, L"");
  EXPECT_EQ(ledger_.records().front().parent, ZtProcKey{});
}

TEST_F(ProcessLedgerTest, AProductBeyond32BitsWraps) {
  Apply({Charge(kParent, 0x20000000, 0x40000000, L"a")}, 1);
  EXPECT_EQ(ledger_.Find(kParent)->wrapped, std::nullopt);
  Apply({Charge(kParent, 0x40000000, -0x7FFFFFFF - 1, L"b")}, 2);
  Apply({Charge(kParent, -0x7FFFFFFF - 1, 0, L"c")}, 3);
  EXPECT_EQ(ledger_.Find(kParent)->wrapped, 2U);
}

TEST_F(ProcessLedgerTest, AScoreThatIsCutToItsBoundDoesNotWrap) {
  Apply({Charge(kChild, 0x40000000, -0x7FFFFFFF - 1, L"a"), Change(kChild, Cause::kClamp, -0x7FFFFFFF - 1, 0x7FFFFFFF)}, 4);
  EXPECT_EQ(ledger_.Find(kChild)->wrapped, std::nullopt);
}

TEST_F(ProcessLedgerTest, CountsLoadsOfWatchedLibraries) {
  Apply({Change(kChild, Cause::kModuleLoad, 1, 2)});
  Apply({Change(kChild, Cause::kModuleLoad, 2, 3)});
  Apply({Change(kChild, Cause::kUpdate, 3, 7)});
  EXPECT_EQ(ledger_.Find(kChild)->library_loads, 2U);
}

/// Processes 1 to 9, whose start times are their ids, with the parents that a test gives them.
class CulpritTest : public ::testing::Test {
 protected:
  static constexpr ZtProcKey Key(std::uint64_t pid) { return {pid, static_cast<std::int64_t>(pid)}; }

  void Alarm(std::initializer_list<std::uint64_t> pids) {
    CallReports reports;
    for (const std::uint64_t pid : pids) {
      reports.scores.push_back({Key(pid), Cause::kPenalty, 4, 8, 2, L"a"});
    }
    ledger_.Apply(reports, 1, 1000, [this](const ZtProcKey& key, zt::ProcessView& process) {
      ++looks_;
      const auto parent = parents_.find(key.Pid);
      process = {key, parent == parents_.end() ? ZtProcKey{} : Key(parent->second), 1, false, L""};
      return key.Pid != 0 && key == Key(key.Pid);
    });
  }
  std::set<std::uint64_t> Culprits() {
    std::set<std::uint64_t> pids;
    for (const ProcessRecord& record : ledger_.records()) {
      if (record.IsCulprit()) {
        pids.insert(record.key.Pid);
      }
    }
    return pids;
  }

  std::map<std::uint64_t, std::uint64_t> parents_;
  ProcessLedger ledger_{8};
  std::size_t looks_ = 0;
};

using Pids = std::set<std::uint64_t>;

TEST_F(CulpritTest, IsTheDeepestThatReachedTheAlarm) {
  parents_ = {{2, 1}, {3, 2}, {4, 3}};
  Alarm({3, 2, 1});
  EXPECT_EQ(Culprits(), Pids{3});  // 4 did nothing.
}

TEST_F(CulpritTest, IsTheParentOfWorkersThatStayBelowTheAlarm) {
  parents_ = {{2, 1}, {3, 2}, {4, 2}};
  Alarm({2, 1});
  EXPECT_EQ(Culprits(), Pids{2});
}

TEST_F(CulpritTest, IsWhoeverIsDeepestHoweverLate) {
  parents_ = {{2, 1}, {3, 2}};
  Alarm({1});
  EXPECT_EQ(Culprits(), Pids{1});
  Alarm({3});
  EXPECT_EQ(Culprits(), Pids{3});
  Alarm({2});
  EXPECT_EQ(Culprits(), Pids{3});
}

TEST_F(CulpritTest, ThereCanBeSeveral) {
  parents_ = {{2, 1}, {3, 1}};
  Alarm({2, 1});
  Alarm({3});
  EXPECT_EQ(Culprits(), (Pids{2, 3}));
}

TEST_F(CulpritTest, OfOneIdIsThatOfItsTime) {
  parents_ = {{2, 1}};
  CallReports reports;
  reports.scores.push_back({{1, 77}, Cause::kPenalty, 4, 8, 2, L"a"});  // Had the id before the parent.
  ledger_.Apply(reports, 1, 1000, [](const ZtProcKey&, zt::ProcessView&) { return false; });
  Alarm({2, 1});
  EXPECT_TRUE(ledger_.Find({1, 77})->IsCulprit());
  EXPECT_FALSE(ledger_.Find(Key(1))->IsCulprit());
  EXPECT_TRUE(ledger_.Find(Key(2))->IsCulprit());
}

TEST_F(CulpritTest, InACycleOfParentsNobodyIsDeeper) {
  parents_ = {{1, 3}, {2, 1}, {3, 2}};
  Alarm({3, 2, 1});
  EXPECT_EQ(Culprits(), (Pids{1, 2, 3}));
}

TEST_F(CulpritTest, IsBelowACycleOfParents) {
  parents_ = {{1, 2}, {2, 1}, {3, 2}};
  Alarm({2, 1});
  Alarm({3});
  EXPECT_EQ(Culprits(), Pids{3});
}

TEST_F(CulpritTest, CanBeItsOwnParent) {
  parents_ = {{1, 1}};
  Alarm({1});
  EXPECT_EQ(Culprits(), Pids{1});
}

TEST_F(CulpritTest, ManyAncestorsAreClimbedOnce) {
  constexpr std::uint64_t kDeepest = 1000;
  for (const std::uint64_t top : {0U, 1U}) {  // A line of parents, then a cycle.
    ledger_ = ProcessLedger(8);
    for (std::uint64_t pid = 1; pid <= kDeepest; ++pid) {
      parents_[pid] = pid - 1;
    }
    parents_[1] = top * kDeepest;
    looks_ = 0;
    Alarm({kDeepest});
    for (std::uint64_t pid = kDeepest - 1; pid > 0; --pid) {
      Alarm({pid});
    }
    // For each process some looks for its record and some for the climb; a climb a process would be half a million.
    EXPECT_LT(looks_, 10 * kDeepest);
  }
}

}  // namespace
}  // namespace replay
