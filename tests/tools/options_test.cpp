#include "tools/replay/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "tests/support/scratch_folder.h"

namespace replay {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;
using zt::testing::ScratchFolder;

std::variant<Options, Reply> Parse(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "ztreplay");
  return ParseOptions(static_cast<int>(arguments.size()), arguments.data());
}

Options Accepted(const std::vector<const char*>& arguments) {
  const auto parsed = Parse(arguments);
  if (const Reply* reply = std::get_if<Reply>(&parsed); reply != nullptr) {
    ADD_FAILURE() << reply->text;
    return {};
  }
  return std::get<Options>(parsed);
}

/// What is said of a wrong command line.
std::string Refused(const std::vector<const char*>& arguments) {
  const auto parsed = Parse(arguments);
  const Reply* reply = std::get_if<Reply>(&parsed);
  if (reply == nullptr) {
    return "accepted";
  }
  EXPECT_EQ(reply->status, ExitStatus::kFailure);
  return reply->text;
}

TEST(ParseOptions, HasDefaults) {
  const Options options = Accepted({"capture.jsonl"});
  EXPECT_EQ(options.capture, "capture.jsonl");
  EXPECT_FALSE(options.format);
  EXPECT_EQ(options.engine_id, 1U);
  EXPECT_EQ(options.alarm, 64);
  EXPECT_FALSE(options.reset);
  EXPECT_FALSE(options.results || options.restore_list || options.events || options.explain || options.json);
  EXPECT_FALSE(options.UsesStandardOutput());
}

TEST(ParseOptions, TakesEveryOption) {
  const Options options =
      Accepted({"--format",  "procmon",    "--results",     "r",      "--engine-id", "4294967295", "--restore-list", "l",
                "--alarm",   "2147483647", "--reset-every", "30",     "--score-age", "0.5",        "--events",       "e",
                "--explain", "x",          "--json",        "capture"});
  EXPECT_EQ(options.capture, "capture");
  EXPECT_EQ(options.format, CaptureFormat::kProcmon);
  EXPECT_EQ(options.results, "r");
  EXPECT_EQ(options.engine_id, 4294967295U);
  EXPECT_EQ(options.restore_list, "l");
  EXPECT_EQ(options.alarm, 2147483647);
  ASSERT_TRUE(options.reset);
  EXPECT_EQ(options.reset->interval_ticks, 300'000'000);
  EXPECT_EQ(options.reset->score_age_limit_ms, 500);
  EXPECT_EQ(options.events, "e");
  EXPECT_EQ(options.explain, "x");
  EXPECT_TRUE(options.json);
}

TEST(ParseOptions, KnowsTheFormats) {
  EXPECT_EQ(Accepted({"c", "--format", "jsonl"}).format, CaptureFormat::kJsonl);
  EXPECT_EQ(Accepted({"c", "--format", "records"}).format, CaptureFormat::kRecords);
  EXPECT_EQ(Accepted({"c", "--format", "sandbox"}).format, CaptureFormat::kSandbox);
  EXPECT_FALSE(Accepted({"c", "--format", "auto"}).format);
  EXPECT_THAT(Refused({"c", "--format", "pcap"}), HasSubstr("--format"));
}

TEST(ParseOptions, TakesPathsThatBeginWithASlash) {
  const Options options = Accepted({"/captures/run.jsonl", "--results", "/results"});
  EXPECT_EQ(options.capture, "/captures/run.jsonl");
  EXPECT_EQ(options.results, "/results");
}

TEST(ParseOptions, TakesStandardStreams) {
  const Options options = Accepted({"-", "--explain", "-"});
  EXPECT_EQ(options.capture, "-");
  EXPECT_EQ(options.explain, "-");
  EXPECT_TRUE(options.UsesStandardOutput());
}

TEST(ParseOptions, RefusesTwoOutputsOnStandardOutput) {
  EXPECT_THAT(Refused({"c", "--results", "-", "--explain", "-"}), StartsWith("ztreplay: --results and --explain cannot both"));
  EXPECT_THAT(Refused({"c", "--json", "--restore-list", "-"}), StartsWith("ztreplay: --restore-list and --json cannot both"));
}

TEST(ParseOptions, RefusesOutputsThatOverwriteEachOtherOrTheCapture) {
  const ScratchFolder folder;
  const std::string capture = folder.Write("capture", "");
  const std::string same = folder.Path("./capture");
  EXPECT_THAT(Refused({capture.c_str(), "--events", same.c_str()}),
              StartsWith("ztreplay: --events would overwrite the capture"));
  const std::string one = folder.Path("out");
  const std::string other = folder.Path("./out");
  EXPECT_THAT(Refused({"c", "--results", one.c_str(), "--events", other.c_str()}),
              StartsWith("ztreplay: --results and --events name the same file"));
}

TEST(ParseOptions, RefusesBadUse) {
  for (const std::vector<const char*>& arguments :
       std::vector<std::vector<const char*>>{{},
                                             {"c", "d"},
                                             {"c", "--unknown"},
                                             {"c", "--alarm", "1"},
                                             {"c", "--alarm", "2147483648"},
                                             {"c", "--alarm", "many"},
                                             {"c", "--engine-id", "-1"},
                                             {"c", "--engine-id", "4294967296"},
                                             {"c", "--results"},
                                             {"c", "--results", ""},
                                             {"c", "--reset-every", "5"},
                                             {"c", "--score-age", "5"},
                                             {"c", "--reset-every", "0", "--score-age", "5"},
                                             {"c", "--reset-every", "nan", "--score-age", "5"},
                                             {"c", "--reset-every", "5", "--score-age", "-1"},
                                             {"c", "--reset-every", "1e18", "--score-age", "5"}}) {
    EXPECT_THAT(Refused(arguments), StartsWith("ztreplay: ")) << ::testing::PrintToString(arguments);
  }
}

TEST(ParseOptions, ShowsNothingOfTheCommandLineThatSteersATerminal) {
  EXPECT_EQ(Refused({"c", "d\x1B[31m\xE2\x80\xAE\n"}),
            "ztreplay: The following argument was not expected: d\xEF\xBF\xBD[31m\xEF\xBF\xBD\xEF\xBF\xBD\n"
            "ztreplay --help tells more.\n");
  for (const std::vector<const char*>& arguments : std::vector<std::vector<const char*>>{
           {"c", "--format", "\x1B[31m"}, {"c", "--alarm", "\x1B[31m"}, {"c", "--\x1B[31m"}}) {
    EXPECT_THAT(Refused(arguments), ::testing::Not(HasSubstr("\x1B"))) << ::testing::PrintToString(arguments);
  }
}

TEST(ParseOptions, AnswersHelpAndVersion) {
  const auto help = Parse({"--help"});
  ASSERT_TRUE(std::holds_alternative<Reply>(help));
  EXPECT_EQ(std::get<Reply>(help).status, ExitStatus::kQuiet);
  for (const char* option : {"CAPTURE", "--format", "--results", "--engine-id", "--restore-list", "--json", "--help",
                             "--version", "--alarm", "--reset-every", "--score-age", "--events", "--explain", "Exit status"}) {
    EXPECT_THAT(std::get<Reply>(help).text, HasSubstr(option));
  }
  const auto version = Parse({"--version"});
  ASSERT_TRUE(std::holds_alternative<Reply>(version));
  EXPECT_EQ(std::get<Reply>(version).status, ExitStatus::kQuiet);
  EXPECT_EQ(std::get<Reply>(version).text, "ztreplay " ZTREPLAY_VERSION "\n");
}

}  // namespace
}  // namespace replay
