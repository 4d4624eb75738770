// A program's or library's file, laid open (PE, 64 bits).

#ifndef ZT_TESTS_DLL_WINDOWS_PE_FILE_H
#define ZT_TESTS_DLL_WINDOWS_PE_FILE_H

#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace zt::testing {

/// A file laid out as in memory. None of its code runs.
class PeFile {
 public:
  explicit PeFile(const char* path) : image_(LoadLibraryExA(path, nullptr, DONT_RESOLVE_DLL_REFERENCES)) {
    EXPECT_NE(image_, nullptr) << path << ": error " << GetLastError();
  }

  /// False for a file that could not be opened; nothing else may be asked of it then.
  [[nodiscard]] bool IsOpen() const { return image_ != nullptr; }

  [[nodiscard]] const IMAGE_OPTIONAL_HEADER64& Header() const {
    return At<IMAGE_NT_HEADERS64>(static_cast<DWORD>(At<IMAGE_DOS_HEADER>(0)->e_lfanew))->OptionalHeader;
  }

  /// The names of what leaves the file.
  [[nodiscard]] std::vector<std::string> Exports() const {
    const auto* const table = Directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
    std::vector<std::string> names;
    if (table == nullptr) {
      return names;
    }
    // Nothing leaves without a name.
    EXPECT_EQ(table->NumberOfFunctions, table->NumberOfNames);
    for (DWORD i = 0; i < table->NumberOfNames; ++i) {
      names.emplace_back(At<char>(At<DWORD>(table->AddressOfNames)[i]));
    }
    return names;
  }

  /// The name that the file gives itself for those that import from it, or null.
  [[nodiscard]] const char* OwnName() const {
    const auto* const table = Directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
    return table == nullptr ? nullptr : At<char>(table->Name);
  }

  /// In lower case.
  [[nodiscard]] std::vector<std::string> ImportedLibraries() const {
    std::vector<std::string> names;
    for (const auto* entry = Directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
         entry != nullptr && entry->Name != 0; ++entry) {
      std::string name = At<char>(entry->Name);
      CharLowerA(name.data());
      names.push_back(name);
    }
    return names;
  }

 private:
  struct Unloader {
    void operator()(HMODULE module) const { FreeLibrary(module); }
  };

  template <typename Type>
  const Type* At(DWORD offset) const {
    return reinterpret_cast<const Type*>(reinterpret_cast<const char*>(image_.get()) + offset);
  }
  // Null where the file has none.
  template <typename Type>
  const Type* Directory(unsigned index) const {
    const DWORD offset = Header().DataDirectory[index].VirtualAddress;
    return offset == 0 ? nullptr : At<Type>(offset);
  }

  std::unique_ptr<std::remove_pointer_t<HMODULE>, Unloader> image_;
};

}  // namespace zt::testing

#endif  // ZT_TESTS_DLL_WINDOWS_PE_FILE_H
