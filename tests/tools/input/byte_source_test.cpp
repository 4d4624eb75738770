#include "tools/replay/input/byte_source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/scratch_folder.h"
#include "tests/tools/input/reading.h"

namespace replay::testing {
namespace {

using zt::testing::ScratchFolder;

using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(ByteSourceTest, GivesAFileAsItIs) {
  ScratchFolder folder;
  const std::string content("a\0b\r\n\xff", 6);
  const std::string path = folder.Write("capture", content);
  const auto source = OpenByteSource(path);
  EXPECT_EQ(source->name(), path);
  EXPECT_EQ(source->total(), 6U);
  EXPECT_EQ(source->length(), 6U);
  EXPECT_EQ(ReadAll(*source), content);
  EXPECT_EQ(source->consumed(), 6U);
}

TEST(ByteSourceTest, AFolderIsAnError) {
  ScratchFolder folder;
  const std::string path = folder.Path("");
  EXPECT_EQ(ErrorOf([&] { OpenByteSource(path); }), path + ": is a folder, not a capture");
}

TEST(ByteSourceTest, AMissingFileIsAnErrorThatNamesIt) {
  ScratchFolder folder;
  const std::string path = folder.Path("absent");
  EXPECT_THAT(ErrorOf([&] { OpenByteSource(path); }), StartsWith(path + ": cannot be opened: "));
}

TEST(ByteSourceTest, AnEmptyFileHasNoBytesAndNoKnownLength) {
  ScratchFolder folder;
  const auto source = OpenByteSource(folder.Write("empty", ""));
  EXPECT_EQ(source->Peek(10), "");
  EXPECT_EQ(ReadAll(*source), "");
  EXPECT_FALSE(source->length().has_value());  // Files of a size of 0 may be made up by the system as they are read.
}

TEST(ByteSourceTest, PeekConsumesNothing) {
  TextSource source("abcdef", 2);
  EXPECT_EQ(source.Peek(3), "abc");
  EXPECT_EQ(source.Peek(5), "abcde");
  EXPECT_EQ(source.Peek(2), "ab");
  EXPECT_EQ(ReadAll(source), "abcdef");
}

TEST(ByteSourceTest, PeekIsShorterOnlyWhereTheStreamIs) {
  TextSource source("abc", 1);
  EXPECT_EQ(source.Peek(100), "abc");
  EXPECT_EQ(ReadAll(source), "abc");
}

TEST(ByteSourceTest, PeekGivesAtMost64KiB) {
  TextSource source(std::string(100 * 1024, 'x'), 1000);
  EXPECT_EQ(source.Peek(90 * 1024).size(), 64U * 1024);
  EXPECT_EQ(ReadAll(source).size(), 100U * 1024);
}

}  // namespace
}  // namespace replay::testing
