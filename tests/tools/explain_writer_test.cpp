#include "tools/replay/explain_writer.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/tools/calls.h"

namespace replay {
namespace {

using Cause = zt::ScoreReport::Cause;
using Json = nlohmann::json;

constexpr ZtProcKey kParent = {10, 100};
constexpr ZtProcKey kChild = {11, 110};

bool LookUp(const ZtProcKey& key, zt::ProcessView& process) {
  process.image_path = key == kChild ? L"C:\\child.exe" : L"C:\\parent.exe";
  return true;
}

class ExplainWriterTest : public ::testing::Test {
 protected:
  /// The line written for `reports_`, null when there was none.
  Json Line() {
    testing::Sink sink;
    ExplainWriter(sink.Take()).Write(reports_, 12, 3000, LookUp);
    return sink.text.empty() ? Json() : Json::parse(sink.text);
  }

  CallReports reports_;
};

TEST_F(ExplainWriterTest, SaysNothingWithoutAPenalty) {
  reports_.steps.push_back({kChild, L"C:\\A", L"c:\\a", 1, 2, 0, false});
  reports_.scores.push_back({kChild, Cause::kModuleLoad, 1, 2, 0, {}});
  EXPECT_TRUE(Line().is_null());
}

TEST_F(ExplainWriterTest, TellsWhatHappenedToAFile) {
  reports_.steps.push_back({kChild, L"C:\\A", L"c:\\a", 2, 4, 2, false});
  reports_.scores.push_back({kChild, Cause::kPenalty, 3, 6, 2, L"c:\\a"});
  EXPECT_EQ(Line(), Json::parse(R"({"event":12,"time":3000,
      "process":{"pid":11,"start_time":110,"image":"C:\\child.exe","score_before":3,"score_after":6},
      "file":"c:\\a","factor":2,"in_parent":false,"stepped_file":"C:\\A",
      "state_before":{"number":2,"name":"ZT_READ_START"},"state_after":{"number":4,"name":"ZT_OVERWRITE"},
      "ancestors":[]})"));
}

TEST_F(ExplainWriterTest, NamesTheSimilarFileAndItsCopy) {
  reports_.matches.push_back({kChild, L"c:\\a.x", L"c:\\a"});
  reports_.steps.push_back({kChild, L"C:\\A", L"c:\\a.x|9", 6, 8, 6, true});
  reports_.scores.push_back({kChild, Cause::kPenalty, 1, 6, 6, L"c:\\a"});
  const Json line = Line();
  EXPECT_EQ(line["similar_file"], "c:\\a");
  EXPECT_EQ(line["copy"], "c:\\a.x");
}

TEST_F(ExplainWriterTest, ListsTheAncestorsCharged) {
  reports_.steps.push_back({kChild, L"C:\\A", L"c:\\a", 2, 4, 2, false});
  reports_.scores.push_back({kChild, Cause::kPenalty, 1, 2, 2, L"c:\\a"});
  reports_.scores.push_back({kParent, Cause::kParentPenalty, 5, 10, 2, L"c:\\a"});
  reports_.scores.push_back({{4, 40}, Cause::kParentPenalty, 1, 2, 2, L"c:\\a"});
  const Json ancestors = Line()["ancestors"];
  ASSERT_EQ(ancestors.size(), 2U);
  EXPECT_EQ(ancestors[0],
            Json::parse(R"({"pid":10,"start_time":100,"image":"C:\\parent.exe","score_before":5,"score_after":10})"));
  EXPECT_EQ(ancestors[1]["pid"], 4);
}

TEST_F(ExplainWriterTest, GivesTheScoreAfterItWasCutBack) {
  reports_.scores.push_back({kChild, Cause::kPenalty, 0x40000000, -0x7FFFFFFF - 1, 2, L"c:\\a"});
  reports_.scores.push_back({kParent, Cause::kParentPenalty, 1, 2, 2, L"c:\\a"});
  reports_.scores.push_back({kChild, Cause::kClamp, -0x7FFFFFFF - 1, 0x7FFFFFFF, 0, {}});
  EXPECT_EQ(Line()["process"]["score_after"], 0x7FFFFFFF);
}

TEST_F(ExplainWriterTest, ThePenaltyMayComeFromTheParentsFiles) {
  reports_.steps.push_back({kChild, L"C:\\A", L"c:\\a", 0, 1, 0, false});
  reports_.steps.push_back({kParent, L"C:\\A", L"c:\\a", 2, 4, 2, false});
  reports_.scores.push_back({kChild, Cause::kPenalty, 1, 2, 2, L"c:\\a"});
  const Json line = Line();
  EXPECT_EQ(line["in_parent"], true);
  EXPECT_EQ(line["state_after"]["number"], 4);
}

TEST_F(ExplainWriterTest, AStepOfTheProcessItselfComesFirst) {
  reports_.steps.push_back({kChild, L"C:\\A", L"c:\\a", 3, 4, 2, true});
  reports_.steps.push_back({kParent, L"C:\\B", L"c:\\a", 2, 4, 2, false});
  reports_.scores.push_back({kChild, Cause::kPenalty, 1, 2, 2, L"c:\\a"});
  const Json line = Line();
  EXPECT_EQ(line["in_parent"], false);
  EXPECT_EQ(line["state_before"]["number"], 3);
}

}  // namespace
}  // namespace replay
