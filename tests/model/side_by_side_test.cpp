// The engine and the model get the same calls and have to give the same results and the same trace.
//
// Every engine has its own seed and its own 1,000 random calls. The environment makes a longer or another run:
//
//   ZT_MODEL_EVENTS  calls in all, a multiple of 1000 (default 200000)
//   ZT_MODEL_SEED    seed of the first engine; the others count up from it (default 1)
//
// A mismatch names the seed of its engine: ZT_MODEL_SEED=<seed> ZT_MODEL_EVENTS=1000 runs that engine alone.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/model/model_engine.h"
#include "tests/model/play_call.h"
#include "tests/model/random_events.h"
#include "tests/support/trace_capture.h"
#include "zteng/zteng.h"

namespace zt::model {
namespace {

using zt::testing::TraceCapture;
using zt::testing::TraceLine;

constexpr std::uint64_t kCallsOfAnEngine = 1000;
constexpr std::uint64_t kBlocks = 8;  ///< Tests that share the engines.
constexpr std::uint32_t kEngineId = 0xFEDCBA98;

std::uint64_t FromEnvironment(const char* name, std::uint64_t otherwise) {
  const char* text = std::getenv(name);
  if (text == nullptr) {
    return otherwise;
  }
  const std::string value = text;
  if (value.empty() || value.size() > 18 ||
      !std::all_of(value.begin(), value.end(), [](unsigned char c) { return std::isdigit(c); })) {
    throw std::invalid_argument(std::string(name) + " is not a number: " + value);
  }
  return std::stoull(value);
}

// A process id goes through the exports as a pointer; nothing is ever read through it.
void* Handle(std::uint64_t pid) {
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(pid));  // NOLINT(performance-no-int-to-ptr)
}
std::uint64_t FromHandle(const void* pid) { return reinterpret_cast<std::uintptr_t>(pid); }

/// Makes the call to the engine.
Outcome Play(std::shared_ptr<void>& engine, Call call) {
  Outcome outcome;
  switch (call.kind) {
    case Call::Kind::kInsertLog:
      outcome.result = ZtInsertLog(engine, &call.log);
      break;
    case Call::Kind::kCalculateSingleLineScore:
      outcome.result = ZtCalculateSingleLineScore(engine, &call.log, call.value);
      break;
    case Call::Kind::kUpdateScore:
      ZtUpdateScore(engine, Handle(call.pid), call.value);
      break;
    case Call::Kind::kResetScore:
      ZtResetScore(engine, call.now, call.score_age_limit);
      break;
    case Call::Kind::kGetPids:
      for (const void* pid : ZtGetProcTree(engine, Handle(call.pid))) {
        outcome.pids.push_back(FromHandle(pid));
      }
      break;
    case Call::Kind::kGetImages: {
      std::map<void*, std::wstring> images;
      for (const auto& [pid, image] : outcome.images) {
        images[Handle(pid)] = image;
      }
      ZtGetProcTree(engine, Handle(call.pid), images);
      for (const auto& [pid, image] : images) {
        outcome.images[FromHandle(pid)] = image;
      }
      break;
    }
    case Call::Kind::kGetFinalState:
      outcome.result = ZtGetFinalStateFileByPid(engine, Handle(call.pid), outcome.files, outcome.paths);
      break;
  }
  return outcome;
}

/// The elapsed time of a call differs from run to run.
std::string WithoutTime(const std::string& message) {
  constexpr std::string_view kBefore = "Time past: ";
  constexpr std::string_view kAfter = " nanoseconds";
  if (!message.starts_with(kBefore) || !message.ends_with(kAfter) || message.size() <= kBefore.size() + kAfter.size()) {
    return message;
  }
  const std::string number = message.substr(kBefore.size(), message.size() - kBefore.size() - kAfter.size());
  const bool is_number = std::all_of(number.begin(), number.end(), [](unsigned char c) { return std::isdigit(c); });
  return is_number ? std::string(kBefore) + std::string(kAnyNumber) + std::string(kAfter) : message;
}

bool SameLine(const TraceLine& line, const ModelLine& model) {
  return line.level == model.level && (model.line == 0 || line.line == model.line) &&
         (line.message == model.message || WithoutTime(line.message) == model.message);
}

/// The first line in which both differ, with a few before it; empty when they agree.
std::string Difference(const std::vector<TraceLine>& lines, const std::vector<ModelLine>& model_lines) {
  std::size_t i = 0;
  while (i < lines.size() && i < model_lines.size() && SameLine(lines[i], model_lines[i])) {
    ++i;
  }
  if (i == lines.size() && i == model_lines.size()) {
    return "";
  }
  std::ostringstream text;
  text << "trace differs in line " << i << " of " << lines.size() << " (engine) and " << model_lines.size() << " (model)\n";
  for (std::size_t before = i < 6 ? 0 : i - 6; before < i; ++before) {
    text << "  both:   " << lines[before] << "\n";
  }
  for (std::size_t at = i; at < i + 3 && at < lines.size(); ++at) {
    text << "  engine: " << lines[at] << "\n";
  }
  for (std::size_t at = i; at < i + 3 && at < model_lines.size(); ++at) {
    text << "  model:  [" << model_lines[at].line << " " << model_lines[at].level << "] " << model_lines[at].message << "\n";
  }
  return text.str();
}

/// Both engines, started with the same flags.
class SideBySide {
 public:
  SideBySide(std::uint64_t seed, std::uint64_t flags, RandomEvents::Life life = RandomEvents::Life::kShort)
      : capture_(flags), events_(seed, life), model_(kEngineId, flags) {
    ZtInitEngineCore(engine_, kEngineId);
  }
  ~SideBySide() { ZtCleanupEngineCore(engine_); }
  SideBySide(const SideBySide&) = delete;
  SideBySide& operator=(const SideBySide&) = delete;

  /// Plays this many calls. Returns a description of the first difference, or nothing.
  std::string Run(std::uint64_t calls) {
    std::string difference = Difference(capture_.Take(), model_.trace().Take());
    for (std::uint64_t i = 0; i < calls && difference.empty(); ++i) {
      difference = Compare(events_.Next());
      if (i % (calls / 4) == calls / 4 - 1 && difference.empty()) {
        difference = CompareQueries({Call::Kind::kGetFinalState});
      }
      if (i % 1000 == 0) {
        most_files_ = std::max(most_files_, model_.CountFiles());
      }
    }
    const std::vector<Call::Kind> all = {Call::Kind::kGetFinalState, Call::Kind::kGetPids, Call::Kind::kGetImages};
    if (difference.empty()) {
      difference = CompareQueries(all);
    }
    return difference;
  }

  /// The most file records that there were at one time, looked at every 1,000 calls.
  [[nodiscard]] std::size_t most_files() const { return most_files_; }

 private:
  std::string Compare(const Call& call) {
    ++calls_;
    const Outcome outcome = Play(engine_, call);
    const Outcome expected = zt::model::Play(model_, call);
    const std::string difference = Difference(capture_.Take(), model_.trace().Take());
    if (outcome == expected && difference.empty()) {
      return "";
    }
    std::ostringstream text;
    text << "call " << calls_ << ": " << Describe(call) << "\nengine: " << outcome << "\nmodel:  " << expected << "\n"
         << difference;
    return text.str();
  }

  /// Asks both about every process id so far.
  std::string CompareQueries(const std::vector<Call::Kind>& kinds) {
    for (const std::uint64_t pid : events_.pids()) {
      for (const Call::Kind kind : kinds) {
        Call call;
        call.kind = kind;
        call.pid = pid;
        std::string difference = Compare(call);
        if (!difference.empty()) {
          return difference;
        }
      }
    }
    return "";
  }

  TraceCapture capture_;
  RandomEvents events_;
  ModelEngine model_;
  std::shared_ptr<void> engine_;
  std::uint64_t calls_ = 0;
  std::size_t most_files_ = 0;
};

/// Mostly everything is traced; for some engines nothing is, or one kind of line alone.
std::uint64_t FlagsOfEngine(std::uint64_t number) {
  constexpr std::uint64_t kFlags[] = {0x7, 0x7, 0x7, 0x0, 0x7, 0x7, 0x0, 0x1, 0x2, 0x4};
  return kFlags[number % std::size(kFlags)];
}

class SideBySideTest : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(SideBySideTest, EngineAndModelGiveTheSameResultsAndTrace) {
  const std::uint64_t engines = FromEnvironment("ZT_MODEL_EVENTS", 200 * kCallsOfAnEngine) / kCallsOfAnEngine;
  const std::uint64_t first_seed = FromEnvironment("ZT_MODEL_SEED", 1);
  for (std::uint64_t i = GetParam(); i < engines; i += kBlocks) {
    const std::uint64_t seed = first_seed + i;
    // By the seed, so that one seed alone is traced as it was among many.
    const std::uint64_t flags = FlagsOfEngine(seed / kBlocks);
    SideBySide both(seed, flags);
    const std::string difference = both.Run(kCallsOfAnEngine);
    if (!difference.empty()) {
      FAIL() << "seed " << seed << ", trace flags " << flags << ", " << difference;
    }
  }
}

// One engine that fills: 120,000 calls lead to more than 20,000 tracked files. Untraced, as the model's search walks all of
// them.
class LongHistoryTest : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(LongHistoryTest, EngineAndModelGiveTheSameResults) {
  constexpr std::uint64_t kCalls = 120000;
  SideBySide both(GetParam(), 0, RandomEvents::Life::kLong);
  const std::string difference = both.Run(kCalls);
  EXPECT_EQ(difference, "") << "seed " << GetParam();
  EXPECT_GT(both.most_files(), 20000U);  // All of them at one time.
}

INSTANTIATE_TEST_SUITE_P(Seeds, LongHistoryTest, ::testing::Values(1, 2));

INSTANTIATE_TEST_SUITE_P(Blocks, SideBySideTest, ::testing::Range<std::uint64_t>(0, kBlocks));

}  // namespace
}  // namespace zt::model
