#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include "tests/support/scratch_folder.h"
#include "tests/tools/input/reading.h"
#include "tools/replay/input/byte_source.h"

namespace replay::testing {
namespace {

using zt::testing::ScratchFolder;

using ::testing::EndsWith;
using ::testing::HasSubstr;

std::string Gzip(const std::string& text) {
  z_stream stream = {};
  deflateInit2(&stream, 9, Z_DEFLATED, 16 + MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
  std::string compressed(deflateBound(&stream, static_cast<uLong>(text.size())) + 64, '\0');
  std::string input = text;
  stream.next_in = reinterpret_cast<Bytef*>(input.data());
  stream.avail_in = static_cast<uInt>(input.size());
  stream.next_out = reinterpret_cast<Bytef*>(compressed.data());
  stream.avail_out = static_cast<uInt>(compressed.size());
  deflate(&stream, Z_FINISH);
  compressed.resize(stream.total_out);
  deflateEnd(&stream);
  return compressed;
}

std::string Numbers(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += std::to_string(i * 7919) + '\n';
  }
  return text;
}

class GzipSourceTest : public ::testing::Test {
 protected:
  std::unique_ptr<ByteSource> Open(const std::string& content) { return OpenByteSource(folder_.Write("capture.gz", content)); }
  std::string ErrorOfReading(const std::string& content) {
    const auto source = Open(content);
    return ErrorOf([&] { ReadAll(*source); });
  }
  ScratchFolder folder_;
};

TEST_F(GzipSourceTest, IsDecompressedWhateverItsName) {
  const std::string text = Numbers(50000);
  const std::string compressed = Gzip(text);
  const auto source = OpenByteSource(folder_.Write("capture.csv", compressed));
  EXPECT_EQ(source->Peek(6), "0\n7919");
  EXPECT_EQ(source->total(), compressed.size());
  EXPECT_FALSE(source->length().has_value());
  EXPECT_EQ(ReadAll(*source), text);
  EXPECT_EQ(source->consumed(), compressed.size());
}

TEST_F(GzipSourceTest, MembersAreReadThrough) { EXPECT_EQ(ReadAll(*Open(Gzip("one") + Gzip("") + Gzip("two"))), "onetwo"); }

TEST_F(GzipSourceTest, PaddingZerosAreRead) { EXPECT_EQ(ReadAll(*Open(Gzip("one") + std::string(100, '\0'))), "one"); }

TEST_F(GzipSourceTest, EmptyContentIsEmpty) { EXPECT_EQ(ReadAll(*Open(Gzip(""))), ""); }

TEST_F(GzipSourceTest, EveryTruncationIsAnErrorThatSaysSo) {
  const std::string compressed = Gzip("some text that is compressed");
  for (std::size_t size = 2; size < compressed.size(); ++size) {
    EXPECT_THAT(ErrorOfReading(compressed.substr(0, size)),
                EndsWith("capture.gz: the gzip data are cut off: the file ends before they do"))
        << size;
  }
}

TEST_F(GzipSourceTest, ATruncatedSecondMemberIsAnError) {
  const std::string member = Gzip("text");
  EXPECT_THAT(ErrorOfReading(member + member.substr(0, 7)), HasSubstr("cut off"));
}

TEST_F(GzipSourceTest, AWrongChecksumIsAnError) {
  std::string compressed = Gzip("some text");
  compressed[compressed.size() - 8] = static_cast<char>(compressed[compressed.size() - 8] ^ 1);
  EXPECT_THAT(ErrorOfReading(compressed), HasSubstr("the gzip data are damaged"));
}

TEST_F(GzipSourceTest, SomethingElseBehindIsAnError) {
  EXPECT_THAT(ErrorOfReading(Gzip("text") + "plain"), HasSubstr("the gzip data are damaged"));
}

TEST_F(GzipSourceTest, WhatPrecedesDamageIsRead) {
  const std::string text = Numbers(50000);
  const std::string compressed = Gzip(text);
  const auto source = Open(compressed.substr(0, compressed.size() / 2));
  std::string read;
  const std::string error = ErrorOf([&] {
    char block[1000];
    while (const std::size_t count = source->Read(block, sizeof block)) {
      read.append(block, count);
    }
  });
  EXPECT_THAT(error, HasSubstr("cut off"));
  EXPECT_GT(read.size(), 1000U);
  EXPECT_EQ(read, text.substr(0, read.size()));
}

}  // namespace
}  // namespace replay::testing
