#include "zteng/zt_file_index.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "zteng/zt_items.h"

namespace zt::testing {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

class FileIndexTest : public ::testing::Test {
 protected:
  static std::wstring PathOf(unsigned number) { return L"c:\\users\\ann\\report" + std::to_wstring(number) + L".docx"; }

  void Add(const std::wstring& path) {
    const bool is_new = !files_.contains(path);
    const auto [entry, was_added] = index_.FindOrAdd(files_, path);
    EXPECT_EQ(was_added, is_new);
    EXPECT_EQ(entry, &*files_.find(path));
  }
  void Add(unsigned number) { Add(PathOf(number)); }
  void Erase(unsigned number) {
    const auto entry = files_.find(PathOf(number));
    if (entry != files_.end()) {
      const auto next = std::next(entry);
      EXPECT_TRUE(index_.Erase(files_, entry) == next);
    }
  }
  /// Whether index and map agree about a path.
  void ExpectSame(const std::wstring& path) {
    const auto expected = files_.find(path);
    EXPECT_EQ(index_.Find(files_, path), expected == files_.end() ? nullptr : &*expected);
    if (index_.Prepare(files_)) {
      EXPECT_TRUE(index_.LowerBound(files_, path) == files_.lower_bound(path));
    }
  }

  ZtFileMap files_;
  ZtFileIndex index_;
};

TEST_F(FileIndexTest, EmptyMapHasNothing) {
  EXPECT_EQ(index_.Find(files_, L""), nullptr);
  EXPECT_FALSE(index_.Prepare(files_));
}

TEST_F(FileIndexTest, IsMadeOnceTheMapIsLarge) {
  for (unsigned number = 1; number < ZtFileIndex::kMinSize; ++number) {
    Add(number);
    EXPECT_FALSE(index_.Prepare(files_));
  }
  Add(0);
  EXPECT_TRUE(index_.Prepare(files_));
}

TEST_F(FileIndexTest, EveryEntryIsFoundWhateverTheSize) {
  for (unsigned number = 0; number < 1000; ++number) {
    Add(number);
    ExpectSame(PathOf(number));
    ExpectSame(PathOf(number + 1));
    ExpectSame(PathOf(number / 2));
  }
}

TEST_F(FileIndexTest, PathThatIsThereIsNotAddedAgain) {
  for (unsigned number = 0; number < 20; ++number) {
    Add(number);
  }
  index_.FindOrAdd(files_, PathOf(7)).first->second.State = 5;
  Add(7);
  EXPECT_EQ(files_.at(PathOf(7)).State, 5u);
  EXPECT_EQ(files_.size(), 20u);
}

TEST_F(FileIndexTest, EmptyPathAndPathsThatDifferInTheirLastUnitsAreToldApart) {
  for (const wchar_t* path : {L"", L"a", L"ab", L"abc", L"abcd", L"abcde", L"abdc", L"b"}) {
    Add(path);
  }
  for (unsigned number = 0; number < 20; ++number) {
    Add(number);
  }
  for (const auto& [path, file] : files_) {
    ExpectSame(path);
    ExpectSame(path + L"x");
    ExpectSame(path + L'\0');
  }
}

TEST_F(FileIndexTest, TellsTheLengthsOfPathsAndStems) {
  for (unsigned number = 10; number < 20; ++number) {
    Add(number);  // 26 units, 21 up to the last dot.
  }
  Add(L"c:\\d.x\\name");      // No dot in the name: 11 units, all of them its stem.
  Add(L"c:\\d.x\\a.tar.gz");  // 15 and 12.
  Add(L"noise.");             // 6 and 5.
  ASSERT_TRUE(index_.Prepare(files_));
  EXPECT_EQ(index_.NextPathLength(0), 6u);
  EXPECT_EQ(index_.NextPathLength(7), 11u);
  EXPECT_EQ(index_.NextPathLength(12), 15u);
  EXPECT_EQ(index_.NextPathLength(16), 26u);
  EXPECT_EQ(index_.NextPathLength(27), kNone);
  EXPECT_EQ(index_.NextStemEnd(0), 5u);
  EXPECT_EQ(index_.NextStemEnd(6), 11u);
  EXPECT_EQ(index_.NextStemEnd(12), 12u);
  EXPECT_EQ(index_.NextStemEnd(13), 21u);
  EXPECT_EQ(index_.NextStemEnd(22), kNone);

  index_.Erase(files_, files_.find(L"c:\\d.x\\a.tar.gz"));
  EXPECT_EQ(index_.NextPathLength(12), 26u);
  EXPECT_EQ(index_.NextStemEnd(12), 21u);
}

TEST_F(FileIndexTest, AgreesWithTheMapOverRandomChanges) {
  std::mt19937 numbers(7);
  const auto random = [&numbers] { return static_cast<unsigned>(numbers()); };
  // Up to 300 files of 600 paths, sometimes few, so that the index is made, grows, shrinks and is dropped.
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

TEST_F(FileIndexTest, ChangesPastItAreNoticedByTheSize) {
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

TEST_F(FileIndexTest, EveryFileCanBeErased) {
  for (unsigned number = 0; number < 2000; ++number) {
    Add(number);
  }
  for (unsigned number = 0; number < 2000; ++number) {
    Erase(number);
    ExpectSame(PathOf(number));
    ExpectSame(PathOf(number + 1));
  }
  EXPECT_TRUE(files_.empty());
  Add(1);
  ExpectSame(PathOf(1));
}

TEST_F(FileIndexTest, IndexMovesWithItsMap) {
  for (unsigned number = 0; number < 100; ++number) {
    Add(number);
  }
  ExpectSame(PathOf(1));
  ZtFileMap files = std::move(files_);
  ZtFileIndex index = std::move(index_);
  EXPECT_EQ(index.Find(files, PathOf(1)), &*files.find(PathOf(1)));
  EXPECT_TRUE(index.LowerBound(files, L"d") == files.end());
}

}  // namespace
}  // namespace zt::testing
