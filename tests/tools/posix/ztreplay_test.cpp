// What the program does where an output fails while it is written: devices and pipes of this kind of system provide that.

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace replay
