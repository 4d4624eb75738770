// The random calls reach everything that there is to reach: a comparison that never gets somewhere says nothing about it.

#include "tests/model/random_events.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <map>
#include <string_view>

#include "tests/model/model_engine.h"
#include "tests/model/play_call.h"

namespace zt::model {
namespace {

constexpr std::uint64_t kEngines = 60;
constexpr int kCalls = 1000;

/// How often each trace text was written and each branch was reached.
std::map<std::string_view, std::uint64_t> ReachedByRandomCalls() {
  std::map<std::string_view, std::uint64_t> reached;
  for (std::uint64_t seed = 1; seed <= kEngines; ++seed) {
    RandomEvents events(seed);
    ModelEngine model(7, 0x7);
    for (int i = 0; i < kCalls; ++i) {
      Play(model, events.Next());
    }
    for (const auto& [text, count] : model.trace().reached()) {
      reached[text] += count;
    }
  }
  return reached;
}

// "Pid node not found\n" is not among them: a penalty comes from a callback, a callback runs for a process that is in the tree
// (or for its parent), and so the process is there when the penalty is charged. The text is kept for the day this changes.
constexpr std::string_view kTexts[] = {
    "init\n",
    "Adding Transition from state %d with input %08x",
    "Next State from %d with %08x",
    "Callback: UnknownCreate",
    "Callback: DeletedCreate",
    "Callback: OpenExistingRead",
    "Callback: OpenReadSync",
    "Callback: ReadWrite",
    "Callback: DeleteWrite",
    "Callback: SyncWrite",
    "Callback: WriteSimilarDelete",
    "Callback: ReadDelete",
    "Callback: DeleteOrgRename",
    "Callback: SyncRename",
    "Callback: WriteSimilarRename",
    "ZT_OPEN_EXISTING",
    "ZT_READ_START: Found creating already deleted file with identical name",
    "ZT_READ_START",
    "LB_PreSectionSync ZT_READ_START",
    "ZT_RENAME_SECTION_SYNC",
    "ZT_OVERWRITE",
    "ZT_DELETE_ORG + ZT_WRITE_SIMILAR",
    "ZT_SECTION_SYNC + ZT_WRITE_SIMILAR",
    "ZT_WRITTEN_DELETE",
    "ZT_DELETE_ORG",
    "ZT_DELETE_ORG + Renamed + ZT_WRITE_SIMILAR",
    "Cannot find \\ in Dst:%ws",
    "New folder:%ws",
    "Same folder as previous, ZT_WRITE_SIMILAR_SYNC",
    "Unable to find timestamp for PID %ld",
    "ProcKey: (%d, %lld) Path: %ws Penalty: %d",
    "Cannot find file in file context\n",
    "File already penalized\n",
    "|--- [SCORE INCREASED] PID:%ld score: %d, TimeStamp: %lld ---|\n",
    "Time past: %lld nanoseconds",
    "==========================================================================================================",
    "[[ log: Time %lld Pid %lu Tid %ld path %s behavior %08x target_pid %ld target %ws ]]",
    "log: Time %lld Pid %lu Tid %ld path %s behavior %08x target_pid %ld target %ws",
    "No target string found",
    "Process not found in tree",
    "Process is exiting",
    "PID:%ld add new PID:%ld %lld",
    "ProcCreate: ParentKey(%ld, %lld) ChildKey(%ld, %lld)",
    "File size of %ws has been modified, will need to be restored",
    "File %ws needs to be restored",
    "PreWrite:: Offset: %ld, Last offset: %ld, Filesize: %ld, Diff: %ld, Name: %ws, Length: %ld (%ws)",
    "ZT_WRITE_SIMILAR",
    "Renamed file name did not include directory, appending: %ws",
    "LB_PreSetInforamtionRename Src:%ws, Dst:%ws",
    "File %ws is renamed to another similarly named flle %ws ZT_WRITE_SIMILAR",
    "File renamed to another identically named flle: %ws ZT_MAX",
    "%ws still exists in the quarantine list of pid %d",
    "Adding %ws to the quarantine list of pid %d",
    "Removing %ws from the quarantine list",
    "%ws does not exist in the quarantine list",
    "Adding %ws to the created files list",
    "%ws still exists in the created files list",
    "Ignore %lu, setting score to 0",
    "Parent pid %d",
    "Parent Penalty %d",
    "Parent Penalty %d, new file added to proc %d",
    "Name diff: %ws",
    "Extension is %ws, extension2 is %ws, itemext is %ws",
    "Ext diff: %ws, targetname: %ws, itemname: %ws",
    "ZtResetScore start :: ProcTree size: %u",
    "GC: reset %ld %d to 1\n",
    "File %ws does not need recovery, will be erased from file context. Time elapsed %lld",
    "PID: %ld",
    "ZtResetScore end:: ProcTree size: %u",
    "Key: (%ld, %lld)",
    "RootKey: (%ld, %lld)",
    "Number of items in tree: %d",
    "Proc Pid: %ld has score %lu",
    "ZtGetFinalStateFileByPid:: Pid:%ld Time:%lld",
    "Not restoring %ws",
    "%ld does not exist in the tree",
    "%ws will get restored",
    "%ws will not get restored",
};

constexpr std::string_view kBranches[] = {
    "UnknownCreate: guard fails",
    "similar: empty difference",
    "similar: empty path contained, found",
    "insert: no second pass for a parent whose id has no low bits",
    "insert: second pass for the process itself",
    "insert: second pass done",
    "charge: ignored process",
    "charge: score wraps to 0",
    "write: considered for its length alone",
    "write: considered for the offset 0 alone",
    "write: considered for an offset at the size alone",
    "write: considered for its difference alone",
    "write: considered for its offset alone",
    "write: similar file was in a final state",
    "rename: onto itself",
    "rename: destination replaced",
    "reset: exited process waits",
    "reset: process unlinked",
    "reset: file exactly at the limit",
    "final state: restore",
    "final state: no restore",
    "DeletedCreate: guard fails",
    "OpenReadSync: not renamed",
    "OpenReadSync: renamed",
    "ReadWrite: guard fails",
    "DeleteWrite: guard fails",
    "SyncWrite: guard fails",
    "DeleteOrgRename: guard fails",
    "SyncRename: guard fails",
    "SyncRename: moves on",
    "WriteSimilarRename: not read and marked",
    "WriteSimilarRename: no destination",
    "WriteSimilarRename: bare destination",
    "WriteSimilarRename: stays in the folder",
    "WriteSimilarRename: arms",
    "NextState: no row",
    "parent penalty: charged before",
    "parent penalty: score is 0",
    "score walk: own score clamped",
    "score walk: parent's score clamped",
    "exit: unknown process",
    "exit: a second time",
    "creation: prefix removed",
    "creation: of itself",
    "creation: of a known key",
    "create: opens a file that the process made",
    "second delete: of a created file",
    "second delete: file was not created",
    "write: considered",
    "write: not considered",
    "write: remembered",
    "write: remembered for an unknown file",
    "rename: only the source is similar",
    "similar: path contained, found",
    "similar: name contained, found",
    "similar: name contained, learned",
    "similar: target without extension",
    "similar: stem not in the target",
    "similar: extension for the dot, found",
    "similar: extension for the dot, learned",
    "similar: new extension, other length",
    "similar: new extension, found",
    "similar: new extension, learned",
    "similar: stem grown, found",
    "similar: stem grown, learned",
    "similar: nothing found",
    "reset: process erased",
    "final state: excluded",
    "final state: no candidate",
};

TEST(RandomEventsTest, ReachEveryTraceTextAndBranch) {
  const auto reached = ReachedByRandomCalls();
  for (const std::string_view text : kTexts) {
    EXPECT_TRUE(reached.contains(text)) << "never written: " << text;
  }
  for (const std::string_view branch : kBranches) {
    EXPECT_TRUE(reached.contains(branch)) << "never reached: " << branch;
  }
  // Whatever the model counts is in one of the lists, so that a new text or branch is listed too.
  EXPECT_EQ(reached.size(), std::size(kTexts) + std::size(kBranches));
}

TEST(RandomEventsTest, SameSeedGivesTheSameCalls) {
  RandomEvents one(5);
  RandomEvents other(5);
  for (int i = 0; i < kCalls; ++i) {
    ASSERT_EQ(Describe(one.Next()), Describe(other.Next())) << "call " << i;
  }
}

TEST(RandomEventsTest, OtherSeedsGiveOtherCalls) {
  RandomEvents one(5);
  RandomEvents other(6);
  int different = 0;
  for (int i = 0; i < kCalls; ++i) {
    different += Describe(one.Next()) != Describe(other.Next()) ? 1 : 0;
  }
  EXPECT_GT(different, kCalls / 2);
}

}  // namespace
}  // namespace zt::model
