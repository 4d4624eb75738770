// Interruptions, as systems of this kind have them: signals.

#include "platform/temporary_file.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "tests/support/scratch_folder.h"

namespace zt {
namespace {

using ::testing::ExitedWithCode;
using ::testing::KilledBySignal;
using testing::ScratchFolder;

/// What a child does: it has `file`, which goes with an interruption, and gets `signal`.
void BeInterrupted(const std::string& file, int signal) {
  const RemovalOnInterrupt removal(file);
  std::FILE* const stream = CreateTemporaryFile(file);
  if (stream == nullptr) {
    std::exit(2);
  }
  raise(signal);
  std::exit(3);
}

/// What a child does: it gets `signal` when its file is finished and another is not.
void BeInterruptedAfter(const std::string& finished, const std::string& other, int signal) {
  { const RemovalOnInterrupt removal(finished); }
  const RemovalOnInterrupt removal(other);
  raise(signal);
}

TEST(RemovalOnInterruptDeathTest, TheFileIsGoneAndTheSignalEndsTheProcess) {
  const ScratchFolder folder;
  for (const int signal : {SIGINT, SIGHUP, SIGTERM}) {
    EXPECT_EXIT(BeInterrupted(folder.Path("file"), signal), KilledBySignal(signal), "");
    EXPECT_EQ(folder.Size(), 0U) << signal;
  }
}

TEST(RemovalOnInterruptDeathTest, AnIgnoredSignalStaysIgnored) {
  const ScratchFolder folder;
  EXPECT_EXIT((std::signal(SIGHUP, SIG_IGN), BeInterrupted(folder.Path("file"), SIGHUP)), ExitedWithCode(3), "");
}

TEST(RemovalOnInterruptDeathTest, AFileThatIsFinishedStays) {
  const ScratchFolder folder;
  const std::string finished = folder.Write("finished", "content");
  EXPECT_EXIT(BeInterruptedAfter(finished, folder.Write("other", ""), SIGTERM), KilledBySignal(SIGTERM), "");
  EXPECT_EQ(folder.Read("finished"), "content");
  EXPECT_EQ(folder.Size(), 1U);
}

}  // namespace
}  // namespace zt
