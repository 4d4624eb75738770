// A program's or library's file, laid open (ELF, 64 bits).

#ifndef ZT_TESTS_DLL_POSIX_ELF_FILE_H
#define ZT_TESTS_DLL_POSIX_ELF_FILE_H

#include <elf.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"

namespace zt::testing {

/// A file that is read whole. What is asked of it and lies outside of it fails the test.
class ElfFile {
 public:
  explicit ElfFile(const std::string& path) : bytes_(ScratchFolder::ReadFile(path)) {
    EXPECT_EQ(bytes_.substr(0, SELFMAG), ELFMAG);
  }

  /// The segments of one type, PT_LOAD for instance.
  [[nodiscard]] std::vector<Elf64_Phdr> Segments(std::uint32_t type) const {
    std::vector<Elf64_Phdr> segments = At<Elf64_Phdr>(Header().e_phoff, Header().e_phnum);
    std::erase_if(segments, [&](const Elf64_Phdr& segment) { return segment.p_type != type; });
    return segments;
  }

  /// The values of what the loader is told under one tag, DT_NEEDED for instance.
  [[nodiscard]] std::vector<std::uint64_t> DynamicValues(std::int64_t tag) const {
    const Elf64_Shdr section = Section(SHT_DYNAMIC);
    std::vector<std::uint64_t> values;
    for (const Elf64_Dyn& entry : At<Elf64_Dyn>(section.sh_offset, section.sh_size / sizeof(Elf64_Dyn))) {
      if (entry.d_tag == tag) {
        values.push_back(entry.d_un.d_val);
      }
    }
    return values;
  }

  [[nodiscard]] std::vector<std::string> NeededLibraries() const {
    std::vector<std::string> names;
    for (const std::uint64_t offset : DynamicValues(DT_NEEDED)) {
      names.push_back(Text(Section(SHT_DYNAMIC), offset));
    }
    return names;
  }

  /// The names of the functions and variables that the file takes from others.
  [[nodiscard]] std::vector<std::string> ImportedSymbols() const { return DynamicSymbols(false); }
  /// The names of those that others can take from it.
  [[nodiscard]] std::vector<std::string> ExportedSymbols() const { return DynamicSymbols(true); }

 private:
  // `count` consecutive objects of the file.
  template <typename Type>
  [[nodiscard]] std::vector<Type> At(std::uint64_t offset, std::uint64_t count) const {
    std::vector<Type> objects(count);
    if (offset > bytes_.size() || count * sizeof(Type) > bytes_.size() - offset) {
      ADD_FAILURE() << "the file ends before " << offset + count * sizeof(Type);
      return objects;
    }
    std::memcpy(objects.data(), bytes_.data() + offset, count * sizeof(Type));
    return objects;
  }

  // The names of the symbols that the loader knows and the file defines, or does not define.
  [[nodiscard]] std::vector<std::string> DynamicSymbols(bool defined) const {
    const Elf64_Shdr section = Section(SHT_DYNSYM);
    std::vector<std::string> names;
    for (const Elf64_Sym& symbol : At<Elf64_Sym>(section.sh_offset, section.sh_size / sizeof(Elf64_Sym))) {
      if (ELF64_ST_BIND(symbol.st_info) != STB_LOCAL && (symbol.st_shndx != SHN_UNDEF) == defined) {
        names.push_back(Text(section, symbol.st_name));
      }
    }
    return names;
  }

  [[nodiscard]] Elf64_Ehdr Header() const { return At<Elf64_Ehdr>(0, 1).front(); }
  [[nodiscard]] std::vector<Elf64_Shdr> Sections() const { return At<Elf64_Shdr>(Header().e_shoff, Header().e_shnum); }

  // The first section of a type.
  [[nodiscard]] Elf64_Shdr Section(std::uint32_t type) const {
    for (const Elf64_Shdr& section : Sections()) {
      if (section.sh_type == type) {
        return section;
      }
    }
    ADD_FAILURE() << "no section of type " << type;
    return {};
  }

  // The zero-terminated text at `offset` of the string table that `section` refers to.
  [[nodiscard]] std::string Text(const Elf64_Shdr& section, std::uint64_t offset) const {
    const std::uint64_t start = Sections().at(section.sh_link).sh_offset + offset;
    return start < bytes_.size() ? std::string(bytes_.c_str() + start) : "";
  }

  std::string bytes_;
};

}  // namespace zt::testing

#endif  // ZT_TESTS_DLL_POSIX_ELF_FILE_H
