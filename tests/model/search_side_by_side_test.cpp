// The similar-file search of the engine, which asks the table of a process's files, that of the export, which walks the host's
// map, and that of the model get the same folders and targets: more than a million searches a run. Result, learned difference
// and, for some of the folders, trace have to agree.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/context.h"
#include "engine/similar_file.h"
#include "tests/model/model_similar.h"
#include "tests/model/search_names.h"
#include "tests/support/records.h"
#include "tests/support/trace_capture.h"
#include "trace/trace.h"

namespace zt::model {
namespace {

using zt::testing::OwnedPath;
using zt::testing::TraceCapture;
using zt::testing::TraceLine;

constexpr std::size_t kFoldersOfABlock = 5000;
constexpr std::size_t kSearchesOfAFolder = 25;

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
  bool is_export = false;   ///< By the export's walk; else by the table.
  Shape shape = Shape::kRandom;
};

/// The engine's side of one folder.
class Searched {
 public:
  explicit Searched(const Way& way) : way_(way) {}

  void Enter(const std::wstring& key) {
    table_.FindOrAdd(OwnedPath(key).name());
    process_.files.try_emplace(key);
  }
  void Forget(const std::wstring& key) {
    table_.Erase(*table_.Find(OwnedPath(key).name()));
    process_.files.erase(key);
  }
  Outcome Search(const std::wstring& target) {
    if (way_.is_export) {
      const auto found = ZtSearchSimilarFile(engine_, process_, process_.files, target);
      const bool is_found = found != process_.files.end();
      return {is_found, is_found ? found->first : L"", process_.NameDiff};
    }
    const TrackedFile* const found = SearchSimilarFile(name_diff_, table_, OwnedPath(target).name());
    return {found != nullptr, found == nullptr ? L"" : Widen(found->key.Lower()), Widen(name_diff_)};
  }

 private:
  Way way_;
  FileTable table_;
  std::u16string name_diff_;
  std::shared_ptr<_ZtEngineCore> engine_ = std::make_shared<_ZtEngineCore>(1);
  ZT_PID_ITEM process_;
};

class SearchSideBySideTest : public ::testing::TestWithParam<Way> {
 protected:
  /// Searches one random folder; `capture` catches the engine's lines, or is null.
  void SearchFolder(std::uint32_t seed, TraceCapture* capture) {
    Names names(seed, GetParam().shape);
    Searched searched(GetParam());
    FileMap files;
    std::vector<std::wstring> keys;
    for (std::size_t count = names.Below(names.Below(8) == 0 ? 200 : 40); count > 0; --count) {
      keys.push_back(names.Key());
      searched.Enter(keys.back());
      files.try_emplace(keys.back());
    }
    // One key in four goes again.
    for (const std::wstring& key : keys) {
      if (names.Below(4) == 0 && files.erase(key) != 0) {
        searched.Forget(key);
      }
    }
    if (capture != nullptr) {
      capture->Take();
    }
    std::wstring name_diff;
    ModelTrace trace(capture == nullptr ? 0 : kTraceDebug);
    for (std::size_t search = 0; search < kSearchesOfAFolder; ++search) {
      const std::wstring target = names.Target(keys);
      const Outcome engine = searched.Search(target);
      const auto expected = SearchSimilarFile(name_diff, files, target, trace);
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
std::vector<Way> Blocks(std::uint32_t first, std::uint32_t count, bool is_export, Shape shape) {
  std::vector<Way> ways;
  for (std::uint32_t block = first; block < first + count; ++block) {
    ways.push_back({block, is_export, shape});
  }
  return ways;
}

// Nine blocks of 5,000 folders with 25 searches each are more than a million.
INSTANTIATE_TEST_SUITE_P(Random, SearchSideBySideTest, ::testing::ValuesIn(Blocks(0, 5, false, Shape::kRandom)));
INSTANTIATE_TEST_SUITE_P(Hostile, SearchSideBySideTest, ::testing::ValuesIn(Blocks(5, 4, false, Shape::kHostile)));
INSTANTIATE_TEST_SUITE_P(Export, SearchSideBySideTest, ::testing::ValuesIn(Blocks(9, 1, true, Shape::kRandom)));
INSTANTIATE_TEST_SUITE_P(ExportHostile, SearchSideBySideTest, ::testing::ValuesIn(Blocks(10, 1, true, Shape::kHostile)));

}  // namespace
}  // namespace zt::model
