// Exhausted memory: each call is made with its first, second, third, ... allocation failing, until it needs no more. Whatever
// fails, the lock is released, the tables agree with each other, later calls work and nothing leaks.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "engine/transition_table.h"
#include "tests/engine/failing_allocator.h"
#include "tests/support/engine_test.h"
#include "tests/support/state_dump.h"

namespace zt::testing {
namespace {

using ::testing::AnyOf;
using ::testing::Contains;

using Extent = AllocationFailure::Extent;

const std::wstring kDoc = L"c:\\users\\someone\\documents\\report.docx";
const std::wstring kCopy = kDoc + L".locked";
const std::wstring kElsewhere = L"c:\\users\\someone\\elsewhere\\1.bin";

class AllocationFailureTest : public EngineTest {
 protected:
  using Action = std::function<void()>;

  /// For n = 1, 2, 3, ... as long as there is an n-th allocation: builds an engine, prepares it, makes the call with the n-th
  /// allocation failing, checks it, and frees it. Done for one failing allocation and for all from the n-th on.
  void FailEach(const Action& prepare, const std::function<void(bool failed)>& check, const Action& call) {
    for (const Extent extent : {Extent::kOnce, Extent::kFromThenOn}) {
      bool failed = true;
      for (std::uint64_t number = 1; failed; ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number) + (extent == Extent::kOnce ? " alone" : " and all later ones"));
        failed = FailOne(prepare, check, call, number, extent);
        ASSERT_LT(number, 10000U) << "the call never stops to fail";
      }
    }
  }

  /// The same for an insertion: it must return 0 when an allocation failed, else `result`.
  void FailEachOfInsertion(
      const Action& prepare, LOG_ITEM event, ZtLong result, const Action& check = [] {}) {
    ZtLong returned = -1;
    FailEach(
        prepare,
        [&](bool failed) {
          EXPECT_EQ(returned, failed ? 0 : result);
          check();
        },
        [&] { returned = ZtInsertLog(engine_, &event); });
  }

  /// Process 1 created 2, which created 3, and so on; each under time 100 + its id.
  void StartGenerations(std::uint64_t count) {
    StartProcess(1, 101);
    for (std::uint64_t pid = 2; pid <= count; ++pid) {
      StartChild(pid - 1, pid, static_cast<std::int64_t>(100 + pid));
    }
  }

 private:
  /// Returns whether an allocation failed.
  bool FailOne(const Action& prepare, const std::function<void(bool)>& check, const Action& call, std::uint64_t number,
               Extent extent) {
    engine_.reset();
    const std::int64_t live_before = LiveAllocations();
    ZtInitEngineCore(engine_, 7);
    prepare();
    const bool failed = CallWithFailure(call, number, extent);
    check(failed);
    ExpectConsistentTables();
    ExpectUsableByAnotherThread();
    ExpectConsistentLists();
    engine_.reset();
    EXPECT_EQ(LiveAllocations(), live_before) << "leaked blocks";
    return failed;
  }

  static bool CallWithFailure(const Action& call, std::uint64_t number, Extent extent) {
    const AllocationFailure failure(number, extent);
    try {
      call();
    } catch (const std::bad_alloc&) {
      EXPECT_TRUE(AllocationFailure::HasFailed());
    }
    return AllocationFailure::HasFailed();
  }

  void ExpectConsistentTables() {
    for (auto& [key, entry] : core().Tree) {
      EXPECT_EQ(key, entry.key);
      EXPECT_EQ(key.Pid, entry.Item.Pid);
      EXPECT_EQ(entry.LiveCount, CountAlive(key));
      const ProcessTree::Entry* parent = core().Tree.Find(entry.parentKey);
      if (parent != nullptr) {
        EXPECT_THAT(parent->children, Contains(key));
      }
      for (const ZtProcKey& child : entry.children) {
        ASSERT_NE(core().Tree.Find(child), nullptr);
        EXPECT_EQ(core().Tree.Find(child)->parentKey, key);
      }
      ExpectConsistentFiles(entry.Item);
    }
    for (const auto& [pid, time] : core().StartTimes) {
      EXPECT_NE(core().Tree.Find({pid, time}), nullptr) << "the newest process " << pid << " is not in the tree";
    }
  }

  // What a live count has to be: the processes of the subtree that have not exited.
  std::uint32_t CountAlive(const ZtProcKey& root) {
    std::uint32_t count = 0;
    for (const ProcessTree::Entry* entry : ProcessFamily(core().Tree, root)) {
      count += entry->Item.Exiting == 0 ? 1 : 0;
    }
    return count;
  }

  // A record has left the first state only with its path; one that has a path but was renamed carries its first name.
  static void ExpectConsistentFiles(const ProcessItem& item) {
    item.files.ForEach([](const TrackedFile& tracked) {
      const FileItem& file = tracked.item;
      const std::wstring key = Widen(tracked.key.Lower());
      EXPECT_FALSE(file.State != ZT_UNKNOWN && file.Path.empty()) << Narrow(key);
      EXPECT_FALSE(file.Renamed && file.Path.empty()) << Narrow(key);
      if (!file.Renamed && !file.Path.empty()) {
        EXPECT_EQ(file.Path, key);
      }
    });
  }

  // The lock is re-entrant: only another thread notices that it is still held.
  void ExpectUsableByAnotherThread() {
    ZtLong result = 0;
    std::thread([this, &result] {
      StartProcess(900, 900);
      result = Overwrite(900, L"c:\\probe.doc");
    }).join();
    EXPECT_EQ(result, 2);
  }

  // Takes the lists apart: what the order holds and what is found must be the same paths.
  void ExpectConsistentLists() {
    for (auto& [key, entry] : core().Tree) {
      for (PathList* list : {&entry.Item.QuarantineList, &entry.Item.CreatedFilesList}) {
        const std::vector<std::wstring> paths = list->Paths();
        EXPECT_EQ(std::set<std::wstring>(paths.begin(), paths.end()).size(), paths.size());
        for (const std::wstring& path : paths) {
          EXPECT_TRUE(RemovePath(*list, path)) << Narrow(path);
        }
        EXPECT_TRUE(list->empty());
        for (const std::wstring& path : {kDoc, kCopy, kElsewhere}) {
          EXPECT_FALSE(RemovePath(*list, path)) << Narrow(path);
        }
      }
    }
  }
};

// Insertions.

class InsertionFailureTest : public AllocationFailureTest {
 protected:
  /// As FailEachOfInsertion, for an event that is one change: afterwards the engine is as before it or as after it.
  void FailEachOfOneChange(const Action& prepare, const LOG_ITEM& event) {
    ZtInitEngineCore(engine_, 7);
    prepare();
    const std::string before = DumpState(core());
    Insert(event);
    const std::string after = DumpState(core());
    ASSERT_NE(before, after);
    FailEachOfInsertion(prepare, event, 0, [&] { EXPECT_THAT(DumpState(core()), AnyOf(before, after)); });
  }

  /// As FailEachOfInsertion, for an event of the youngest generation that charges the file `key`: afterwards each of the
  /// `processes` generations is charged and has the file marked, or none is, and then the same event charges them all.
  void FailEachOfCharge(const Action& prepare, const LOG_ITEM& event, std::uint64_t processes, const std::wstring& key,
                        std::int32_t factor) {
    FailEachOfInsertion(prepare, event, factor, [&] {
      const bool charged = ScoreOf(processes) != 1;
      ExpectCharged(processes, key, charged ? factor : 1);
      EXPECT_EQ(Insert(event), charged ? 0 : factor) << "the same event again";
      ExpectCharged(processes, key, factor);
    });
  }

 private:
  void ExpectCharged(std::uint64_t processes, const std::wstring& key, std::int32_t score) {
    for (std::uint64_t pid = 1; pid <= processes; ++pid) {
      const FileItem* file = FileOf(pid, key);
      EXPECT_EQ(ScoreOf(pid), score) << pid;
      EXPECT_EQ(file != nullptr && file->penalized, score != 1) << pid;
    }
  }
};

TEST_F(InsertionFailureTest, ACreationByAKnownProcessIsEnteredWholeOrNotAtAll) {
  FailEachOfOneChange([this] { StartGenerations(3); }, ProcessCreate(3, 10, 200, L"\\??\\C:\\Windows\\child.exe"));
}

TEST_F(InsertionFailureTest, ACreationByAStrangerIsEnteredWholeOrNotAtAll) {
  FailEachOfOneChange([] {}, ProcessCreate(3, 10, 200, L"\\??\\C:\\Windows\\child.exe"));
}

TEST_F(InsertionFailureTest, ACreationThatReusesAnIdIsEnteredWholeOrNotAtAll) {
  FailEachOfOneChange([this] { StartGenerations(3); }, ProcessCreate(1, 3, 900, L"\\??\\C:\\Windows\\child.exe"));
}

TEST_F(InsertionFailureTest, AStrangersCreationOfAKnownKeyIsEnteredWholeOrNotAtAll) {
  FailEachOfOneChange([this] { StartGenerations(3); }, ProcessCreate(77, 3, 103, L"\\??\\C:\\Windows\\other.exe"));
}

TEST_F(InsertionFailureTest, AnExitIsCountedWholeOrNotAtAll) {
  FailEachOfOneChange([this] { StartGenerations(60); }, ProcessExit(60));
}

TEST_F(InsertionFailureTest, AModuleLoadIsScoredOrNot) {
  FailEachOfOneChange([this] { StartGenerations(2); }, ModuleLoad(2, L"C:\\Windows\\System32\\bcryptprimitives.dll"));
}

TEST_F(InsertionFailureTest, AFreshFileIsListedForBothProcesses) {
  FailEachOfInsertion([this] { StartGenerations(2); }, CreateFresh(2, kDoc), 0);
}

TEST_F(InsertionFailureTest, AnOpenedFileHasAWholeRecordOrAnUnnamedOne) {
  FailEachOfInsertion([this] { StartGenerations(2); }, Open(2, kDoc), 0,
                      [this] {
                        for (const std::uint64_t pid : {1U, 2U}) {
                          if (const FileItem* file = FileOf(pid, kDoc); file != nullptr) {
                            EXPECT_EQ(file->State, file->Path.empty() ? ZT_UNKNOWN : ZT_OPEN_EXISTING);
                            EXPECT_EQ(file->CreateInfo, file->Path.empty() ? 0U : 1U);
                          }
                        }
                      });
}

TEST_F(InsertionFailureTest, StepsWithoutPenaltyKeepTheirRecords) {
  const auto prepare = [this] {
    StartGenerations(2);
    OpenAndRead(2, kDoc);
  };
  for (const LOG_ITEM& event : {Read(2, kDoc), Delete(2, kDoc), SizeChange(2, kDoc), SectionSync(2, kDoc)}) {
    FailEachOfInsertion(prepare, event, 0);
  }
}

TEST_F(InsertionFailureTest, AnOverwriteChargesAllProcessesOrNone) {
  FailEachOfCharge(
      [this] {
        StartGenerations(5);
        OpenAndRead(5, kDoc);
      },
      Write(5, kDoc), 5, kDoc, 2);
}

TEST_F(InsertionFailureTest, AnOverwriteOfOneOfManyFilesChargesAllProcessesOrNone) {
  FailEachOfCharge(
      [this] {
        StartGenerations(3);
        for (wchar_t letter = L'a'; letter <= L'z'; ++letter) {
          OpenAndRead(3, L"c:\\users\\someone\\documents\\" + std::wstring(1, letter));
        }
        OpenAndRead(3, kDoc);
      },
      Write(3, kDoc), 3, kDoc, 2);
}

TEST_F(InsertionFailureTest, ASimilarCopyChargesAllProcessesOrNone) {
  FailEachOfCharge(
      [this] {
        StartGenerations(4);
        OpenAndRead(4, kDoc);
        Insert(Delete(4, kDoc));
      },
      Write(4, kCopy), 4, kDoc, 6);
}

// The difference that the first entry shows would be found by the second search, had the first one kept what it learned.
TEST_F(InsertionFailureTest, AMatchOfALearnedDifferenceIsFoundAgain) {
  const std::wstring folder = L"c:\\users\\someone\\documents\\";
  FailEachOfCharge(
      [this, folder] {
        StartGenerations(2);
        ItemOf(2)->NameDiff = u"_the_difference_that_was_learned_before";
        for (const std::uint64_t pid : {1U, 2U}) {
          Track(pid, folder + L"port.docx", ZT_READ_START);
          Track(pid, kDoc, ZT_DELETE_ORG);
        }
      },
      Write(2, kCopy), 2, kDoc, 6);
}

TEST_F(InsertionFailureTest, ADeletedOriginalChargesAllProcessesOrNone) {
  FailEachOfCharge(
      [this] {
        StartGenerations(3);
        Track(3, kDoc, ZT_WRITE_SIMILAR);
      },
      Delete(3, kDoc), 3, kDoc, 6);
}

TEST_F(InsertionFailureTest, ALearnedNameDifferenceLeavesTheRecordsIntact) {
  FailEachOfInsertion(
      [this] {
        StartGenerations(2);
        OpenAndRead(2, kDoc);
      },
      Write(2, L"c:\\users\\someone\\documents\\locked_report.docx"), 0);
}

TEST_F(InsertionFailureTest, ARenamedCopyIsAWholeCopyOrAbsent) {
  const auto prepare = [this] {
    StartGenerations(2);
    OpenAndRead(2, kDoc);
    for (const std::uint64_t pid : {1U, 2U}) {
      FileOf(pid, kDoc)->Context = 77;
      AddPath(ItemOf(pid)->QuarantineList, kDoc);
    }
  };
  FailEachOfInsertion(prepare, Rename(2, kDoc, kElsewhere), 0, [this] {
    for (const std::uint64_t pid : {1U, 2U}) {
      ASSERT_NE(FileOf(pid, kDoc), nullptr);
      EXPECT_EQ(FileOf(pid, kDoc)->State, ZT_READ_START);
      if (const FileItem* copy = FileOf(pid, kElsewhere); copy != nullptr) {
        EXPECT_EQ(copy->Path, kDoc);
        EXPECT_EQ(copy->State, ZT_READ_START);
        EXPECT_EQ(copy->Context, 77U);
      }
    }
  });
}

TEST_F(InsertionFailureTest, ARenameOntoATrackedFileReplacesItWholeOrLeavesIt) {
  const auto prepare = [this] {
    StartProcess(1, 101);
    OpenAndRead(1, kDoc);
    Insert(Open(1, kElsewhere));
  };
  FailEachOfInsertion(prepare, Rename(1, kDoc, kElsewhere), 0, [this] {
    const FileItem* file = FileOf(1, kElsewhere);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->ReadInfo, file->Path == kDoc ? 100U : 0U);
    EXPECT_THAT(file->Path.Wide(), AnyOf(kDoc, kElsewhere));
  });
}

TEST_F(InsertionFailureTest, ARenameWithTwoStepsKeepsItsRecords) {
  const auto prepare = [this] {
    StartGenerations(3);
    for (const std::uint64_t pid : {2U, 3U}) {
      Track(pid, kDoc, ZT_DELETE_ORG);
      Track(pid, kElsewhere, ZT_SECTION_SYNC);
    }
  };
  FailEachOfCharge(prepare, Rename(3, kElsewhere, kCopy), 3, kElsewhere, 2);
}

TEST_F(InsertionFailureTest, ASimilarMoveKeepsItsFolder) {
  const auto prepare = [this] {
    StartProcess(1, 101);
    FileItem& file = Track(1, kDoc, ZT_WRITE_SIMILAR);
    file.ReadStarted = file.SimilarMark = true;
  };
  FailEachOfInsertion(prepare, Rename(1, kDoc, kElsewhere), 0, [this] {
    EXPECT_THAT(ItemOf(1)->PrevFolder, AnyOf(u"", u"c:\\users\\someone\\elsewhere"));
    EXPECT_EQ(FileOf(1, kDoc)->State, ZT_WRITE_SIMILAR);
  });
}

// The other exports: std::bad_alloc may leave them, and nothing else.

class ExportFailureTest : public AllocationFailureTest {
 protected:
  /// The score 5 for each of `count` generations, and one file to restore.
  void StartSuspicious(std::uint64_t count) {
    StartGenerations(count);
    for (auto& [key, entry] : core().Tree) {
      entry.Item.Score = 5;
    }
    Track(count, kDoc, ZT_OVERWRITE).Similar = true;
    AddPath(ItemOf(count)->QuarantineList, kDoc);
  }
  void RememberState() { before_ = DumpState(core()); }
  void ExpectUnchanged() { EXPECT_EQ(DumpState(core()), before_.value()); }

  std::optional<std::string> before_;
};

TEST_F(ExportFailureTest, InitLeavesAnEmptyHandleEmpty) {
  engine_.reset();
  for (const Extent extent : {Extent::kOnce, Extent::kFromThenOn}) {
    bool failed = true;
    for (std::uint64_t number = 1; failed; ++number) {
      const std::int64_t live_before = LiveAllocations();
      std::shared_ptr<void> engine;
      unsigned char result = 0;
      {
        const AllocationFailure failure(number, extent);
        try {
          result = ZtInitEngineCore(engine, 1);
        } catch (const std::bad_alloc&) {
        }
        failed = AllocationFailure::HasFailed();
      }
      EXPECT_EQ(engine == nullptr, failed) << number;
      EXPECT_EQ(result, failed ? 0 : 1) << number;
      engine.reset();
      EXPECT_EQ(LiveAllocations(), live_before) << number;
    }
  }
}

TEST_F(ExportFailureTest, InitLeavesTheEngineThatAHandleHeld) {
  std::shared_ptr<void> first;
  FailEach(
      [&] {
        StartGenerations(3);
        first = engine_;
        RememberState();
      },
      [&](bool failed) {
        EXPECT_EQ(engine_ == first, failed);
        if (failed) {
          ExpectUnchanged();
        }
        first.reset();
        before_.reset();
      },
      [&] { ZtInitEngineCore(engine_, 8); });
}

TEST_F(ExportFailureTest, AnUpdateOfAnUnknownProcessChangesNothing) {
  StartGenerations(2);
  RememberState();
  bool failed = true;
  for (std::uint64_t number = 1; failed; ++number) {
    {
      const AllocationFailure failure(number, Extent::kFromThenOn);
      try {
        ZtUpdateScore(engine_, Handle(77), 9);
      } catch (const std::bad_alloc&) {
      }
      failed = AllocationFailure::HasFailed();
    }
    if (failed) {
      ExpectUnchanged();
    }
  }
  EXPECT_EQ(core().StartTimes.count(77), 1U);
}

TEST_F(ExportFailureTest, AnUpdateOfAKnownProcessNeedsNoMemory) {
  FailEach([this] { StartGenerations(2); },
           [this](bool failed) {
             EXPECT_FALSE(failed);
             EXPECT_EQ(ScoreOf(2), 9);
           },
           [this] { ZtUpdateScore(engine_, Handle(2), 9); });
}

TEST_F(ExportFailureTest, AQueryForIdsChangesNothing) {
  std::vector<void*> pids;
  FailEach(
      [this] {
        StartSuspicious(5);
        RememberState();
      },
      [&](bool failed) {
        ExpectUnchanged();
        EXPECT_EQ(pids.size(), failed ? 0U : 5U);
        pids = std::vector<void*>();
        before_.reset();
      },
      [&] { pids = ZtGetProcTree(engine_, Handle(5)); });
}

TEST_F(ExportFailureTest, AQueryForImagesKeepsWhatTheMapHeld) {
  std::map<void*, std::wstring> procs;
  FailEach(
      [&] {
        StartSuspicious(5);
        procs[Handle(9)] = L"kept";
      },
      [&](bool failed) {
        EXPECT_EQ(procs[Handle(9)], L"kept");
        EXPECT_LE(procs.size(), 6U);
        EXPECT_TRUE(failed || procs.size() == 6);
        procs.clear();
      },
      [&] { ZtGetProcTree(engine_, Handle(5), procs); });
}

TEST_F(ExportFailureTest, AResetLeavesTheTablesConsistent) {
  FailEach(
      [this] {
        StartSuspicious(5);
        OpenAndRead(5, kElsewhere);
        StartChild(5, 6, 106);
        Insert(ProcessExit(6));
        core().StartTimes.erase(6);  // So that the collection of process 6 leaves no start time behind.
      },
      [this](bool failed) {
        for (const std::uint64_t pid : {1U, 2U, 3U, 4U, 5U}) {
          EXPECT_THAT(ScoreOf(pid), AnyOf(1, 5));
          EXPECT_TRUE(failed || ScoreOf(pid) == 1);
        }
        ASSERT_NE(FileOf(5, kDoc), nullptr);
      },
      [this] {
        ZtResetScore(engine_, std::int64_t{1} << 60, 0);
        ZtResetScore(engine_, std::int64_t{1} << 60, 0);
      });
}

TEST_F(ExportFailureTest, AFinalStateLeavesTheEngineAsItWas) {
  std::map<std::wstring, ZT_FILE_ITEM_PUBLIC> files;
  std::vector<std::wstring> paths;
  FailEach(
      [this] {
        StartSuspicious(5);
        RememberState();
      },
      [&](bool failed) {
        ExpectUnchanged();
        EXPECT_LE(files.size(), 1U);
        EXPECT_TRUE(failed || (files.size() == 1 && paths.size() == 1));
        files.clear();
        paths = std::vector<std::wstring>();
        before_.reset();
      },
      [&] { ZtGetFinalStateFileByPid(engine_, Handle(5), files, paths); });
}

TEST_F(ExportFailureTest, ALineScoreIsGivenOrMemoryIsExhausted) {
  LOG_ITEM load = ModuleLoad(1, L"C:\\Windows\\System32\\cryptsp.dll");
  ZtLong score = 0;
  FailEach([&] { score = 0; }, [&](bool failed) { EXPECT_EQ(score, failed ? 0 : 6); },
           [&] { score = ZtCalculateSingleLineScore(engine_, &load, 5); });
}

TEST_F(ExportFailureTest, ASimilarFileIsFoundOrMemoryIsExhausted) {
  bool found = false;
  std::optional<ZT_PID_ITEM> process;
  FailEach(
      [&] {
        found = false;
        process.emplace();
        process->files[kDoc];
        process->NameDiff = L"locked_";
      },
      [&](bool failed) {
        EXPECT_NE(found, failed);
        EXPECT_EQ(process->NameDiff, L"locked_");
        process.reset();
      },
      [&] {
        std::shared_ptr<_ZtEngineCore> engine = std::static_pointer_cast<_ZtEngineCore>(engine_);
        found = ZtSearchSimilarFile(engine, *process, process->files, L"c:\\users\\someone\\documents\\locked_report.docx") !=
                process->files.end();
      });
}

}  // namespace
}  // namespace zt::testing
