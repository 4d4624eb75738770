// What the library's file says of itself: what leaves it, what it needs, and how the loader shall guard it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dll/export_names.h"
#include "tests/dll/posix/elf_file.h"

namespace zt::testing {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::IsSubsetOf;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAreArray;

class LibraryFileTest : public ::testing::Test {
 protected:
  const ElfFile file_{ZT_LIBRARY_FILE};
};

TEST_F(LibraryFileTest, ExactlyTheTenExportsLeaveIt) {
  EXPECT_THAT(file_.ExportedSymbols(), UnorderedElementsAreArray(ExportNames()));
}

TEST_F(LibraryFileTest, NeedsLibrariesOfTheSystemOnly) {
  EXPECT_THAT(file_.NeededLibraries(), Contains("libc.so.6"));
  // The last ones are the compiler's, of builds that look for mistakes.
  EXPECT_THAT(file_.NeededLibraries(),
              IsSubsetOf({"libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6", "ld-linux-x86-64.so.2",
                          "ld-linux-aarch64.so.1", "libasan.so.8", "libubsan.so.1", "libtsan.so.2"}));
}

TEST_F(LibraryFileTest, IsBoundWhenItIsLoadedAndThenReadOnly) {
  EXPECT_THAT(file_.Segments(PT_GNU_RELRO), SizeIs(1));
  ASSERT_THAT(file_.DynamicValues(DT_FLAGS_1), SizeIs(1));
  EXPECT_NE(file_.DynamicValues(DT_FLAGS_1).front() & DF_1_NOW, 0U);
}

TEST_F(LibraryFileTest, NothingIsBothWritableAndExecutable) {
  ASSERT_THAT(file_.Segments(PT_GNU_STACK), SizeIs(1));
  EXPECT_EQ(file_.Segments(PT_GNU_STACK).front().p_flags & PF_X, 0U);
  for (const Elf64_Phdr& segment : file_.Segments(PT_LOAD)) {
    EXPECT_NE(segment.p_flags & (PF_W | PF_X), std::uint32_t{PF_W | PF_X});
  }
  EXPECT_THAT(file_.DynamicValues(DT_TEXTREL), IsEmpty());
}

}  // namespace
}  // namespace zt::testing
