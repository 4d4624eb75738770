#include "engine/files/place_set.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <set>

#include "engine/files/length_counts.h"

namespace zt::testing {
namespace {

TEST(PlaceSetTest, HoldsWhatWasAddedAndNotRemoved) {
  PlaceSet places;
  EXPECT_EQ(places.Next(0), PlaceSet::kNone);
  for (const std::size_t place : {0U, 63U, 64U, 523U, 528U}) {
    places.Add(place);
    EXPECT_TRUE(places.Has(place));
  }
  places.Remove(64);
  EXPECT_FALSE(places.Has(64));
  EXPECT_FALSE(places.Has(1));
  EXPECT_FALSE(places.Has(5000));
  EXPECT_EQ(places.Next(0), 0U);
  EXPECT_EQ(places.Next(1), 63U);
  EXPECT_EQ(places.Next(64), 523U);
  EXPECT_EQ(places.Next(528), 528U);
  EXPECT_EQ(places.Next(529), PlaceSet::kNone);
  EXPECT_EQ(places.Next(5000), PlaceSet::kNone);
}

TEST(PlaceSetTest, WordsAreThoseOfTheMovedSet) {
  std::mt19937 random(1);
  PlaceSet places;
  std::set<std::size_t> expected;
  for (int count = 0; count < 60; ++count) {
    const std::size_t place = random() % (TextHash::kMaxLength + 1);
    places.Add(place);
    expected.insert(place);
  }
  for (const std::size_t distance : {0U, 1U, 63U, 64U, 65U, 128U, 300U, 528U}) {
    for (std::size_t word = 0; word < 9; ++word) {
      for (std::size_t bit = 0; bit < 64; ++bit) {
        const std::size_t number = 64 * word + bit;
        const bool is_in = number >= distance && expected.count(number - distance) != 0;
        ASSERT_EQ(places.Word(word, distance) >> bit & 1, is_in ? 1U : 0U) << number << " moved by " << distance;
      }
    }
  }
}

TEST(PlaceSetTest, WordBelowEndsAtTheBound) {
  EXPECT_EQ(PlaceSet::WordBelow(0, 0), 0U);
  EXPECT_EQ(PlaceSet::WordBelow(3, 0), 7U);
  EXPECT_EQ(PlaceSet::WordBelow(64, 0), ~std::uint64_t{0});
  EXPECT_EQ(PlaceSet::WordBelow(64, 1), 0U);
  EXPECT_EQ(PlaceSet::WordBelow(65, 1), 1U);
}

TEST(LengthCountsTest, ALengthIsThereUntilItsLastTextGoes) {
  LengthCounts counts;
  counts.Reserve(7);
  counts.Add(7);
  counts.Add(7);
  counts.Remove(7);
  EXPECT_TRUE(counts.lengths().Has(7));
  counts.Remove(7);
  EXPECT_FALSE(counts.lengths().Has(7));
}

}  // namespace
}  // namespace zt::testing
