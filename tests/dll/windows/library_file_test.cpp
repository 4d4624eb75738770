// What the library's file says of itself: what leaves it, what it needs, and how the system shall guard it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace zt::testing {
namespace {

using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::UnorderedElementsAre;

// The library laid out as in memory. None of its code runs.
class LibraryFileTest : public ::testing::Test {
 protected:
  struct Unloader {
    void operator()(HMODULE module) const { FreeLibrary(module); }
  };

  void SetUp() override { ASSERT_NE(image_, nullptr) << "error " << GetLastError(); }

  template <typename Type>
  const Type* At(DWORD offset) const {
    return reinterpret_cast<const Type*>(reinterpret_cast<const char*>(image_.get()) + offset);
  }
  const IMAGE_OPTIONAL_HEADER64& Header() const {
    return At<IMAGE_NT_HEADERS64>(static_cast<DWORD>(At<IMAGE_DOS_HEADER>(0)->e_lfanew))->OptionalHeader;
  }
  template <typename Type>
  const Type* Directory(unsigned index) const {
    return At<Type>(Header().DataDirectory[index].VirtualAddress);
  }

  std::vector<std::string> Exports() const {
    const auto* const table = Directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
    // Nothing leaves without a name.
    EXPECT_EQ(table->NumberOfFunctions, table->NumberOfNames);
    std::vector<std::string> names;
    for (DWORD i = 0; i < table->NumberOfNames; ++i) {
      names.emplace_back(At<char>(At<DWORD>(table->AddressOfNames)[i]));
    }
    return names;
  }

  // In lower case.
  std::vector<std::string> ImportedLibraries() const {
    std::vector<std::string> names;
    for (const auto* entry = Directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT); entry->Name != 0; ++entry) {
      std::string name = At<char>(entry->Name);
      CharLowerA(name.data());
      names.push_back(name);
    }
    return names;
  }

  const std::unique_ptr<std::remove_pointer_t<HMODULE>, Unloader> image_{
      LoadLibraryExA(ZT_LIBRARY_FILE, nullptr, DONT_RESOLVE_DLL_REFERENCES)};
};

TEST_F(LibraryFileTest, ExactlyTheTenExportsLeaveIt) {
  EXPECT_THAT(Exports(), UnorderedElementsAre(HasSubstr("ZtInitEngineCore"), HasSubstr("ZtCleanupEngineCore"),
                                              HasSubstr("ZtGetProcTree"), HasSubstr("ZtGetProcTree"), HasSubstr("ZtInsertLog"),
                                              HasSubstr("ZtCalculateSingleLineScore"), HasSubstr("ZtUpdateScore"),
                                              HasSubstr("ZtSearchSimilarFile"), HasSubstr("ZtResetScore"),
                                              HasSubstr("ZtGetFinalStateFileByPid")));
  EXPECT_STREQ(At<char>(Directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT)->Name), "zteng.dll");
}

TEST_F(LibraryFileTest, NeedsLibrariesOfTheSystemOnly) {
  const std::vector<std::string> imported = ImportedLibraries();
  // "api-ms-win-crt-..." and msvcrt are the C library, which belongs to the system.
  EXPECT_THAT(imported, Each(::testing::AnyOf("kernel32.dll", "advapi32.dll", "dbghelp.dll", "user32.dll", "shell32.dll",
                                              "msvcrt.dll", ::testing::StartsWith("api-ms-win-crt-"))));
  EXPECT_THAT(imported, IsSupersetOf({"kernel32.dll", "advapi32.dll"}));
}

TEST_F(LibraryFileTest, IsLaidOutAtRandomAndItsDataDoNotRun) {
  EXPECT_NE(Header().DllCharacteristics & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE, 0);
  EXPECT_NE(Header().DllCharacteristics & IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA, 0);
  EXPECT_NE(Header().DllCharacteristics & IMAGE_DLLCHARACTERISTICS_NX_COMPAT, 0);
  // Without relocations it could not be moved.
  EXPECT_GT(Header().DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0U);
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
