#include "engine/file_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zt::testing {
namespace {

/// A tree beside its map, which knows all answers.
class FileTreeTest : public ::testing::Test {
 protected:
  void Add(const std::wstring& path) {
    const auto [entry, is_new] = files_.try_emplace(path);
    if (is_new) {
      tree_.Insert(entry);
    }
    ASSERT_EQ(tree_.size(), files_.size());
  }
  void Erase(const std::wstring& path) {
    EXPECT_EQ(tree_.Erase(path), files_.contains(path));
    files_.erase(path);
    ASSERT_EQ(tree_.size(), files_.size());
  }

  void ExpectSame(const std::wstring& path) {
    const auto found = tree_.LowerBound(files_, path);
    const auto expected = files_.lower_bound(path);
    ASSERT_TRUE(found == expected) << "not the same beside a path of " << path.size() << " units";
  }
  /// Asks for every path, for what stands just before and behind it, and for its beginnings.
  void ExpectSameAtAllPaths() {
    for (const auto& [path, file] : files_) {
      ExpectSame(path);
      ExpectSame(path + L'\0');
      ExpectSame(path + L'\xffff');
      ExpectSame(path.substr(0, path.size() / 2));
      ExpectSame(path.substr(0, path.size() - std::min<std::size_t>(path.size(), 1)));
    }
    ExpectSame(L"");
    ExpectSame(L"\xffff\xffff\xffff\xffff\xffff");
  }

  static std::wstring Numbered(std::wstring_view prefix, unsigned number) {
    const std::wstring digits = std::to_wstring(1000000 + number);
    return std::wstring(prefix) + digits + L".docx";
  }

  ZtFileMap files_;
  FileTree tree_;
};

TEST_F(FileTreeTest, NewTreeHasNothing) {
  EXPECT_EQ(tree_.size(), 0u);
  ExpectSame(L"");
  ExpectSame(L"a");
  EXPECT_FALSE(tree_.Erase(L"a"));
}

TEST_F(FileTreeTest, FindsPathsThatCameInOrder) {
  for (unsigned number = 0; number < 5000; ++number) {
    Add(Numbered(L"c:\\users\\ann\\report", number));
  }
  ExpectSameAtAllPaths();
}

TEST_F(FileTreeTest, FindsPathsThatCameBackwards) {
  for (unsigned number = 5000; number > 0; --number) {
    Add(Numbered(L"c:\\users\\ann\\report", number));
  }
  ExpectSameAtAllPaths();
}

TEST_F(FileTreeTest, FindsPathsThatCameShuffledFromSeveralFolders) {
  std::vector<std::wstring> paths;
  for (const std::wstring_view prefix :
       {L"c:\\users\\ann\\report", L"c:\\users\\ann\\repos\\a", L"c:\\users\\bob\\", L"d:\\", L""}) {
    for (unsigned number = 0; number < 2000; ++number) {
      paths.push_back(Numbered(prefix, number));
    }
  }
  std::shuffle(paths.begin(), paths.end(), std::mt19937(3));
  for (const std::wstring& path : paths) {
    Add(path);
  }
  ExpectSameAtAllPaths();
}

// Nodes are at least half full, whatever the order, but for the last ones: 20,000 paths are at most 1,250 leaves, under 79
// nodes, under 5, under one.
TEST_F(FileTreeTest, IsNotDeepWhateverTheOrder) {
  std::vector<unsigned> numbers(20000);
  std::iota(numbers.begin(), numbers.end(), 0);
  for (int order = 0; order < 3; ++order) {
    ZtFileMap files;
    FileTree tree;
    for (const unsigned number : numbers) {
      tree.Insert(files.try_emplace(Numbered(L"c:\\", number)).first);
    }
    EXPECT_GE(tree.Depth(), 3u);
    EXPECT_LE(tree.Depth(), 4u);
    if (order == 0) {
      std::reverse(numbers.begin(), numbers.end());
    } else {
      std::shuffle(numbers.begin(), numbers.end(), std::mt19937(8));
    }
  }
}

TEST_F(FileTreeTest, FindsPathsThatBeginEachOther) {
  for (std::size_t length = 0; length < 500; ++length) {
    Add(std::wstring(length, L'a'));
    Add(std::wstring(length, L'a') + L"\\b");
  }
  ExpectSameAtAllPaths();
}

TEST_F(FileTreeTest, FindsPathsOfTheFirstAndLastUnits) {
  std::mt19937 random(4);
  constexpr std::wstring_view kUnits(
      L"\0\x1"
      L"a\xfffe\xffff",
      5);
  for (int path = 0; path < 3000; ++path) {
    std::wstring text(random() % 12, L' ');
    std::generate(text.begin(), text.end(), [&] { return kUnits[random() % kUnits.size()]; });
    Add(text);
  }
  ExpectSameAtAllPaths();
}

// What is looked up may have a unit that no path has: the one behind the last of 16 bits, where wchar_t has it.
TEST_F(FileTreeTest, UnitBehindAllUnitsComesBehindAllPaths) {
  std::wstring last(1, wchar_t{0xFFFF});
  for (unsigned number = 0; number < 200; ++number) {
    Add(Numbered(L"c:\\" + last, number));
    Add(Numbered(L"c:\\", number));
  }
  ++last[0];
  ExpectSame(L"c:\\" + last);
  ExpectSame(L"c:\\a" + last);
  ExpectSame(last);
}

TEST_F(FileTreeTest, AgreesWithTheMapOverRandomChanges) {
  std::mt19937 random(5);
  constexpr std::wstring_view kUnits = L"ab.\\";
  for (int round = 0; round < 60000; ++round) {
    std::wstring path = L"c:\\folder\\";
    for (std::size_t units = random() % 8; units > 0; --units) {
      path += kUnits[random() % kUnits.size()];
    }
    const bool grows = round / 10000 % 2 == 0;
    if (random() % 4 < (grows ? 3 : 1)) {
      Add(path);
    } else {
      Erase(path);
    }
    path += kUnits[random() % kUnits.size()];
    ExpectSame(path);
  }
}

TEST_F(FileTreeTest, IsSparseOnceMostIsErased) {
  for (unsigned number = 0; number < 2000; ++number) {
    Add(Numbered(L"c:\\", number));
  }
  EXPECT_FALSE(tree_.IsSparse());
  for (unsigned number = 0; number < 2000; ++number) {
    Erase(Numbered(L"c:\\", number));
    ExpectSame(Numbered(L"c:\\", number));
    ExpectSame(Numbered(L"c:\\", 1000));
  }
  EXPECT_TRUE(tree_.IsSparse());
}

}  // namespace
}  // namespace zt::testing
