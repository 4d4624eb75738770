#include "trace/line_prefix.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/trace/trace_test.h"
#include "trace/trace.h"

namespace zt::testing {
namespace {

constexpr std::uint64_t kNoIds = kTraceNoPid | kTraceNoTid;
constexpr std::uint64_t kNoTags = kTraceNoModule | kTraceNoLocation | kTraceNoLevel;
constexpr std::uint64_t kTagsOnly = kTraceNoTime | kNoIds;

std::string Prefix(std::uint64_t flags, const LineTags& tags, const TraceEnvironment& environment = kFakeEnvironment) {
  std::array<char, kPrefixCapacity> buffer;
  BoundedText out(buffer.data(), buffer.size());
  AppendLinePrefix(out, flags, environment, tags);
  return std::string(out.view());
}

TEST(LinePrefixTest, AllBlocks) {
  EXPECT_EQ(Prefix(0, {"zteng", "649", "debug"}), "[2025-07-15 09:24:23.1234567] [1234:5678] [zteng 649 debug] ");
}

TEST(LinePrefixTest, NoBlocks) { EXPECT_EQ(Prefix(kTraceBare, {"zteng", "649", "debug"}), ""); }

// ---- time

TEST(LinePrefixTest, TimeFieldsAreZeroFilled) {
  TraceEnvironment environment = kFakeEnvironment;
  environment.file_time_now = [] { return kUnixEpochAsFileTime + 5 * kFileTimePerSecond + 7; };
  environment.to_local_time = [](std::int64_t seconds) { return LocalTime{987, 1, 2, 3, 4, static_cast<int>(seconds)}; };
  EXPECT_EQ(Prefix(kNoIds, {"m", "", ""}, environment), "[0987-01-02 03:04:05.0000007] [m] ");
}

TEST(LinePrefixTest, FractionGoesUpToTheLastUnitOfASecond) {
  TraceEnvironment environment = kFakeEnvironment;
  environment.file_time_now = [] { return kUnixEpochAsFileTime + 9999999; };
  environment.to_local_time = [](std::int64_t seconds) { return LocalTime{1970, 1, 1, 0, 0, static_cast<int>(seconds)}; };
  EXPECT_EQ(Prefix(kNoIds, {"m", "", ""}, environment), "[1970-01-01 00:00:00.9999999] [m] ");
}

TEST(LinePrefixTest, TimeIsNotReadWhenItIsLeftOut) {
  FakeSystemLog() = {};
  EXPECT_EQ(Prefix(kTraceNoTime, {"m", "", ""}), "[1234:5678] [m] ");
  EXPECT_EQ(FakeSystemLog().time_reads, 0);
}

// ---- ids

TEST(LinePrefixTest, IdBlock) {
  EXPECT_EQ(Prefix(kTraceNoTime, {"m", "", ""}), "[1234:5678] [m] ");
  EXPECT_EQ(Prefix(kTraceNoTime | kTraceNoPid, {"m", "", ""}), "[:5678] [m] ");
  EXPECT_EQ(Prefix(kTraceNoTime | kTraceNoTid, {"m", "", ""}), "[1234:] [m] ");
  EXPECT_EQ(Prefix(kTraceNoTime | kNoIds, {"m", "", ""}), "[m] ");
}

TEST(LinePrefixTest, IdsAreUnsigned) {
  TraceEnvironment environment = kFakeEnvironment;
  environment.process_id = [] { return std::uint32_t{4294967295}; };
  environment.thread_id = [] { return std::uint32_t{0}; };
  EXPECT_EQ(Prefix(kTraceNoTime, {"m", "", ""}, environment), "[4294967295:0] [m] ");
}

// ---- tags: all words by all flags

struct TagCase {
  std::uint64_t flags;  // Beside kTagsOnly.
  LineTags tags;
  const char* expected;
};

TEST(LinePrefixTest, TagBlockByFlags) {
  constexpr LineTags kAll = {"zteng", "649", "debug"};
  const TagCase cases[] = {
      {0, kAll, "[zteng 649 debug] "},
      {kTraceNoModule, kAll, "[649 debug] "},
      {kTraceNoLocation, kAll, "[zteng debug] "},
      {kTraceNoLevel, kAll, "[zteng 649] "},
      {kTraceNoModule | kTraceNoLocation, kAll, "[debug] "},
      {kTraceNoModule | kTraceNoLevel, kAll, "[649] "},
      {kTraceNoLocation | kTraceNoLevel, kAll, "[zteng] "},
      {kNoTags, kAll, "] "},
  };
  for (const TagCase& tag_case : cases) {
    EXPECT_EQ(Prefix(kTagsOnly | tag_case.flags, tag_case.tags), tag_case.expected) << std::hex << tag_case.flags;
  }
}

TEST(LinePrefixTest, TagBlockByEmptyWords) {
  const TagCase cases[] = {
      {0, {"zteng", "649", ""}, "[zteng 649] "},
      {0, {"zteng", "", "debug"}, "[zteng debug] "},
      {0, {"", "649", "debug"}, "[649 debug] "},
      {0, {"zteng", "", ""}, "[zteng] "},
      {0, {"", "649", ""}, "[649] "},
      {0, {"", "", "debug"}, "[debug] "},
      {0, {"", "", ""}, "] "},
  };
  for (const TagCase& tag_case : cases) {
    EXPECT_EQ(Prefix(kTagsOnly, tag_case.tags), tag_case.expected);
  }
}

// With the location left out, the block closes when there is a module name or a level word at all, be they left out too.
TEST(LinePrefixTest, TagBlockWithNothingToSayStaysOpen) {
  EXPECT_EQ(Prefix(kTagsOnly | kTraceNoLocation, {"", "649", ""}), "[");
  EXPECT_EQ(Prefix(kTagsOnly | kNoTags, {"", "649", ""}), "[");
  EXPECT_EQ(Prefix(kTagsOnly | kNoTags, {"zteng", "649", ""}), "] ");
  EXPECT_EQ(Prefix(kTagsOnly | kNoTags, {"", "649", "debug"}), "] ");
}

TEST(LinePrefixTest, TagBlockIsLeftOutOnlyWithAllEightBits) {
  EXPECT_EQ(Prefix(kTraceBare & ~kTraceNoColor, {"zteng", "649", "debug"}), "] ");
  EXPECT_EQ(Prefix(kTraceBare & ~0x800000ull, {"zteng", "649", "debug"}), "] ");
}

// ---- cut words

TEST(LinePrefixTest, LongLocationsAreCut) {
  const std::string text = "0123456789012345678901234567890123456789012345678901234567890123456789";  // 70 characters
  EXPECT_EQ(Prefix(kTagsOnly, {"", text, ""}), "[" + text.substr(0, 61) + "...] ");
  EXPECT_EQ(Prefix(kTagsOnly, {"", text.substr(0, 65), ""}), "[" + text.substr(0, 61) + "...] ");
  EXPECT_EQ(Prefix(kTagsOnly, {"", text.substr(0, 64), ""}), "[" + text.substr(0, 64) + "] ");
}

TEST(LinePrefixTest, LongLevelWordsAreCut) {
  EXPECT_EQ(Prefix(kTagsOnly, {"", "", "1234567890123456"}), "[1234567890123456] ");
  EXPECT_EQ(Prefix(kTagsOnly, {"", "", "12345678901234567"}), "[1234567890123456] ");
}

TEST(LinePrefixTest, LongModuleNamesAreCut) {
  const std::string name(40, 'm');
  EXPECT_EQ(Prefix(kTagsOnly, {name, "", ""}), "[" + std::string(32, 'm') + "] ");
}

TEST(LinePrefixTest, LongestPrefixFits) {
  TraceEnvironment environment = kFakeEnvironment;
  environment.process_id = [] { return std::uint32_t{4294967295}; };
  environment.thread_id = [] { return std::uint32_t{4294967295}; };
  const std::string word(100, 'w');
  EXPECT_EQ(Prefix(0, {word, word, word}, environment), "[2025-07-15 09:24:23.1234567] [4294967295:4294967295] [" +
                                                            std::string(32, 'w') + " " + std::string(61, 'w') + "... " +
                                                            std::string(16, 'w') + "] ");
}

}  // namespace
}  // namespace zt::testing
