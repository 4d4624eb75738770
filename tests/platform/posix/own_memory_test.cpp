#include "platform/posix/own_memory.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>

namespace zt {
namespace {

TEST(OwnMemoryTest, CopiesWords) {
  const std::array<std::uintptr_t, 3> source = {1, 22, 333};
  std::array<std::uintptr_t, 3> words = {};
  EXPECT_EQ(ReadOwnMemory(reinterpret_cast<std::uintptr_t>(source.data()), words), 3u);
  EXPECT_EQ(words, source);
}

TEST(OwnMemoryTest, StopsWhereMemoryCannotBeRead) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* const memory = mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  auto* const end = reinterpret_cast<std::uintptr_t*>(static_cast<char*>(memory) + page);
  end[-2] = 22;
  end[-1] = 333;
  ASSERT_EQ(mprotect(end, page, PROT_NONE), 0);
  std::array<std::uintptr_t, 4> words = {};
  EXPECT_EQ(ReadOwnMemory(reinterpret_cast<std::uintptr_t>(end - 2), words), 2u);
  EXPECT_EQ(words, (std::array<std::uintptr_t, 4>{22, 333, 0, 0}));
  munmap(memory, 2 * page);
}

TEST(OwnMemoryTest, NothingWhereThereIsNone) {
  std::array<std::uintptr_t, 2> words = {};
  EXPECT_EQ(ReadOwnMemory(0, words), 0u);
  EXPECT_EQ(ReadOwnMemory(0x10, words), 0u);
  EXPECT_EQ(ReadOwnMemory(UINTPTR_MAX - 7, words), 0u);
}

}  // namespace
}  // namespace zt
