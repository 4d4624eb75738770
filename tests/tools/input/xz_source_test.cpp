#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <lzma.h>

#include "tests/support/scratch_folder.h"
#include "tests/tools/input/reading.h"
#include "tools/replay/input/byte_source.h"

namespace replay::testing {
namespace {

using zt::testing::ScratchFolder;

using ::testing::EndsWith;
using ::testing::HasSubstr;

std::string Xz(const std::string& text) {
  std::string compressed(lzma_stream_buffer_bound(text.size()), '\0');
  std::size_t size = 0;
  const lzma_ret result =
      lzma_easy_buffer_encode(6, LZMA_CHECK_CRC64, nullptr, reinterpret_cast<const std::uint8_t*>(text.data()), text.size(),
                              reinterpret_cast<std::uint8_t*>(compressed.data()), &size, compressed.size());
  EXPECT_EQ(result, LZMA_OK);
  compressed.resize(size);
  return compressed;
}

class XzSourceTest : public ::testing::Test {
 protected:
  std::unique_ptr<ByteSource> Open(const std::string& content) { return OpenByteSource(folder_.Write("capture.xz", content)); }
  std::string ErrorOfReading(const std::string& content) {
    const auto source = Open(content);
    return ErrorOf([&] { ReadAll(*source); });
  }
  ScratchFolder folder_;
};

TEST_F(XzSourceTest, IsDecompressedWhateverItsName) {
  std::string text;
  for (int i = 0; i < 50000; ++i) {
    text += std::to_string(i * 7919) + '\n';
  }
  const std::string compressed = Xz(text);
  const auto source = OpenByteSource(folder_.Write("capture.csv", compressed));
  EXPECT_EQ(source->Peek(6), "0\n7919");
  EXPECT_EQ(source->total(), compressed.size());
  EXPECT_EQ(ReadAll(*source), text);
  EXPECT_EQ(source->consumed(), compressed.size());
}

TEST_F(XzSourceTest, StreamsAreReadThrough) {
  EXPECT_EQ(ReadAll(*Open(Xz("one") + Xz("two") + std::string(4, '\0'))), "onetwo");
}

TEST_F(XzSourceTest, EveryTruncationIsAnErrorThatSaysSo) {
  const std::string compressed = Xz("some text that is compressed");
  for (std::size_t size = 6; size < compressed.size(); ++size) {
    EXPECT_THAT(ErrorOfReading(compressed.substr(0, size)),
                EndsWith("capture.xz: the xz data are cut off: the file ends before they do"))
        << size;
  }
}

TEST_F(XzSourceTest, ChangedBytesAreAnError) {
  std::string compressed = Xz("some text that is compressed");
  compressed[30] = static_cast<char>(compressed[30] ^ 0x55);
  EXPECT_THAT(ErrorOfReading(compressed), HasSubstr("the xz data are damaged"));
}

TEST_F(XzSourceTest, SomethingElseBehindIsAnError) {
  EXPECT_THAT(ErrorOfReading(Xz("text") + "something that is no xz"), HasSubstr("the xz data are damaged"));
}

}  // namespace
}  // namespace replay::testing
