#include "platform/posix/signal_names.h"

#include <gtest/gtest.h>
#include <string.h>  // NOLINT(modernize-deprecated-headers): for sigabbrev_np.

#include <csignal>
#include <string>

namespace zt {
namespace {

TEST(SignalNamesTest, AgreeWithTheCLibrary) {
  for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT}) {
    EXPECT_EQ(SignalName(signal), std::string("SIG") + sigabbrev_np(signal));
  }
  EXPECT_EQ(SignalName(SIGUSR1), "another signal");
}

TEST(SignalNamesTest, SameCodeMeansAnotherThingWithAnotherSignal) {
  EXPECT_EQ(ReasonOf(SIGSEGV, 1).name, "SEGV_MAPERR");
  EXPECT_EQ(ReasonOf(SIGBUS, 1).name, "BUS_ADRALN");
  EXPECT_EQ(ReasonOf(SIGILL, 1).name, "ILL_ILLOPC");
  EXPECT_EQ(ReasonOf(SIGFPE, 1).name, "FPE_INTDIV");
  EXPECT_EQ(ReasonOf(SIGSEGV, 2).meaning, "the mapping does not permit the access");
}

TEST(SignalNamesTest, WaysOfSendingAreTheSameForAll) {
  for (const int signal : {SIGSEGV, SIGABRT}) {
    EXPECT_EQ(ReasonOf(signal, 0).name, "SI_USER");
    EXPECT_EQ(ReasonOf(signal, -1).name, "SI_QUEUE");
    EXPECT_EQ(ReasonOf(signal, -6).name, "SI_TKILL");
    EXPECT_EQ(ReasonOf(signal, 128).name, "SI_KERNEL");
  }
}

TEST(SignalNamesTest, UnknownCodes) {
  EXPECT_EQ(ReasonOf(SIGSEGV, 1000).name, "unknown");
  EXPECT_EQ(ReasonOf(SIGABRT, 1).meaning, "unknown");
}

}  // namespace
}  // namespace zt
