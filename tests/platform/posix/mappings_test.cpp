#include "platform/posix/mappings.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace zt {
namespace {

std::uintptr_t AddressOf(const void* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }

TEST(MappingsTest, LineOfAFile) {
  Mapping mapping;
  ASSERT_TRUE(
      ParseMapping("7f3bcc026000-7f3bcc17c000 r-xp 00026000 fe:01 1051234                    /usr/lib/lib c.so.6", mapping));
  EXPECT_EQ(mapping.begin, 0x7F3BCC026000u);
  EXPECT_EQ(mapping.end, 0x7F3BCC17C000u);
  EXPECT_TRUE(mapping.executable);
  EXPECT_EQ(mapping.file, 1051234u);
  EXPECT_EQ(mapping.path, "/usr/lib/lib c.so.6");
}

TEST(MappingsTest, LineWithoutAFile) {
  Mapping mapping;
  ASSERT_TRUE(ParseMapping("7f3bcc1d9000-7f3bcc1e6000 rw-p 00000000 00:00 0 ", mapping));
  EXPECT_FALSE(mapping.executable);
  EXPECT_EQ(mapping.file, 0u);
  EXPECT_EQ(mapping.path, "");
}

TEST(MappingsTest, OtherTextIsNoMapping) {
  Mapping mapping;
  for (const char* const line : {"", " ", "-", "7f3bcc1d9000", "7f3bcc1d9000-7f3bcc1e6000", "x-y rw-p 0 00:00 0",
                                 "1000-2000 rw-p 0 00:00 ?", "1000-2000 rw 0 00:00 0", "1000 2000 rw-p 0 00:00 0"}) {
    EXPECT_FALSE(ParseMapping(line, mapping)) << line;
  }
}

TEST(MappingsTest, ReaderAgreesWithTheFile) {
  // A mapping more or less may come with the memory that the test itself uses: it is taken before.
  std::vector<std::string> paths;
  paths.reserve(100000);
  {
    MappingReader reader;
    Mapping mapping;
    std::uintptr_t last_end = 0;
    while (reader.Next(mapping)) {
      ASSERT_GE(mapping.begin, last_end);
      ASSERT_GT(mapping.end, mapping.begin);
      last_end = mapping.end;
      if (mapping.executable) {
        paths.emplace_back(mapping.path);
      }
    }
  }
  std::vector<std::string> expected;
  std::ifstream file("/proc/self/maps");
  for (std::string line; std::getline(file, line);) {
    if (line.find(" r-xp ") != std::string::npos || line.find(" --xp ") != std::string::npos) {
      const std::size_t path = line.find_first_of("/[");
      expected.push_back(path == std::string::npos ? "" : line.substr(path));
    }
  }
  EXPECT_EQ(paths, expected);
  EXPECT_GE(paths.size(), 3u);
}

TEST(MappingsTest, FindsTheMappingOfAnAddress) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* const memory = mmap(nullptr, 3 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  const std::uintptr_t begin = AddressOf(memory) + page;
  ASSERT_EQ(mprotect(reinterpret_cast<void*>(begin), page, PROT_READ), 0);  // Makes it a mapping of its own.
  for (const std::uintptr_t address : {begin, begin + page - 1}) {
    Mapping mapping;
    ASSERT_TRUE(FindMapping(address, mapping));
    EXPECT_EQ(mapping.begin, begin);
    EXPECT_EQ(mapping.end, begin + page);
  }
  munmap(memory, 3 * page);
  Mapping mapping;
  EXPECT_FALSE(FindMapping(0x10, mapping));
}

ModuleTable table;

TEST(ModuleTableTest, AgreesWithTheLoader) {
  table.Read();
  int data = 0;
  for (const void* const pointer : {reinterpret_cast<const void*>(&ParseMapping), reinterpret_cast<const void*>(&dladdr),
                                    reinterpret_cast<const void*>(&_exit)}) {
    Dl_info info = {};
    ASSERT_NE(dladdr(pointer, &info), 0);
    const ModulePlace place = table.Find(AddressOf(pointer));
    EXPECT_EQ(place.module, std::filesystem::canonical(info.dli_fname).filename());
    EXPECT_EQ(place.offset, AddressOf(pointer) - AddressOf(info.dli_fbase));
  }
  EXPECT_EQ(table.Find(AddressOf(&data)).module, "") << "a stack is no module";
  EXPECT_EQ(table.Find(0).module, "");
  EXPECT_EQ(table.Find(UINTPTR_MAX).module, "");
}

TEST(ModuleTableTest, ExecutableMemoryWithoutAFile) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* const memory = mmap(nullptr, page, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  table.Read();
  EXPECT_EQ(table.Find(AddressOf(memory) + 8).module, "anonymous");
  EXPECT_EQ(table.Find(AddressOf(memory) + 8).offset, 8u);
  munmap(memory, page);
  table.Read();
  EXPECT_EQ(table.Find(AddressOf(memory) + 8).module, "");
}

}  // namespace
}  // namespace zt
