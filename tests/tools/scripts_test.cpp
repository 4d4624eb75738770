// The event scripts of tests/scripts through the program: tests/scripts/README.md tells why their results are what they are.

#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
#include <set>
#include <string>

#include "tests/tools/program.h"

namespace replay {
namespace {

using testing::RunProgram;
using testing::RunResult;
using testing::ScratchFolder;
using testing::ScriptPath;

struct Script {
  const char* name;
  int status;  ///< With the alarm at 64.
  friend std::ostream& operator<<(std::ostream& out, const Script& script) { return out << script.name; }
};

constexpr Script kScripts[] = {{"delete_then_write_similar", 1},
                               {"empty_engine", 0},
                               {"family_queries", 0},
                               {"ignored_process", 0},
                               {"images_are_not_restored", 0},
                               {"learned_extension", 0},
                               {"module_loads", 0},
                               {"moved_into_one_folder", 0},
                               {"overwrite_in_place", 0},
                               {"parents_are_charged", 0},
                               {"process_id_is_reused", 0},
                               {"score_reset", 0},
                               {"scores_wrap_and_clamp", 1},
                               {"section_sync_and_rename", 0},
                               {"write_similar_then_delete", 1}};

class ScriptTest : public ::testing::TestWithParam<Script> {
 protected:
  static std::string Input() { return ScriptPath(std::string(GetParam().name) + ".jsonl"); }
  static std::string Expected() {
    return ScratchFolder::ReadFile(ScriptPath(std::string(GetParam().name) + ".expected.jsonl"));
  }

  ScratchFolder folder_;
};

TEST_P(ScriptTest, GivesTheExpectedResults) {
  const RunResult run = RunProgram({Input(), "--results", folder_.Path("results")});
  EXPECT_EQ(run.status, GetParam().status);
  EXPECT_EQ(run.err, "");
  ASSERT_NE(Expected(), "");
  EXPECT_EQ(folder_.Read("results"), Expected());
}

TEST_P(ScriptTest, GivesTheSameThroughStandardStreams) {
  const RunResult run = RunProgram({"-", "--results", "-"}, Input());
  EXPECT_EQ(run.status, GetParam().status);
  EXPECT_EQ(run.out, Expected());
  EXPECT_NE(run.err.find("\nstandard input: "), std::string::npos) << run.err;
}

TEST_P(ScriptTest, ItsEventsReplayToTheSameResults) {
  EXPECT_EQ(RunProgram({Input(), "--events", folder_.Path("events")}).status, GetParam().status);
  const RunResult again = RunProgram({folder_.Path("events"), "--results", folder_.Path("results")});
  EXPECT_EQ(again.status, GetParam().status);
  EXPECT_EQ(folder_.Read("results"), Expected());
}

INSTANTIATE_TEST_SUITE_P(All, ScriptTest, ::testing::ValuesIn(kScripts), [](const auto& test) { return test.param.name; });

TEST(Scripts, AreAllTested) {
  std::set<std::string> expected;
  for (const Script& script : kScripts) {
    expected.insert(std::string(script.name) + ".jsonl");
    expected.insert(std::string(script.name) + ".expected.jsonl");
  }
  std::set<std::string> found;
  for (const auto& entry : std::filesystem::directory_iterator(ZT_SCRIPTS)) {
    if (entry.path().extension() == ".jsonl") {
      found.insert(entry.path().filename().string());
    }
  }
  EXPECT_EQ(found, expected);
}

}  // namespace
}  // namespace replay
