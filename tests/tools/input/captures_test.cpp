// The real captures of the repository, read to their ends. Every number was counted apart from these readers, by a script of
// some lines over the uncompressed captures (Python's csv and json modules; folders known from the whole file), or stands in
// the capture's SOURCE.md.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "tests/tools/input/reading.h"

namespace replay::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

// The capture in a folder of the repository's captures: the one file that is not about it.
std::string CaptureIn(const std::string& folder) {
  std::string capture;
  for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(ZT_CAPTURES_DIR) / folder)) {
    const std::string name = entry.path().filename().string();
    if (name != "SOURCE.md" && name != "LICENSE") {
      capture = entry.path().string();
    }
  }
  return capture;
}

// What a test asks of a capture, gathered while it is read.
struct Gathered {
  CaptureFormat format;
  std::string error;
  ReadCounts counts;
  std::uint64_t events = 0;
  std::map<std::uint32_t, std::uint64_t> codes;
  std::uint64_t opens_of_new = 0;
  std::uint64_t largest_opened = 0;             // The largest size with which a file was opened.
  std::map<std::uint64_t, std::string> images;  // Of created processes.
  std::map<std::uint64_t, std::uint64_t> parents;
  std::set<std::string> renamed;      // Sources of renames to the same name with ".ecc", in lower case.
  std::set<std::string> overwritten;  // Files of 2148 that it opened, read and wrote from the start, in this order.

  void Take(const Call& call);

 private:
  std::set<std::string> opened_;
  std::set<std::string> read_;
};

void Gathered::Take(const Call& call) {
  const LOG_ITEM& record = call.record;
  const std::string target = TargetText(record);
  ++events;
  ++codes[record.Behavior];
  const std::string file = target.substr(0, target.find('|'));
  if (record.Behavior == BehaviorCreate && record.TargetPid == 0) {
    ++opens_of_new;
  }
  if (record.Behavior == BehaviorCreate) {
    largest_opened = std::max<std::uint64_t>(largest_opened, record.TargetPid);
  }
  if (record.Behavior == BehaviorCreate && record.TargetPid != 0 && record.Pid == 2148) {
    opened_.insert(file);
  }
  if (record.Behavior == BehaviorRead && opened_.contains(file)) {
    read_.insert(file);
  }
  if (record.Behavior == BehaviorWrite && record.TargetPid == 0 && read_.contains(file)) {
    overwritten.insert(file);
  }
  if (record.Behavior == BehaviorRename && target == file + '|' + file + ".ecc") {
    renamed.insert(file);
  }
  if (record.Behavior == BehaviorProcessCreate) {
    images[record.TargetPid] = target;
    parents[record.TargetPid] = record.Pid;
  }
}

Gathered Gather(const std::string& folder) {
  Gathered gathered;
  auto source = OpenByteSource(CaptureIn(folder));
  gathered.format = DetectFormat(*source);
  const auto reader = MakeReader(gathered.format, std::move(source));
  gathered.error = ErrorOf([&] {
    Call call;
    while (reader->Next(call)) {
      gathered.Take(call);
    }
  });
  gathered.counts = reader->counts();
  return gathered;
}

// Read once for the tests that look at it.
const Gathered& EncryptingRun() {
  static const Gathered kRun = Gather("cuckoo-encrypting-run-2016");
  return kRun;
}

TEST(CapturesTest, AnEncryptingRunInASandbox) {
  const Gathered& run = EncryptingRun();
  EXPECT_EQ(run.error, "");
  EXPECT_EQ(run.format, CaptureFormat::kSandbox);
  EXPECT_EQ(run.counts.rows, 14702U);
  EXPECT_EQ(run.events, 3152U);
  EXPECT_THAT(run.codes, ElementsAre(Pair(0x4001, 632), Pair(0x4003, 395), Pair(0x4004, 1645), Pair(0x4006, 387),
                                     Pair(0x4007, 16), Pair(0x4008, 14), Pair(0xC001, 51), Pair(0xC002, 5), Pair(0xC003, 7)));
  EXPECT_EQ(run.opens_of_new, 215U);
  EXPECT_EQ(run.counts.skipped.at("call failed"), 1660U);
}

TEST(CapturesTest, TheEncryptingRunOverwritesAndThenRenamesEachOf387Files) {
  const Gathered& run = EncryptingRun();
  EXPECT_EQ(run.renamed.size(), 387U);
  for (const std::string& file : run.renamed) {
    EXPECT_TRUE(run.overwritten.contains(file)) << file;
  }
}

TEST(CapturesTest, TheProcessesOfTheEncryptingRunAreATree) {
  const Gathered& run = EncryptingRun();
  EXPECT_THAT(run.parents, ElementsAre(Pair(1060, 1380), Pair(1380, 1528), Pair(1528, 0), Pair(1756, 1060), Pair(2068, 1060),
                                       Pair(2148, 1756), Pair(2644, 2148)));
  EXPECT_EQ(run.images.at(2644), "C:\\Windows\\System32\\vssadmin.exe");
  EXPECT_EQ(run.images.at(2148), "C:\\Users\\PLAIN7\\AppData\\Roaming\\yyxxhtv.exe");
}

TEST(CapturesTest, AnInjectingRunInASandbox) {
  const Gathered run = Gather("cuckoo-injection-run-2016");
  EXPECT_EQ(run.error, "");
  EXPECT_EQ(run.format, CaptureFormat::kSandbox);
  EXPECT_EQ(run.counts.rows, 17669U);
  EXPECT_EQ(run.events, 846U);
  EXPECT_THAT(run.codes, ElementsAre(Pair(0x4001, 124), Pair(0x4003, 55), Pair(0x4004, 7), Pair(0x4008, 15), Pair(0xC001, 634),
                                     Pair(0xC002, 2), Pair(0xC003, 9)));
  EXPECT_EQ(run.opens_of_new, 5U);
}

TEST(CapturesTest, ADesktopInUse) {
  const Gathered run = Gather("procmon-win10-desktop-2020");
  EXPECT_EQ(run.error, "");
  EXPECT_EQ(run.format, CaptureFormat::kProcmon);
  EXPECT_EQ(run.counts.rows, 53214U);
  // Of 813 opens of existing names that are not marked as folders, 173 are folders, roots or the volume all the same.
  EXPECT_THAT(run.codes,
              ElementsAre(Pair(0x4001, 665), Pair(0x4003, 1376), Pair(0x4004, 301), Pair(0x4005, 7), Pair(0x4007, 33),
                          Pair(0x4008, 153), Pair(0xC001, 147), Pair(0xC002, 2), Pair(0xC003, 32)));
  EXPECT_EQ(run.opens_of_new, 25U);
  EXPECT_EQ(run.largest_opened, 18546688U);  // StaticCache.dat of the fonts; a date of a query is no size.
  EXPECT_EQ(run.counts.skipped.at("registry access"), 46030U);
  EXPECT_EQ(run.counts.skipped.at("close"), 944U);
  EXPECT_EQ(run.counts.skipped.at("section released"), 146U);
  EXPECT_EQ(run.counts.targets_cut, 0U);
  EXPECT_EQ(run.parents.at(3232), 3596U);
}

TEST(CapturesTest, ProcessesAndModulesOnly) {
  const Gathered run = Gather("procmon-win10-processes-2020");
  EXPECT_EQ(run.error, "");
  EXPECT_EQ(run.format, CaptureFormat::kProcmon);
  EXPECT_EQ(run.counts.rows, 3400U);
  // 39 creations, 5 starts without one, 29 processes that ran already and 4 parents that never act.
  EXPECT_THAT(run.codes, ElementsAre(Pair(0xC001, 1952), Pair(0xC002, 34), Pair(0xC003, 77)));
  EXPECT_THAT(run.counts.skipped,
              ElementsAre(Pair("start of a process whose creation was fed", 39), Pair("thread event", 1331)));
}

}  // namespace
}  // namespace replay::testing
