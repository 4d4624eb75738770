// The records: the event's bytes, keys, defaults, and how an event's fields are read.

#include "zteng/zt_items.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/engine_test.h"
#include "tests/support/state_dump.h"
#include "zteng/zteng.h"

namespace zt::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using EventBytes = std::array<unsigned char, 1136>;

// The bytes of a record, each field counting up from a value of its own: 0x11, 0x12, ... for the first.
EventBytes NumberedEvent() {
  EventBytes bytes = {};
  const auto fill = [&bytes](std::size_t offset, std::size_t size, unsigned first) {
    for (std::size_t i = 0; i < size; ++i) {
      bytes[offset + i] = static_cast<unsigned char>(first + i);
    }
  };
  fill(0, 8, 0x11);
  fill(8, 8, 0x21);
  fill(16, 8, 0x31);
  fill(24, 8, 0x41);
  fill(36, 36, 'A');
  fill(72, 4, 0x51);
  fill(80, 2, 0x61);
  fill(80 + 2 * 523, 2, 0x63);
  fill(1128, 8, 0x71);
  return bytes;
}

TEST(LogItemTest, HasItsFieldsAtTheirOffsetsInLittleEndianOrder) {
  const EventBytes bytes = NumberedEvent();
  LOG_ITEM log;
  static_assert(sizeof(log) == sizeof(bytes));
  std::memcpy(&log, bytes.data(), sizeof(log));
  EXPECT_EQ(log.Time, 0x1817161514131211);
  EXPECT_EQ(log.Pid, 0x2827262524232221U);
  EXPECT_EQ(log.Tid, 0x3837363534333231U);
  EXPECT_EQ(log.TargetPid, 0x4847464544434241U);
  EXPECT_EQ(log.Path[0], 'A');
  EXPECT_EQ(log.Path[35], 'A' + 35);
  EXPECT_EQ(log.Behavior, 0x54535251U);
  EXPECT_EQ(static_cast<unsigned>(log.Target[0]), 0x6261U);
  EXPECT_EQ(static_cast<unsigned>(log.Target[523]), 0x6463U);
  EXPECT_EQ(log.Context, 0x7877767574737271U);
}

TEST(LogItemTest, BehaviourCodesHaveTheValuesThatHostsSend) {
  EXPECT_EQ(BehaviorCreate, 0x4001U);
  EXPECT_EQ(BehaviorCreateNew, 0x4002U);
  EXPECT_EQ(BehaviorRead, 0x4003U);
  EXPECT_EQ(BehaviorWrite, 0x4004U);
  EXPECT_EQ(BehaviorDelete, 0x4005U);
  EXPECT_EQ(BehaviorRename, 0x4006U);
  EXPECT_EQ(BehaviorSizeChange, 0x4007U);
  EXPECT_EQ(BehaviorSectionSync, 0x4008U);
  EXPECT_EQ(BehaviorDeleteAlt, 0x400BU);
  EXPECT_EQ(BehaviorModuleLoad, 0xC001U);
  EXPECT_EQ(BehaviorProcessExit, 0xC002U);
  EXPECT_EQ(BehaviorProcessCreate, 0xC003U);
}

TEST(ProcKeyTest, KeysAreOrderedByUnsignedIdAndThenBySignedTime) {
  EXPECT_LT((ZtProcKey{1, 900}), (ZtProcKey{2, 100}));
  EXPECT_LT((ZtProcKey{1, 100}), (ZtProcKey{1, 101}));
  EXPECT_LT((ZtProcKey{1, -1}), (ZtProcKey{1, 0}));
  EXPECT_LT((ZtProcKey{1, 0}), (ZtProcKey{0x8000000000000000, 0}));
  EXPECT_EQ((ZtProcKey{1, 100}), (ZtProcKey{1, 100}));
  EXPECT_NE((ZtProcKey{1, 100}), (ZtProcKey{1, 101}));
}

TEST(PidItemTest, ANewItemIsZeroAndEmptyButForThePreWriteMemory) {
  const ZT_PID_ITEM item;
  EXPECT_EQ(item.Exiting, 0U);
  EXPECT_EQ(item.Score, 0);
  EXPECT_EQ(item.LastWriteLength, 0xFFFFFFFF);
  EXPECT_EQ(item.LastWriteOffset, 0xFFFFFFFF);
  EXPECT_EQ(item.LastWriteDiff, 0xFFFFFFFF);
  EXPECT_EQ(item.Pid, 0U);
  EXPECT_EQ(item.ScoreTime, 0);
  EXPECT_EQ(item.NameDiff, L"");
  EXPECT_THAT(item.files, IsEmpty());
  EXPECT_TRUE(item.QuarantineList.empty());
  EXPECT_TRUE(item.CreatedFilesList.empty());
  EXPECT_EQ(item.PrevFolder, L"");
  EXPECT_EQ(item.ImagePath, L"");
}

TEST(PidItemTest, FilesAreOrderedByCodeUnits) {
  ZT_PID_ITEM item;
  for (const wchar_t* key : {L"ab", L"a", L"\xE000", L"B", L"\xD800"}) {
    item.files[key];
  }
  std::vector<std::wstring> keys;
  std::transform(item.files.begin(), item.files.end(), std::back_inserter(keys), [](const auto& file) { return file.first; });
  EXPECT_THAT(keys, ElementsAre(L"B", L"a", L"ab", L"\xD800", L"\xE000"));
}

TEST(FileItemTest, ANewItemIsZeroAndEmpty) {
  const ZT_FILE_ITEM file;
  EXPECT_FALSE(file.Written || file.Similar || file.Renamed || file.SimilarMark);
  EXPECT_FALSE(file.Created || file.ReadStarted || file.penalized);
  EXPECT_EQ(file.State, 0U);
  EXPECT_EQ(file.FirstTime, 0);
  EXPECT_EQ(file.Context, 0U);
  EXPECT_EQ(file.ReadInfo, 0U);
  EXPECT_EQ(file.Path, L"");
  EXPECT_EQ(file.CreateInfo, 0U);
}

/// The distances of members from the start of their record, which must rise.
template <typename Record, typename... Members>
std::vector<std::ptrdiff_t> Offsets(const Record& record, const Members&... members) {
  const auto* const start = reinterpret_cast<const unsigned char*>(&record);
  return {(reinterpret_cast<const unsigned char*>(&members) - start)...};
}

TEST(FileItemTest, MembersStandInTheInterfacesOrder) {
  const ZT_FILE_ITEM file;
  const std::vector<std::ptrdiff_t> offsets =
      Offsets(file, file.Written, file.Similar, file.Renamed, file.SimilarMark, file.Created, file.ReadStarted, file.penalized,
              file.State, file.FirstTime, file.Context, file.ReadInfo, file.Path, file.CreateInfo, file.Block);
  EXPECT_TRUE(std::is_sorted(offsets.begin(), offsets.end()));
  static_assert(sizeof(file.Block) == 512);
  EXPECT_THAT(file.Block, Each(0));
}

TEST(PidItemTest, MembersStandInTheInterfacesOrder) {
  const ZT_PID_ITEM item;
  const std::vector<std::ptrdiff_t> offsets = Offsets(
      item, item.Exiting, item.Score, item.LastWriteLength, item.LastWriteOffset, item.LastWriteDiff, item.Pid, item.ScoreTime,
      item.NameDiff, item.files, item.QuarantineList, item.CreatedFilesList, item.PrevFolder, item.ImagePath);
  EXPECT_TRUE(std::is_sorted(offsets.begin(), offsets.end()));
  static_assert(std::is_same_v<decltype(item.QuarantineList), std::vector<std::wstring>>);
  static_assert(std::is_same_v<decltype(item.CreatedFilesList), std::vector<std::wstring>>);
}

TEST(PublicFileItemTest, HoldsItsMembersInOrderWithAZeroRemainder) {
  const ZT_FILE_ITEM_PUBLIC file;
  const auto* start = reinterpret_cast<const unsigned char*>(&file);
  const auto offset_of = [start](const void* member) { return static_cast<const unsigned char*>(member) - start; };
  EXPECT_EQ(offset_of(&file.EngineId), 0);
  EXPECT_LT(offset_of(&file.EngineId), offset_of(&file.Path));
  EXPECT_LT(offset_of(&file.Path), offset_of(&file.Restore));
  EXPECT_LT(offset_of(&file.Restore), offset_of(&file.Context));
  EXPECT_LT(offset_of(&file.Context), offset_of(file.Reserved));
  static_assert(sizeof(file.EngineId) == 4 && sizeof(file.Restore) == 4 && sizeof(file.Context) == 8);
  static_assert(sizeof(file.Reserved) == 512);
  EXPECT_THAT(file.Reserved, Each(0));
}

class RecordTest : public EngineTest {};

TEST_F(RecordTest, AnUnterminatedTargetIsReadOnlyUpToItsEnd) {
  StartProcess(10);
  const std::wstring path = L"c:\\" + std::wstring(521, L'x');
  LOG_ITEM log = Open(10, path);
  log.Context = 0x0041004100410041;  // Letters, should somebody read on.
  Insert(log);
  ASSERT_NE(FileOf(10, path), nullptr);
  EXPECT_EQ(FileOf(10, path)->Path, path);
  EXPECT_EQ(ItemOf(10)->files.size(), 1U);
}

TEST_F(RecordTest, ATargetEndsAtItsFirstZero) {
  StartProcess(10);
  LOG_ITEM log = Open(10, L"C:\\a.doc");
  log.Target[9] = u'z';
  Insert(log);
  EXPECT_NE(FileOf(10, L"c:\\a.doc"), nullptr);
  EXPECT_EQ(ItemOf(10)->files.size(), 1U);
}

TEST_F(RecordTest, UnitsBeyondAsciiAndLoneSurrogatesAreKeptAsTheyAre) {
  StartProcess(10);
  const std::wstring path = L"c:\\\x00C4\xD800\xFFFF.doc";
  Insert(Open(10, path));
  ASSERT_NE(FileOf(10, path), nullptr);
  EXPECT_EQ(FileOf(10, path)->Path, path);
}

TEST_F(RecordTest, AProcessThatReusesAnIdIsAnEntryOfItsOwn) {
  StartProcess(10, 100, L"C:\\old.exe");
  StartProcess(10, 200, L"C:\\new.exe");
  ASSERT_EQ(core().Tree.size(), 2U);
  EXPECT_EQ(core().Tree.Find({10, 100})->Item.ImagePath, L"C:\\old.exe");
  EXPECT_EQ(core().Tree.Find({10, 200})->Item.ImagePath, L"C:\\new.exe");
}

TEST_F(RecordTest, CodesOutsideBothFamiliesChangeNothing) {
  StartProcess(10);
  StartChild(10, 20);
  OpenAndRead(20, L"c:\\a.doc");
  const std::string before = DumpState(core());
  for (const std::uint32_t code : {0x0U, 0x1U, 0x4000U, 0x4009U, 0x400AU, 0x400CU, 0x7FFFU, 0x8000U, 0x8001U, 0xC000U, 0xC004U,
                                   0x14001U, 0x1C003U, 0xFFFFFFFFU}) {
    EXPECT_EQ(Insert(MakeEvent(code, 20, L"c:\\a.doc", 1)), 0) << code;
    EXPECT_EQ(DumpState(core()), before) << code;
  }
}

TEST_F(RecordTest, TheContextOfTheFillingEventIsKept) {
  StartProcess(10);
  LOG_ITEM log = At(Open(10, L"C:\\a.doc", 0xABCDEF0112345678), 555);
  log.Context = 0x8000000000000001;
  Insert(log);
  log.Context = 2;
  log.Time = 556;
  Insert(log);
  const FileItem* file = FileOf(10, L"c:\\a.doc");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(file->Context, 0x8000000000000001U);
  EXPECT_EQ(file->FirstTime, 555);
  EXPECT_EQ(file->CreateInfo, 0x12345678U);
  EXPECT_EQ(file->Path, L"C:\\a.doc");
}

}  // namespace
}  // namespace zt::testing
