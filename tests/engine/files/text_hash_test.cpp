#include "engine/files/text_hash.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace zt::testing {
namespace {

// The hash by its definition, with additions for multiplications.
std::uint64_t TimesModulo(std::uint64_t a, std::uint64_t b) {
  std::uint64_t product = 0;
  for (; b != 0; b >>= 1) {
    product = (product + ((b & 1) != 0 ? a : 0)) % TextHash::kPrime;
    a = 2 * a % TextHash::kPrime;
  }
  return product;
}

/// What `hash` uses as its base: the text of one unit 0 has the hash 1 * B.
std::uint64_t BaseOf(const TextHash& hash) { return hash(std::u16string_view(u"\0", 1)); }

std::uint64_t HashByDefinition(std::u16string_view text, std::uint64_t base) {
  std::uint64_t hash = 0;
  for (const char16_t unit : text) {
    hash = TimesModulo((hash + unit + 1) % TextHash::kPrime, base);
  }
  return hash;
}

std::u16string RandomText(std::mt19937& random, std::size_t length) {
  std::u16string text(length, u'\0');
  for (char16_t& unit : text) {
    unit = static_cast<char16_t>(random());
  }
  return text;
}

TEST(TextHashTest, IsThePolynomialOfItsUnits) {
  for (const std::uint64_t seed : {0U, 1U, 2U, 77U}) {
    const TextHash hash(seed);
    std::mt19937 random(5);
    for (std::size_t length = 0; length < 40; ++length) {
      const std::u16string text = RandomText(random, length);
      EXPECT_EQ(hash(text), HashByDefinition(text, BaseOf(hash))) << length;
    }
    const std::u16string largest(TextHash::kMaxLength, u'\xFFFF');
    EXPECT_EQ(hash(largest), HashByDefinition(largest, BaseOf(hash)));
  }
}

TEST(TextHashTest, EmptyTextHasTheHashZeroAndZeroUnitsCount) {
  const TextHash hash(1);
  EXPECT_EQ(hash(u""), 0U);
  EXPECT_NE(hash(std::u16string_view(u"\0", 1)), 0U);
  EXPECT_NE(hash(std::u16string_view(u"\0\0", 2)), hash(std::u16string_view(u"\0", 1)));
}

TEST(TextHashTest, EqualSeedsGiveEqualHashesAndOthersDoNot) {
  EXPECT_EQ(TextHash(9)(u"c:\\a.doc"), TextHash(9)(u"c:\\a.doc"));
  EXPECT_NE(TextHash(9)(u"c:\\a.doc"), TextHash(10)(u"c:\\a.doc"));
}

TEST(TextHashTest, TheProcessHasOneHash) { EXPECT_EQ(&TextHash::OfProcess(), &TextHash::OfProcess()); }

TEST(TextHashTest, AppendingAndJoiningGiveTheHashOfTheWhole) {
  const TextHash hash(3);
  const std::u16string text = u"c:\\folder\\report 2024.docx";
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    const std::u16string_view head = std::u16string_view(text).substr(0, cut);
    const std::u16string_view tail = std::u16string_view(text).substr(cut);
    EXPECT_EQ(hash.Append(hash(head), tail), hash(text)) << cut;
    EXPECT_EQ(hash.Join(hash(head), hash(tail), tail.size()), hash(text)) << cut;
  }
}

TEST(TextHashTest, EveryPartHasItsHashFromTheBeginnings) {
  const TextHash hash(4);
  std::mt19937 random(6);
  const std::u16string text = RandomText(random, 43);
  std::vector<std::uint64_t> beginnings(text.size() + 1);
  hash.HashBeginnings(text, beginnings);
  const std::u16string folder = u"c:\\d\\";
  for (std::size_t begin = 0; begin <= text.size(); ++begin) {
    EXPECT_EQ(beginnings[begin], hash(std::u16string_view(text).substr(0, begin)));
    for (std::size_t end = begin; end <= text.size(); ++end) {
      const std::u16string part = text.substr(begin, end - begin);
      ASSERT_EQ(hash.OfPart(beginnings.data(), begin, end), hash(part)) << begin << " to " << end;
      ASSERT_EQ(hash.OfPart(beginnings.data(), begin, end, hash(folder)), hash(folder + part)) << begin << " to " << end;
    }
  }
}

// Names that differ in one unit only go to all parts of a table, by their first bits and by their last ones.
TEST(TextHashTest, NamesOfASeriesAreSpreadInTheFirstAndLastBits) {
  const TextHash hash(8);
  std::set<std::uint64_t> first_bits;
  std::set<std::uint64_t> last_bits;
  for (unsigned number = 0; number < 1000; ++number) {
    std::u16string name = u"c:\\d\\photo";
    name += static_cast<char16_t>(u'a' + number);
    first_bits.insert(hash(name) >> 55);
    last_bits.insert(hash(name) & 63);
  }
  EXPECT_GT(first_bits.size(), 48U);  // Of 64 that there are.
  EXPECT_GT(last_bits.size(), 48U);
}

}  // namespace
}  // namespace zt::testing
