// The names that the benchmarks time: what a search among them finds and learns is what the model's walk finds and learns.

#include "bench/hostile_names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "engine/similar_file.h"
#include "tests/model/model_similar.h"
#include "tests/support/records.h"

namespace zt::model {
namespace {

using zt::bench::NamedShape;
using zt::bench::Shape;
using zt::testing::OwnedPath;

constexpr std::size_t kFiles = 10000;

std::wstring Lower(std::wstring text) {
  for (wchar_t& unit : text) {
    unit = unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit - L'A' + L'a') : unit;
  }
  return text;
}

/// The target of a shape, and others near it: shorter ones, with another extension, and paths made from tracked ones.
std::vector<std::wstring> TargetsOf(const Shape& shape) {
  const std::wstring target = Lower(shape.target);
  std::vector<std::wstring> targets = {target,        target + L".e",
                                       target,        target.substr(0, target.size() / 2),
                                       target + L"!", target.substr(0, target.rfind(L'.')) + L".1"};
  for (const std::size_t file : {std::size_t{0}, shape.paths.size() / 2, shape.paths.size() - 1}) {
    const std::wstring path = Lower(shape.paths[file]);
    targets.push_back(path + L".locked");
    targets.push_back(path.substr(0, path.rfind(L'.')) + L".locked");
    targets.push_back(path.substr(0, path.rfind(L'.')) + L"x" + path.substr(path.rfind(L'.') + 1));
  }
  for (std::wstring& path : targets) {
    path.resize(std::min<std::size_t>(path.size(), 523));  // As an event cuts it.
  }
  return targets;
}

class HostileNamesTest : public ::testing::TestWithParam<NamedShape> {};

TEST_P(HostileNamesTest, ASearchFindsAndLearnsWhatTheWalkDoes) {
  const Shape shape = GetParam().make(kFiles);
  FileTable table;
  FileMap files;
  for (const std::wstring& path : shape.paths) {
    table.FindOrAdd(OwnedPath(Lower(path)).name());
    files.try_emplace(Lower(path));
  }
  ASSERT_EQ(table.size(), files.size());
  std::u16string name_diff;
  std::wstring model_diff;
  ModelTrace trace(0);
  for (const std::wstring& target : TargetsOf(shape)) {
    const TrackedFile* const found = SearchSimilarFile(name_diff, table, OwnedPath(target).name());
    const auto expected = SearchSimilarFile(model_diff, files, target, trace);
    ASSERT_EQ(found == nullptr ? L"(none)" : Widen(found->key.Lower()), expected == files.end() ? L"(none)" : expected->first);
    ASSERT_EQ(Widen(name_diff), model_diff);
  }
}

INSTANTIATE_TEST_SUITE_P(Shapes, HostileNamesTest, ::testing::ValuesIn(zt::bench::kShapes),
                         [](const auto& named) { return std::string(named.param.name); });

}  // namespace
}  // namespace zt::model
