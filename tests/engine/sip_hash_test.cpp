#include "engine/sip_hash.h"

#include <gtest/gtest.h>

namespace zt::testing {
namespace {

// Taken from another implementation of SipHash-1-3, over the same bytes.
TEST(SipHashTest, IsSipHash13OfTheUnitsBytes) {
  EXPECT_EQ(SipHash(L"a", {0, 0}), 0x9b310fba2c6d84d2u);
  EXPECT_EQ(SipHash(L"abc", {0, 0}), 0xc24f63cbd86a33e3u);
  EXPECT_EQ(SipHash(L"abcd", {0, 0}), 0xcac139f1a7b39f3au);
  EXPECT_EQ(SipHash(L"abcde", {0, 0}), 0x854779d83f574eccu);
  EXPECT_EQ(SipHash(L"c:\\users\\ann\\documents\\report0000042.docx", {0, 0}), 0x6d37b17c9f12374eu);
}

TEST(SipHashTest, BothHalvesOfTheKeyCount) {
  EXPECT_NE(SipHash(L"a", {0, 0}), SipHash(L"a", {1, 0}));
  EXPECT_NE(SipHash(L"a", {0, 0}), SipHash(L"a", {0, 1}));
  EXPECT_NE(SipHash(L"", {0, 0}), SipHash(L"", {0, 1}));
}

}  // namespace
}  // namespace zt::testing
