#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/scratch_folder.h"
#include "tests/tools/input/reading.h"
#include "tools/replay/input/byte_source.h"

namespace replay::testing {
namespace {

using zt::testing::ScratchFolder;

using namespace std::string_view_literals;

TEST(MissingDecodersTest, AGzipFileIsRefusedPlainly) {
  ScratchFolder folder;
  const std::string path = folder.Write("capture.csv.gz", "\x1f\x8b\x08\0"sv);
  EXPECT_EQ(ErrorOf([&] { OpenByteSource(path); }),
            path + ": is compressed with gzip, which this build cannot read: it was built without zlib");
}

TEST(MissingDecodersTest, AnXzFileIsRefusedPlainly) {
  ScratchFolder folder;
  const std::string path = folder.Write("capture.csv.xz", "\xfd\x37zXZ\0"sv);
  EXPECT_EQ(ErrorOf([&] { OpenByteSource(path); }),
            path + ": is compressed with xz, which this build cannot read: it was built without liblzma");
}

TEST(MissingDecodersTest, PlainFilesAreRead) {
  ScratchFolder folder;
  const auto source = OpenByteSource(folder.Write("capture.csv", "text"));
  EXPECT_EQ(ReadAll(*source), "text");
}

}  // namespace
}  // namespace replay::testing
