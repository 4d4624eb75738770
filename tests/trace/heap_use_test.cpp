// A print takes nothing from the heap, so that it works when memory is exhausted. The program counts its allocations.

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>

#include "tests/trace/allocation_counter.h"
#include "trace/start_stop.h"
#include "trace/trace.h"

namespace zt::testing {
namespace {

class HeapUseTest : public ::testing::Test {
 protected:
  HeapUseTest() {
    TraceBringUp(kTraceToFile | kTraceToRing, nullptr);
    TracePrint(nullptr, 0, 1, "", "the C library may read the time zone at its first use");
  }
  ~HeapUseTest() override { TraceTakeDown(); }

  template <typename Work>
  static int AllocationsOf(const Work& work) {
    const int before = AllocationCount();
    work();
    return AllocationCount() - before;
  }
};

TEST_F(HeapUseTest, AllocationsAreCounted) {
  EXPECT_GT(AllocationsOf([] { ::operator delete(::operator new(1)); }), 0);
}

TEST_F(HeapUseTest, PrintWithoutWideStringsTakesNone) {
  EXPECT_EQ(AllocationsOf([] { TracePrint("data", 4, 649, "debug", "%s %d %p %16x", "text", 5, "pointer", 7u); }), 0);
}

TEST_F(HeapUseTest, WideStringsTakeNone) {
  for (const std::size_t length : {1u, 1023u, 1024u, 20000u}) {
    const std::wstring text(length, L'\x20AC');
    EXPECT_EQ(AllocationsOf([&text] { TracePrint(nullptr, 0, 649, "debug", "%ws %S", text.c_str(), text.c_str()); }), 0)
        << length;
  }
}

}  // namespace
}  // namespace zt::testing
