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

/// Answers questions about a file map by descending its order: each answer takes a few look-ups, however many files there are.
///
/// The order is that of code units, so all keys that begin with one prefix stand together, and a prefix comes before what it
/// begins. One buffer holds the text of each look-up.
class FileOrder {
 public:
  explicit FileOrder(ZtFileMap& files) : files_(files) {}

  /// The smallest key that stands somewhere in `text`, or the end.
  ZtFileMap::iterator SmallestKeyIn(std::wstring_view text);

  /// Adds to `found` every entry of `folder` (a path without its closing "\"), but not of its subfolders, whose stem stands
  /// somewhere in `name`. REQUIRES: `name` holds no "\".
  void FindStemsIn(std::wstring_view folder, std::wstring_view name, FoundFiles& found);

 private:
  class StartUnits;

  ZtFileMap::iterator LowerBound(std::wstring_view head, std::wstring_view tail = {});
  ZtFileMap::iterator AfterPrefix(std::wstring_view head, std::wstring_view tail = {});
  ZtFileMap::iterator ShortestKeyBeginning(std::wstring_view text);
  void FindStemsAtStartOf(std::wstring_view folder_prefix, std::wstring_view text, FoundFiles& found);
  void FindStem(std::wstring_view folder_prefix, std::wstring_view stem, FoundFiles& found);

  ZtFileMap& files_;
  std::wstring probe_;        ///< The text of the last look-up.
  std::wstring stem_prefix_;  ///< What FindStem looks for.
};

}  // namespace zt

#endif  // ZT_ENGINE_FILE_ORDER_H
