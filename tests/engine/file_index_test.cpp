#include "zteng/zt_file_index.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "zteng/zt_items.h"

namespace zt::testing {
namespace {

class FileIndexTest : public ::testing::Test {
 protected:
  static std::wstring PathOf(unsigned number) { return L"c:\\users\\ann\\report" + std::to_wstring(number) + L".docx"; }

  void Add(unsigned number) {
    const auto [entry, is_new] = files_.try_emplace(PathOf(number));
    if (is_new) {
      index_.OnAdded(*entry);
    }
  }
  void Erase(unsigned number) {
    const auto entry = files_.find(PathOf(number));
    if (entry != files_.end()) {
      index_.OnErased(*entry);
      files_.erase(entry);
    }
  }
  /// Whether index and map agree about a path.
  void ExpectSame(const std::wstring& path) {
    const auto expected = files_.find(path);
    EXPECT_EQ(index_.Find(files_, path), expected == files_.end() ? nullptr : &*expected);
  }

  ZtFileMap files_;
  ZtFileIndex index_;
};

TEST_F(FileIndexTest, EmptyMapHasNothing) { EXPECT_EQ(index_.Find(files_, L""), nullptr); }

TEST_F(FileIndexTest, EveryEntryIsFoundWhateverTheSize) {
  for (unsigned number = 0; number < 1000; ++number) {
    Add(number);
    ExpectSame(PathOf(number));
    ExpectSame(PathOf(number + 1));
    ExpectSame(PathOf(number / 2));
  }
}

TEST_F(FileIndexTest, EmptyPathAndPathsThatDifferInTheirLastUnitsAreToldApart) {
  for (const wchar_t* path : {L"", L"a", L"ab", L"abc", L"abcd", L"abcde", L"abcd\0", L"abdc", L"b"}) {
    files_.try_emplace(path);
  }
  for (unsigned number = 0; number < ZtFileIndex::kMinSize; ++number) {
    Add(number);
  }
  for (const auto& [path, file] : files_) {
    ExpectSame(path);
    ExpectSame(path + L"x");
    ExpectSame(path + L'\0');
  }
}

TEST_F(FileIndexTest, AgreesWithTheMapOverRandomChanges) {
  std::mt19937 numbers(7);
  const auto random = [&numbers] { return static_cast<unsigned>(numbers()); };
  // Up to 300 files of 600 paths, sometimes few, so that the table is made, grows and stands beside a small map.
  for (int round = 0; round < 200000; ++round) {
    const unsigned number = random() % 600;
    const bool is_shrinking = round / 20000 % 2 == 1;
    switch (random() % 4) {
      case 0:
        Add(number);
        break;
      case 1:
        is_shrinking || files_.size() > 300 ? Erase(number) : Add(number);
        break;
      case 2:
        is_shrinking ? Erase(number) : Add(number / 2);
        break;
      default:
        break;
    }
    ExpectSame(PathOf(random() % 600));
  }
}

TEST_F(FileIndexTest, ChangesThatWereNotToldAreNoticedByTheSize) {
  for (unsigned number = 0; number < 100; ++number) {
    Add(number);
  }
  ExpectSame(PathOf(5));
  files_.try_emplace(L"untold");
  ExpectSame(L"untold");
  files_.erase(PathOf(5));
  ExpectSame(PathOf(5));
  ExpectSame(PathOf(6));
}

TEST_F(FileIndexTest, IndexMovesWithItsMap) {
  for (unsigned number = 0; number < 100; ++number) {
    Add(number);
  }
  ExpectSame(PathOf(1));
  ZtFileMap files = std::move(files_);
  ZtFileIndex index = std::move(index_);
  EXPECT_EQ(index.Find(files, PathOf(1)), &*files.find(PathOf(1)));
}

}  // namespace
}  // namespace zt::testing
