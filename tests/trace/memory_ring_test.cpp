#include "trace/memory_ring.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

namespace zt {
namespace {

class MemoryRingTest : public ::testing::Test {
 protected:
  MemoryRingTest() : ring_(CreateMemoryRing(), &FreeMemoryRing) {}

  void Store(const std::string& line) { StoreInRing(*ring_, line); }
  const char* Slot(std::size_t index) { return ring_->slots[index]; }

  std::unique_ptr<TraceMemLogHead, decltype(&FreeMemoryRing)> ring_;
};

TEST_F(MemoryRingTest, NewRingIsTaggedAndEmpty) {
  const char* const bytes = reinterpret_cast<const char*>(ring_.get());
  EXPECT_EQ(std::string(bytes, 16), std::string("TraceMemLogHead\0", 16));
  EXPECT_TRUE(std::all_of(bytes + 16, bytes + 1048600, [](char byte) { return byte == '\0'; }));
}

// A reader of dumps goes by these offsets.
TEST_F(MemoryRingTest, LayoutIsFixed) {
  Store("first.");
  Store("second.");
  const char* const bytes = reinterpret_cast<const char*>(ring_.get());
  std::uint64_t count = 0;
  std::memcpy(&count, bytes + 16, sizeof count);
  EXPECT_EQ(count, 2u);
  EXPECT_STREQ(bytes + 24, "first");
  EXPECT_STREQ(bytes + 24 + 1024, "second");
}

TEST_F(MemoryRingTest, LastCharacterIsDropped) {
  Store("abc");
  Store("a");
  EXPECT_STREQ(Slot(0), "ab");
  EXPECT_STREQ(Slot(1), "");
}

TEST_F(MemoryRingTest, EmptyLineTakesAnEmptySlot) {
  Store("abc");
  ring_->count = 1024;  // The next line goes to the same slot again.
  Store("");
  EXPECT_STREQ(Slot(0), "");
  EXPECT_EQ(ring_->count, 1025u);
  EXPECT_EQ(ring_->tag[15], '\0');
}

TEST_F(MemoryRingTest, LinesAreCutToASlot) {
  Store(std::string(1023, 'a') + "b");
  Store(std::string(1024, 'c') + "d");
  Store(std::string(20000, 'e'));
  EXPECT_EQ(std::string(Slot(0)), std::string(1023, 'a'));
  EXPECT_EQ(std::string(Slot(1)), std::string(1023, 'c'));
  EXPECT_EQ(std::string(Slot(2)), std::string(1023, 'e'));
  EXPECT_STREQ(Slot(3), "");
}

TEST_F(MemoryRingTest, OldestLineIsOverwrittenAfter1024) {
  for (int line = 0; line < 1024 + 2; ++line) {
    Store("line " + std::to_string(line) + ".");
  }
  EXPECT_EQ(ring_->count, 1026u);
  EXPECT_STREQ(Slot(0), "line 1024");
  EXPECT_STREQ(Slot(1), "line 1025");
  EXPECT_STREQ(Slot(2), "line 2");
  EXPECT_STREQ(Slot(1023), "line 1023");
}

TEST_F(MemoryRingTest, ShorterLineHidesTheRestOfALongerOne) {
  Store("a long line.");
  ring_->count = 1024;
  Store("ab.");
  EXPECT_STREQ(Slot(0), "ab");
}

TEST(FreeMemoryRingTest, NullIsNone) { FreeMemoryRing(nullptr); }

}  // namespace
}  // namespace zt
