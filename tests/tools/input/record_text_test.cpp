#include "tools/replay/input/record_text.h"

#include <gtest/gtest.h>

#include "tests/tools/input/reading.h"

namespace replay::testing {
namespace {

TEST(RecordTextTest, ATargetIsInUtf16CodeUnits) {
  LOG_ITEM record = {};
  EXPECT_FALSE(SetTarget(record, "C:\\\xD7\x99\xF0\x9F\x98\x80.txt"));
  EXPECT_EQ(TargetText(record), "C:\\<05D9><D83D><DE00>.txt");
}

TEST(RecordTextTest, BytesThatAreNoUtf8BecomeReplacementCharacters) {
  LOG_ITEM record = {};
  EXPECT_FALSE(SetTarget(record, "a\xFFz"));
  EXPECT_EQ(TargetText(record), "a<FFFD>z");
}

TEST(RecordTextTest, ATargetOf524UnitsIsWhole) {
  LOG_ITEM record = {};
  EXPECT_FALSE(SetTarget(record, std::string(523, 'a') + "z"));
  EXPECT_EQ(TargetText(record), std::string(523, 'a') + "z");
  EXPECT_EQ(record.Context, 0U);
}

TEST(RecordTextTest, ALongerTargetIsCutAt524Units) {
  LOG_ITEM record = {};
  EXPECT_TRUE(SetTarget(record, std::string(523, 'a') + "zy"));
  EXPECT_EQ(TargetText(record), std::string(523, 'a') + "z");
  EXPECT_EQ(record.Context, 0U);

  LOG_ITEM wide = {};
  EXPECT_TRUE(SetTarget(wide, std::string(523, 'a') + "\xF0\x9F\x98\x80"));  // The pair stands across the limit.
  EXPECT_EQ(TargetText(wide), std::string(523, 'a') + "<D83D>");
}

TEST(RecordTextTest, APathHeadIsTheFirst35Bytes) {
  LOG_ITEM record = {};
  SetPathHead(record, std::string(34, 'a') + "zy");
  EXPECT_EQ(PathText(record), std::string(34, 'a') + "z");
}

TEST(RecordTextTest, APathTailIsTheLast35Bytes) {
  LOG_ITEM record = {};
  SetPathTail(record, "xx" + std::string(34, 'a') + "z");
  EXPECT_EQ(PathText(record), std::string(34, 'a') + "z");
  LOG_ITEM brief = {};
  SetPathTail(brief, "a.exe");
  EXPECT_EQ(PathText(brief), "a.exe");
}

TEST(RecordTextTest, APathTailDoesNotStartAmidACharacter) {
  LOG_ITEM record = {};
  SetPathTail(record, "\xE6\x97\xA5" + std::string(33, 'a'));  // 36 bytes: the cut falls behind the first of three.
  EXPECT_EQ(PathText(record), std::string(33, 'a'));
}

}  // namespace
}  // namespace replay::testing
