#include "platform/posix/signal_stack.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <thread>
#include <vector>

#include "platform/posix/own_memory.h"

namespace zt {
namespace {

stack_t Current() {
  stack_t stack = {};
  sigaltstack(nullptr, &stack);
  return stack;
}

// Sanitizers give each thread a stack; the tests want to begin without.
void RunOnBareThread(const auto& test) {
  std::thread([&test] {
    const stack_t before = Current();
    stack_t none = {};
    none.ss_flags = SS_DISABLE;
    ASSERT_EQ(sigaltstack(&none, nullptr), 0);
    test();
    sigaltstack(&before, nullptr);
  }).join();
}

TEST(SignalStackTest, ThreadWithoutOneGetsOne) {
  RunOnBareThread([] {
    ProvideSignalStack();
    const stack_t stack = Current();
    EXPECT_EQ(stack.ss_flags, 0);
    EXPECT_GE(stack.ss_size, 131072 + static_cast<std::size_t>(sysconf(_SC_MINSIGSTKSZ)));
    static_cast<volatile char*>(stack.ss_sp)[0] = 1;
    static_cast<volatile char*>(stack.ss_sp)[stack.ss_size - 1] = 1;

    std::uintptr_t word = 0;
    const auto begin = reinterpret_cast<std::uintptr_t>(stack.ss_sp);
    EXPECT_EQ(ReadOwnMemory(begin, {&word, 1}), 1u);
    EXPECT_EQ(ReadOwnMemory(begin - 8, {&word, 1}), 0u) << "the page below must not be usable";

    ReleaseSignalStack();
    EXPECT_EQ(Current().ss_flags, SS_DISABLE);
    EXPECT_EQ(ReadOwnMemory(begin, {&word, 1}), 0u);
  });
}

TEST(SignalStackTest, SecondCallChangesNothing) {
  RunOnBareThread([] {
    ProvideSignalStack();
    const void* const stack = Current().ss_sp;
    ProvideSignalStack();
    EXPECT_EQ(Current().ss_sp, stack);
    ReleaseSignalStack();
    EXPECT_EQ(Current().ss_flags, SS_DISABLE);
    ReleaseSignalStack();
  });
}

TEST(SignalStackTest, LargeEnoughStackStays) {
  RunOnBareThread([] {
    std::vector<char> memory(1 << 20);
    stack_t own = {};
    own.ss_sp = memory.data();
    own.ss_size = memory.size();
    ASSERT_EQ(sigaltstack(&own, nullptr), 0);
    ProvideSignalStack();
    EXPECT_EQ(Current().ss_sp, memory.data());
    ReleaseSignalStack();
    EXPECT_EQ(Current().ss_sp, memory.data());
  });
}

TEST(SignalStackTest, SmallStackIsPutAside) {
  RunOnBareThread([] {
    std::vector<char> memory(65536);
    stack_t own = {};
    own.ss_sp = memory.data();
    own.ss_size = memory.size();
    ASSERT_EQ(sigaltstack(&own, nullptr), 0);
    ProvideSignalStack();
    EXPECT_GE(Current().ss_size, 131072u);
    ReleaseSignalStack();
    EXPECT_EQ(Current().ss_sp, memory.data());
    EXPECT_EQ(Current().ss_size, memory.size());
  });
}

TEST(SignalStackTest, WhereNoneIsASmallStackStaysToo) {
  RunOnBareThread([] {
    std::vector<char> memory(65536);
    stack_t own = {};
    own.ss_sp = memory.data();
    own.ss_size = memory.size();
    ASSERT_EQ(sigaltstack(&own, nullptr), 0);
    ProvideSignalStackWhereNone();
    EXPECT_EQ(Current().ss_sp, memory.data());
    own.ss_flags = SS_DISABLE;
    ASSERT_EQ(sigaltstack(&own, nullptr), 0);
    ProvideSignalStackWhereNone();
    EXPECT_GE(Current().ss_size, 131072u);
    ReleaseSignalStack();
    EXPECT_EQ(Current().ss_flags, SS_DISABLE);
  });
}

TEST(SignalStackTest, AnotherStackInItsPlaceStays) {
  RunOnBareThread([] {
    ProvideSignalStack();
    const stack_t provided = Current();
    std::vector<char> memory(65536);
    stack_t own = {};
    own.ss_sp = memory.data();
    own.ss_size = memory.size();
    ASSERT_EQ(sigaltstack(&own, nullptr), 0);
    ReleaseSignalStack();
    EXPECT_EQ(Current().ss_sp, memory.data());
    // Who puts the former one back must find it there.
    ASSERT_EQ(sigaltstack(&provided, nullptr), 0);
    static_cast<volatile char*>(provided.ss_sp)[0] = 1;
    ReleaseSignalStack();
    EXPECT_EQ(Current().ss_flags, SS_DISABLE);
  });
}

volatile bool was_on_stack = false;
void ReleaseInHandler(int) {
  ReleaseSignalStack();
  was_on_stack = (Current().ss_flags & SS_ONSTACK) != 0;
}

TEST(SignalStackTest, StackInUseStays) {
  RunOnBareThread([] {
    ProvideSignalStack();
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = &ReleaseInHandler;
    action.sa_flags = SA_ONSTACK;
    ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);
    ASSERT_EQ(raise(SIGUSR1), 0);
    sigaction(SIGUSR1, &before, nullptr);
    EXPECT_TRUE(was_on_stack);
    EXPECT_EQ(Current().ss_flags, 0);
    ReleaseSignalStack();
    EXPECT_EQ(Current().ss_flags, SS_DISABLE);
  });
}

TEST(SignalStackTest, OtherThreadsKeepTheirs) {
  RunOnBareThread([] {
    ProvideSignalStack();
    const void* const stack = Current().ss_sp;
    std::thread(&ReleaseSignalStack).join();
    EXPECT_EQ(Current().ss_sp, stack);
    ReleaseSignalStack();
  });
}

}  // namespace
}  // namespace zt
