#include "zteng/zt_path_hash.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zt::testing {
namespace {

using Hash = ZtPathHash<const std::wstring*>;

bool Holds(const Hash& hash, const std::wstring& path) {
  const std::wstring* const* const found = hash.Find(path, [&path](const std::wstring* other) { return *other == path; });
  return found != nullptr && **found == path;
}

bool Erase(Hash& hash, const std::wstring& path) {
  return hash.Erase(path, [&path](const std::wstring* other) { return *other == path; });
}

TEST(PathHashTest, EmptyTableHasNothing) {
  Hash hash;
  EXPECT_FALSE(Holds(hash, L""));
  EXPECT_FALSE(Erase(hash, L"a"));
}

TEST(PathHashTest, TagsAreNeverZeroAndDependOnEveryUnit) {
  std::set<std::uint32_t> tags;
  const std::wstring path = L"c:\\users\\ann";
  for (std::size_t unit = 0; unit < path.size(); ++unit) {
    std::wstring other = path;
    ++other[unit];
    tags.insert(ZtPathTag(other));
    tags.insert(ZtPathTag(path.substr(0, unit)));
  }
  tags.insert(ZtPathTag(path));
  EXPECT_FALSE(tags.contains(0));
  EXPECT_GE(tags.size(), 2 * path.size()) << "of " << 2 * path.size() + 1 << " different paths at most one may meet another";
}

// Changes of three units that cancel each other out where words of four are mixed in by a rotation and a multiplication,
// whatever the secret.
TEST(PathHashTest, ChangesInNeighbouringWordsDoNotCancelEachOther) {
  std::set<std::uint32_t> tags;
  for (std::size_t choice = 0; choice < 256; ++choice) {
    std::wstring path(64, L'a');
    for (std::size_t block = 0; block < 8; ++block) {
      if ((choice >> block & 1) != 0) {
        path[block * 8 + 2] ^= 4;
        path[block * 8 + 5] ^= 0x8000;
        path[block * 8 + 7] ^= 0x8000;
      }
    }
    tags.insert(ZtPathTag(path));
  }
  EXPECT_GE(tags.size(), 255u) << "of 256 paths";
}

// So many pass full buckets that every way of a search and a removal is taken.
TEST(PathHashTest, AgreesWithASetOverRandomChanges) {
  std::set<std::wstring> paths;
  Hash hash;
  std::mt19937 random(6);
  for (int round = 0; round < 100000; ++round) {
    const bool grows = round / 20000 % 2 == 0;
    const std::wstring path = L"c:\\" + std::to_wstring(random() % 3000);
    if (random() % 4 < (grows ? 3 : 1)) {
      const auto [added, is_new] = paths.insert(path);
      if (is_new) {
        hash.Insert(path, &*added);
      }
    } else {
      ASSERT_EQ(Erase(hash, path), paths.contains(path));
      paths.erase(path);
    }
    const std::wstring other = L"c:\\" + std::to_wstring(random() % 3000);
    ASSERT_EQ(Holds(hash, other), paths.contains(other));
  }
  for (const std::wstring& path : paths) {
    ASSERT_TRUE(Holds(hash, path));
  }
}

// Few paths that come and go leave every bucket with some that went past it: a search for what is not there has to end then,
// too.
TEST(PathHashTest, SearchesEndHoweverFewPathsComeAndGo) {
  std::mt19937 random(7);
  for (const std::size_t most : {5u, 6u, 7u, 8u, 12u}) {
    std::vector<std::wstring> paths(30);
    for (std::size_t path = 0; path < paths.size(); ++path) {
      paths[path] = L"c:\\" + std::to_wstring(path);
    }
    std::set<std::size_t> present;
    Hash hash;
    for (int round = 0; round < 20000; ++round) {
      const std::size_t path = random() % paths.size();
      if (present.contains(path)) {
        EXPECT_TRUE(Erase(hash, paths[path]));
        present.erase(path);
      } else if (present.size() < most) {
        hash.Insert(paths[path], &paths[path]);
        present.insert(path);
      }
      const std::size_t other = random() % paths.size();
      ASSERT_EQ(Holds(hash, paths[other]), present.contains(other));
    }
  }
}

TEST(PathHashTest, MovedTableLeavesAnEmptyOne) {
  const std::wstring path = L"a";
  Hash from;
  from.Insert(path, &path);
  Hash hash = std::move(from);
  EXPECT_TRUE(Holds(hash, path));
  from = Hash();
  EXPECT_FALSE(Holds(from, path));
  from.Insert(path, &path);
  EXPECT_TRUE(Holds(from, path));
}

// Tags of 32 bits meet by chance among so many paths; the paths themselves tell them apart.
TEST(PathHashTest, ValuesOfOneTagAreToldApart) {
  const std::wstring first = L"first";
  const std::wstring second = L"second";
  Hash hash;
  hash.Insert(L"same", &first);
  hash.Insert(L"same", &second);
  const auto find = [&hash](const std::wstring& text) {
    return hash.Find(L"same", [&text](const std::wstring* other) { return *other == text; });
  };
  EXPECT_EQ(*find(L"second"), &second);
  EXPECT_EQ(*find(L"first"), &first);
  EXPECT_TRUE(hash.Erase(L"same", [&first](const std::wstring* other) { return other == &first; }));
  EXPECT_EQ(find(L"first"), nullptr);
  EXPECT_EQ(*find(L"second"), &second);
}

}  // namespace
}  // namespace zt::testing
