// All benchmarks at a tiny size: none fails, and what they feed to the engine has the results that it has to have.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

namespace zt::testing {
namespace {

/// What the benchmarks report, by "name:counter".
class TinyRunTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    const std::filesystem::path output = std::filesystem::path(::testing::TempDir()) / "zt-bench-tiny.json";
    const std::string command = "ZT_BENCH_TINY=1 '" ZT_BENCH_PATH "' --benchmark_min_time=0.001 --benchmark_out_format=json " +
                                ("'--benchmark_out=" + output.string() + "' >/dev/null 2>&1");
    status_ = std::system(command.c_str());
    std::ifstream file(output);
    const nlohmann::json report = nlohmann::json::parse(file, nullptr, false);
    if (!report.is_object()) {
      return;
    }
    for (const nlohmann::json& run : report["benchmarks"]) {
      const std::string name = run["name"];
      errors_ += run.value("error_occurred", false) ? name + ": " + run.value("error_message", "") + "\n" : "";
      for (const auto& [key, value] : run.items()) {
        if (value.is_number()) {
          figures_[name.substr(0, name.find("/iterations:")) + ":" + key] = value.get<double>();
        }
      }
    }
    std::filesystem::remove(output);
  }

  static double Figure(const std::string& name) {
    const auto found = figures_.find(name);
    EXPECT_NE(found, figures_.end()) << name;
    return found == figures_.end() ? -1 : found->second;
  }

  static inline int status_ = -1;
  static inline std::string errors_;
  static inline std::map<std::string, double> figures_;
};

// The program fails where a target is left without its figure.
TEST_F(TinyRunTest, EveryBenchmarkRunsAndEveryTargetHasItsFigure) {
  EXPECT_EQ(status_, 0);
  EXPECT_EQ(errors_, "");
}

// Twenty files a batch, of which each is new to the event.
TEST_F(TinyRunTest, OnlyAnOverwriteOfAFileThatWasReadIsCharged) {
  for (const std::string files : {"1000", "100000", "1000000"}) {
    EXPECT_EQ(Figure("Event/write/" + files + ":penalties"), 20);
    for (const std::string kind : {"read", "write_unknown", "write_copy", "create", "delete", "rename", "move"}) {
      EXPECT_EQ(Figure("Event/" + kind + "/" + files + ":penalties"), 0) << kind;
    }
  }
}

// Of 100 files: those that were read are kept and need no restore; those that were overwritten do.
TEST_F(TinyRunTest, TheCallsThatLookAtEverythingFindWhatIsThere) {
  EXPECT_EQ(Figure("FinalStateOfFiles/1000:to_restore"), 100);
  EXPECT_EQ(Figure("FinalStateOfFamily/1000:to_restore"), 0);
  EXPECT_EQ(Figure("ResetScoreKeepsFiles/1000:to_restore"), 0);
  EXPECT_EQ(Figure("ResetScoreForgetsFiles/1000:to_restore"), 0);
}

// Their parent's score doubles with each of 80 documents and is bounded.
TEST_F(TinyRunTest, TheOfficeReachesTheHighestScore) {
  EXPECT_EQ(Figure("OfficeInTurn:highest_score"), 2147483647);
  EXPECT_EQ(Figure("OfficeTogether:highest_score"), 2147483647);
  EXPECT_EQ(Figure("FloorInTurn:highest_score"), 0);
  // 1 for the parent, and for each of 4 programs a start, an end and 4 events for each of 20 documents.
  EXPECT_EQ(Figure("ReplayOffice:events"), 329);
}

TEST_F(TinyRunTest, HostileShapesHaveTheirSizes) {
  EXPECT_EQ(Figure("Hostile/one_stem:files"), 300);
  EXPECT_EQ(Figure("Hostile/one_letter_and_mark:files"), 240);
  EXPECT_EQ(Figure("Hostile/keys_without_folder:files"), 500);
  EXPECT_GT(Figure("Traced/one_stem:to_walk"), 0);
}

// "[time] [pid:tid] [zteng 12 info] line 7 of pid 42 is C:\Users\somebody\document.docx" and its end.
TEST_F(TinyRunTest, TraceLinesAreWritten) {
  EXPECT_GT(Figure("TraceToFile:bytes_per_line"), 80);
  EXPECT_LT(Figure("TraceToFile:bytes_per_line"), 160);
  EXPECT_GT(Figure("AsyncLogger:bytes_per_line"), 80);
}

TEST_F(TinyRunTest, AFileCostsMoreThanItsPath) {
  EXPECT_GT(Figure("Memory:file_asked"), 2 * 60);
  EXPECT_GE(Figure("Memory:file_given"), Figure("Memory:file_asked"));
}

}  // namespace
}  // namespace zt::testing
