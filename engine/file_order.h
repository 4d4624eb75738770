// What the order of a file map tells without walking it.

#ifndef ZT_ENGINE_FILE_ORDER_H
#define ZT_ENGINE_FILE_ORDER_H

#include <array>
#include <cstddef>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

#include "zteng/zt_items.h"

namespace zt {

/// Entries of a file map, few as a rule: the first ones need no memory from the heap.
class FoundFiles {
 public:
  FoundFiles() { entries_.reserve(kFew); }
  FoundFiles(const FoundFiles&) = delete;  // The entries lie in the object itself.
  FoundFiles& operator=(const FoundFiles&) = delete;
  ~FoundFiles() = default;

  void Add(ZtFileMap::iterator entry) { entries_.push_back(entry); }
  /// Orders the entries by key, drops those that were added twice, and gives them.
  const std::pmr::vector<ZtFileMap::iterator>& SortedByKey();

 private:
  static constexpr std::size_t kFew = 32;

  std::array<std::byte, kFew * sizeof(ZtFileMap::iterator)> few_;
  std::pmr::monotonic_buffer_resource memory_{few_.data(), few_.size()};
  std::pmr::vector<ZtFileMap::iterator> entries_{&memory_};
};

/// Answers questions about a file map by descending its order. What an answer costs is bounded by the text that is asked about
/// and by what is found, and by names that go on with a dot behind a stem, not by the number of files.
///
/// The order is that of code units, so all keys that begin with one prefix stand together, and a prefix comes before what it
/// begins. One buffer holds the text of each look-up.
class FileOrder {
 public:
  /// @param index  that of `files`; null for a map that has none, which is then asked for every length of a path
  FileOrder(ZtFileMap& files, ZtFileIndex* index)
      : files_(files), index_(index != nullptr && index->Prepare(files) ? index : nullptr) {}

  /// The smallest key that stands somewhere in `text`, or the end.
  ZtFileMap::iterator SmallestKeyIn(std::wstring_view text);

  /// Adds to `found` every entry of `folder` (a path without its closing "\"), but not of its subfolders, whose stem stands
  /// somewhere in `name`. Entries that are not less than `end` may be left out. REQUIRES: `name` holds no "\".
  void FindStemsIn(std::wstring_view folder, std::wstring_view name, ZtFileMap::iterator end, FoundFiles& found);

 private:
  class StartUnits;

  ZtFileMap::iterator LowerBound(std::wstring_view head, std::wstring_view tail = {});
  ZtFileMap::iterator LowerBoundOfProbe();
  ZtFileMap::iterator AfterPrefix(std::wstring_view head, std::wstring_view tail = {});
  ZtFileMap::iterator ShortestKeyBeginning(std::wstring_view text);
  [[nodiscard]] std::size_t NextPathLength(std::size_t length) const;
  [[nodiscard]] std::size_t NextStemEnd(std::size_t length) const;
  [[nodiscard]] bool IsBefore(ZtFileMap::iterator entry, ZtFileMap::iterator end) const;
  void FindStemsAtStartOf(std::wstring_view folder_prefix, std::wstring_view text, ZtFileMap::iterator end, FoundFiles& found);
  void FindStem(std::wstring_view folder_prefix, std::wstring_view stem, ZtFileMap::iterator end, FoundFiles& found);

  ZtFileMap& files_;
  ZtFileIndex* index_;
  std::wstring probe_;        ///< The text of the last look-up.
  std::wstring stem_prefix_;  ///< What FindStem looks for.
};

}  // namespace zt

#endif  // ZT_ENGINE_FILE_ORDER_H
