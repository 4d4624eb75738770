// What the program does where an output fails while it is written, or where it is interrupted: devices, pipes and signals of
// this kind of system provide that.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "tests/tools/program.h"
#include "tests/tools/shell.h"

namespace replay {
namespace {

using testing::Quoted;
using testing::RunApart;
using testing::RunProgram;
using testing::RunResult;
using testing::ScratchFolder;
using testing::ScriptPath;

const char* const kNoSpace = "/dev/full: No space left on device\n";

class FailingOutputTest : public ::testing::Test {
 protected:
  const std::string script_ = ScriptPath("overwrite_in_place.jsonl");
  ScratchFolder folder_;
};

TEST_F(FailingOutputTest, AFullDeviceIsNamed) {
  const RunResult run = RunProgram({script_, "--results", "/dev/full"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, kNoSpace);
  EXPECT_EQ(run.out, "");
}

TEST_F(FailingOutputTest, NoOutputIsLeftWhenAnotherFails) {
  const RunResult run = RunProgram({script_, "--events", folder_.Path("events"), "--results", "/dev/full"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, kNoSpace);
  EXPECT_EQ(folder_.Size(), 0U);
}

TEST_F(FailingOutputTest, AFullStandardOutputIsNamed) {
  const RunResult run = RunApart("{ " + Quoted(ZTREPLAY_PROGRAM) + " " + Quoted(script_) + " > /dev/full; }");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "standard output: No space left on device\n");
}

TEST_F(FailingOutputTest, AReaderThatGoesAwayIsAFailedOutput) {
  std::string events;
  for (int line = 0; line < 6000; ++line) {  // Far more results than a pipe holds.
    events += "{\"time\":" + std::to_string(line) + R"(,"pid":1,"behavior":"BehaviorModuleLoad","target":"C:\\a.dll"})" + "\n";
  }
  const std::string capture = folder_.Write("long.jsonl", events);
  const RunResult run =
      RunApart("{ { " + Quoted(ZTREPLAY_PROGRAM) + " " + Quoted(capture) + " --results - --events " +
               Quoted(folder_.Path("events")) + "; echo $? > " + Quoted(folder_.Path("status")) + "; } | true; }");
  EXPECT_EQ(folder_.Read("status"), "2\n");
  EXPECT_EQ(run.err, "standard output: Broken pipe\n");
  EXPECT_FALSE(folder_.Has("events"));
}

TEST(InterruptedTest, LeavesNoFileBehind) {
  const ScratchFolder folder;
  const std::string script = ScriptPath("overwrite_in_place.jsonl");
  const std::string events = folder.Path("events");
  // Pipes with names: opening one for writing waits for whoever reads it. The second is never read, so no run gets past it.
  const std::string explain = folder.Path("explain");
  const std::string list = folder.Path("list");
  ASSERT_EQ(mkfifo(explain.c_str(), S_IRUSR | S_IWUSR), 0);
  ASSERT_EQ(mkfifo(list.c_str(), S_IRUSR | S_IWUSR), 0);
  const pid_t child = fork();
  if (child == 0) {
    execl(ZTREPLAY_PROGRAM, ZTREPLAY_PROGRAM, script.c_str(), "--events", events.c_str(), "--explain", explain.c_str(),
          "--restore-list", list.c_str(), nullptr);
    _exit(127);
  }
  const int reader = open(explain.c_str(), O_RDONLY | O_CLOEXEC);
  EXPECT_EQ(folder.Size(), 3U);  // The pipes, and the events under their other name.
  EXPECT_EQ(kill(child, SIGINT), 0);
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
  EXPECT_EQ(folder.Size(), 2U);
  close(reader);
}

}  // namespace
}  // namespace replay
