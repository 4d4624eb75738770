#include "engine/files/hash_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <new>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace zt::testing {
namespace {

using Table = HashTable<std::uint64_t>;

/// Spreads numbers over the range of hashes.
std::uint64_t HashOf(std::uint64_t number) { return (number + 1) * 0x9E3779B97F4A7C15 % TextHash::kPrime; }

bool Has(Table& table, std::uint64_t hash, std::uint64_t value) {
  const std::uint64_t* const found = table.Find(hash, [value](std::uint64_t other) { return other == value; });
  return found != nullptr && *found == value;
}

std::set<std::uint64_t> ValuesOf(const Table& table) {
  std::set<std::uint64_t> values;
  table.ForEach([&values](std::uint64_t value) { EXPECT_TRUE(values.insert(value).second) << value << " came twice"; });
  return values;
}

TEST(HashTableTest, ANewTableHoldsNothing) {
  Table table;
  EXPECT_EQ(table.size(), 0U);
  EXPECT_FALSE(Has(table, 5, 5));
  EXPECT_FALSE(table.Erase(5, [](std::uint64_t) { return true; }));
  EXPECT_TRUE(ValuesOf(table).empty());
}

TEST(HashTableTest, FindsEveryValueWhileItGrows) {
  Table table;
  for (std::uint64_t number = 0; number < 20000; ++number) {
    table.Insert(HashOf(number), number);
    if (number % 997 == 0) {
      for (std::uint64_t known = 0; known <= number; ++known) {
        ASSERT_TRUE(Has(table, HashOf(known), known)) << known << " of " << number;
      }
      ASSERT_FALSE(Has(table, HashOf(number + 1), number + 1));
    }
  }
  EXPECT_EQ(table.size(), 20000U);
  EXPECT_EQ(ValuesOf(table).size(), 20000U);
}

TEST(HashTableTest, KeepsSeveralValuesOfOneHash) {
  Table table;
  for (std::uint64_t value = 1; value <= 20; ++value) {
    table.Insert(12345, value);
  }
  for (std::uint64_t value = 1; value <= 20; ++value) {
    EXPECT_TRUE(Has(table, 12345, value));
  }
  EXPECT_TRUE(table.Erase(12345, [](std::uint64_t value) { return value == 7; }));
  EXPECT_FALSE(Has(table, 12345, 7));
  EXPECT_TRUE(Has(table, 12345, 8));
  EXPECT_EQ(table.size(), 19U);
}

// The secret of the hash excludes this; still the table ends by an exception, not by taking all memory.
TEST(HashTableTest, RefusesMoreEqualHashesThanASegmentTakes) {
  Table table;
  std::uint64_t inserted = 0;
  EXPECT_THROW(
      for (; inserted < 1000; ++inserted) { table.Insert(HashOf(0), inserted); }, std::bad_alloc);
  EXPECT_GE(inserted, 40U);  // Five sixths of a segment.
  EXPECT_EQ(table.size(), inserted);
  for (std::uint64_t value = 0; value < inserted; ++value) {
    EXPECT_TRUE(Has(table, HashOf(0), value));
  }
}

TEST(HashTableTest, TheSmallestAndTheLargestHashHaveTheirPlaces) {
  Table table;
  for (const std::uint64_t hash : {std::uint64_t{0}, std::uint64_t{1}, TextHash::kPrime - 1}) {
    table.Insert(hash, hash);
    EXPECT_TRUE(Has(table, hash, hash));
  }
  EXPECT_TRUE(table.Erase(0, [](std::uint64_t) { return true; }));
  EXPECT_FALSE(Has(table, 0, 0));
}

TEST(HashTableTest, AMoveHandsEverythingOver) {
  Table table;
  for (std::uint64_t number = 0; number < 100; ++number) {
    table.Insert(HashOf(number), number);
  }
  Table moved(std::move(table));
  EXPECT_EQ(moved.size(), 100U);
  Table assigned;
  assigned.Insert(1, 1);
  assigned = std::move(moved);
  EXPECT_EQ(ValuesOf(assigned).size(), 100U);
  EXPECT_TRUE(Has(assigned, HashOf(99), 99));
}

TEST(HashTableTest, EraseIfVisitsEveryValueOnceOrMoreAndErasesWhatGoes) {
  for (const std::uint64_t count : {1U, 30U, 500U, 20000U}) {
    for (const std::uint64_t keep_one_in : {1U, 2U, 64U, 1000000U}) {
      Table table;
      for (std::uint64_t number = 0; number < count; ++number) {
        table.Insert(HashOf(number), number);
      }
      std::set<std::uint64_t> visited;
      table.EraseIf([&](std::uint64_t value) {
        visited.insert(value);
        return value % keep_one_in != 0;
      });
      EXPECT_EQ(visited.size(), count);
      EXPECT_EQ(table.size(), (count + keep_one_in - 1) / keep_one_in);
      for (std::uint64_t number = 0; number < count; ++number) {
        ASSERT_EQ(Has(table, HashOf(number), number), number % keep_one_in == 0);
      }
    }
  }
}

// A million random steps beside a std::multimap; the size goes up and down by turns.
TEST(HashTableTest, DoesWhatAMultimapDoes) {
  std::mt19937_64 random(1);
  Table table;
  std::multimap<std::uint64_t, std::uint64_t> expected;
  bool grows = true;
  for (int step = 0; step < 1000000; ++step) {
    if (expected.size() > 6000) {
      grows = false;
    } else if (expected.size() < 10) {
      grows = true;
    }
    const std::uint64_t hash = HashOf(random() % 8000);
    if (random() % 4 != 0 ? grows : !grows) {
      table.Insert(hash, hash);
      expected.emplace(hash, hash);
    } else {
      const auto found = expected.find(hash);
      ASSERT_EQ(table.Erase(hash, [](std::uint64_t) { return true; }), found != expected.end());
      if (found != expected.end()) {
        expected.erase(found);
      }
    }
    ASSERT_EQ(table.size(), expected.size());
    const std::uint64_t asked = HashOf(random() % 8000);
    ASSERT_EQ(Has(table, asked, asked), expected.count(asked) != 0);
  }
}

}  // namespace
}  // namespace zt::testing
