// The similar-file search of the engine, which looks entries up, and that of the model, which walks over all of them, get the
// same folders and targets: a million searches a run. Result, learned difference and, for some of the folders, trace have to
// agree.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "engine/similar_file.h"
#include "tests/model/model_similar.h"
#include "tests/support/trace_capture.h"
#include "trace/trace.h"

namespace zt::model {
namespace {

using zt::testing::TraceCapture;
using zt::testing::TraceLine;

constexpr std::size_t kFoldersOfABlock = 5000;
constexpr std::size_t kSearchesOfAFolder = 25;

// Short, so that stems are shared, stand in each other, are empty or hold dots; with units that sort before and behind the dot
// and the backslash, and the first and last units there are.
constexpr std::array<std::wstring_view, 7> kAlphabets = {
    L"ab.", L"ab.-\\", L"abc.\\", L"a.", L"a-\\. ", L"xyzabc.-/\\", std::wstring_view(L"a.\x1\xffff\\", 5)};

/// Random keys and targets over one alphabet.
class Names {
 public:
  explicit Names(std::uint32_t seed) : random_(seed), alphabet_(kAlphabets[Below(kAlphabets.size())]) {}

  std::size_t Below(std::size_t bound) { return random_() % bound; }

  std::wstring Text(std::size_t longest) {
    std::wstring text(Below(longest + 1), L' ');
    for (wchar_t& unit : text) {
      unit = alphabet_[Below(alphabet_.size())];
    }
    return text;
  }

  std::wstring Path(std::size_t longest_name) {
    switch (Below(6)) {
      case 0:
        return Text(longest_name);  // Often without a backslash.
      case 1:
        return L"c:\\" + Text(longest_name);
      case 2:
        return L"c:\\d\\e\\" + Text(longest_name);
      case 3:
        return Text(4) + L"\\" + Text(longest_name);
      default:
        return L"c:\\d\\" + Text(longest_name);
    }
  }

  /// A new path, or a known one with something put into it.
  std::wstring Target(const std::vector<std::wstring>& known) {
    if (known.empty() || Below(3) != 0) {
      return Path(9);
    }
    std::wstring target = known[Below(known.size())];
    target.insert(Below(target.size() + 1), Text(3));
    return Below(2) == 0 ? target : target + Text(3);
  }

 private:
  std::mt19937 random_;
  std::wstring_view alphabet_;
};

/// What one search shows: the key found, or nothing, and the difference known afterwards.
struct Outcome {
  bool found = false;
  std::wstring key;
  std::wstring name_diff;

  friend bool operator==(const Outcome&, const Outcome&) = default;
};

std::string Shown(const std::wstring& text) { return Utf8(text); }

std::string Shown(const std::vector<std::wstring>& keys) {
  std::string text;
  for (const std::wstring& key : keys) {
    text += "\n  \"" + Shown(key) + "\"";
  }
  return text;
}

bool SameLines(const std::vector<TraceLine>& engine, const std::vector<ModelLine>& model) {
  return std::equal(engine.begin(), engine.end(), model.begin(), model.end(), [](const TraceLine& a, const ModelLine& b) {
    return a.line == b.line && a.level == b.level && a.message == b.message;
  });
}

/// How the engine searches.
struct Way {
  std::uint32_t block = 0;  ///< Which folders.
  bool indexed = false;     ///< With the index of a process's files, as for an event, or by the map alone, as for the export.
};

class SearchSideBySideTest : public ::testing::TestWithParam<Way> {
 protected:
  /// Searches one random folder; `capture` catches the engine's lines, or is null.
  void SearchFolder(std::uint32_t seed, TraceCapture* capture) {
    Names names(seed);
    ZT_PID_ITEM process;
    ZtFileIndex* const index = GetParam().indexed ? &process.FileIndex : nullptr;
    FileMap files;
    std::vector<std::wstring> keys;
    // One in eight has so many that the index has inner nodes.
    for (std::size_t count = names.Below(names.Below(8) == 0 ? 200 : 40); count > 0; --count) {
      keys.push_back(names.Path(6));
      process.files.try_emplace(keys.back());
      files.try_emplace(keys.back());
    }
    std::wstring name_diff;
    ModelTrace trace(capture == nullptr ? 0 : kTraceDebug);
    for (std::size_t search = 0; search < kSearchesOfAFolder; ++search) {
      const std::wstring target = names.Target(keys);
      const auto found = zt::SearchSimilarFile(process.NameDiff, process.files, index, target);
      const auto expected = SearchSimilarFile(name_diff, files, target, trace);
      const Outcome engine = {found != process.files.end(), found == process.files.end() ? L"" : found->first,
                              process.NameDiff};
      const Outcome model = {expected != files.end(), expected == files.end() ? L"" : expected->first, name_diff};
      ASSERT_EQ(engine, model) << "seed " << seed << ", target \"" << Shown(target) << "\", engine found \""
                               << Shown(engine.key) << "\", model \"" << Shown(model.key) << "\", among" << Shown(keys);
      if (capture != nullptr) {
        ASSERT_TRUE(SameLines(capture->Take(), trace.Take())) << "seed " << seed << ", target \"" << Shown(target) << "\"";
      }
    }
  }
};

TEST_P(SearchSideBySideTest, LookingUpAndWalkingFindTheSame) {
  for (std::uint32_t folder = 0; folder < kFoldersOfABlock && !HasFatalFailure(); ++folder) {
    SearchFolder(GetParam().block * 1000000 + folder, nullptr);
  }
}

TEST_P(SearchSideBySideTest, LookingUpAndWalkingTraceTheSame) {
  TraceCapture capture(kTraceDebug);
  for (std::uint32_t folder = 0; folder < kFoldersOfABlock / 20 && !HasFatalFailure(); ++folder) {
    SearchFolder(GetParam().block * 1000000 + 500000 + folder, &capture);
  }
}

/// `count` ways from `first` on.
std::vector<Way> Blocks(std::uint32_t first, std::uint32_t count, bool indexed) {
  std::vector<Way> ways;
  for (std::uint32_t block = first; block < first + count; ++block) {
    ways.push_back({block, indexed});
  }
  return ways;
}

// Eight blocks of 5,000 folders with 25 searches each are the million.
INSTANTIATE_TEST_SUITE_P(Indexed, SearchSideBySideTest, ::testing::ValuesIn(Blocks(0, 8, true)));
INSTANTIATE_TEST_SUITE_P(MapAlone, SearchSideBySideTest, ::testing::ValuesIn(Blocks(8, 2, false)));

}  // namespace
}  // namespace zt::model
