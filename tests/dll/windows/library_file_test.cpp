// What the library's file says of itself: what leaves it, what it needs, and how the system shall guard it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "tests/dll/export_names.h"
#include "tests/dll/windows/pe_file.h"

namespace zt::testing {
namespace {

using ::testing::Each;
using ::testing::IsSupersetOf;
using ::testing::UnorderedElementsAreArray;

class LibraryFileTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(file_.IsOpen()); }

  const PeFile file_{ZT_LIBRARY_FILE};
};

TEST_F(LibraryFileTest, ExactlyTheTenExportsLeaveIt) {
  EXPECT_THAT(file_.Exports(), UnorderedElementsAreArray(ExportNames()));
  EXPECT_STREQ(file_.OwnName(), "zteng.dll");
}

TEST_F(LibraryFileTest, NeedsLibrariesOfTheSystemOnly) {
  const std::vector<std::string> imported = file_.ImportedLibraries();
  // "api-ms-win-crt-..." and msvcrt are the C library, which belongs to the system.
  EXPECT_THAT(imported, Each(::testing::AnyOf("kernel32.dll", "advapi32.dll", "dbghelp.dll", "user32.dll", "shell32.dll",
                                              "msvcrt.dll", ::testing::StartsWith("api-ms-win-crt-"))));
  EXPECT_THAT(imported, IsSupersetOf({"kernel32.dll", "advapi32.dll"}));
}

TEST_F(LibraryFileTest, IsLaidOutAtRandomAndItsDataDoNotRun) {
  EXPECT_NE(file_.Header().DllCharacteristics & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE, 0);
  EXPECT_NE(file_.Header().DllCharacteristics & IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA, 0);
  EXPECT_NE(file_.Header().DllCharacteristics & IMAGE_DLLCHARACTERISTICS_NX_COMPAT, 0);
  // Without relocations it could not be moved.
  EXPECT_GT(file_.Header().DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0U);
}

TEST_F(LibraryFileTest, CarriesItsVersion) {
  DWORD unused = 0;
  std::vector<char> information(GetFileVersionInfoSizeA(ZT_LIBRARY_FILE, &unused));
  ASSERT_TRUE(GetFileVersionInfoA(ZT_LIBRARY_FILE, 0, static_cast<DWORD>(information.size()), information.data()));

  void* found = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueA(information.data(), "\\", &found, &size));
  const auto* const fixed = static_cast<const VS_FIXEDFILEINFO*>(found);
  const DWORD version[] = {HIWORD(fixed->dwFileVersionMS), LOWORD(fixed->dwFileVersionMS), HIWORD(fixed->dwFileVersionLS),
                           LOWORD(fixed->dwFileVersionLS)};
  EXPECT_THAT(version, ::testing::ElementsAre(ZT_VERSION_MAJOR, ZT_VERSION_MINOR, ZT_VERSION_PATCH, 0));
  EXPECT_EQ(fixed->dwFileType, static_cast<DWORD>(VFT_DLL));

  ASSERT_TRUE(VerQueryValueA(information.data(), "\\StringFileInfo\\040904B0\\ProductName", &found, &size));
  EXPECT_STREQ(static_cast<const char*>(found), "ZtEngineCore");
}

}  // namespace
}  // namespace zt::testing
