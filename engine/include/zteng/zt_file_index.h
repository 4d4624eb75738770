// Finds a process's file records by their path.

#ifndef ZTENG_ZT_FILE_INDEX_H
#define ZTENG_ZT_FILE_INDEX_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>

struct _ZT_FILE_ITEM;

/// An index beside a file map. It answers what the map could answer, too, but only by reading some twenty paths from memory
/// where there are a million, and one thing that the map could not: how long its paths and stems are.
///
/// Found and changed through the index, a map of kMinSize files or more has one from then on. Nothing fails for want of it:
/// where memory is exhausted, it is dropped, and the map is asked until it has grown by an eighth or shrunk by
/// half.
///
/// Invariant, while there is an index: it holds exactly the map's entries, if the map was changed only through it. A change
/// that was not is noticed where it changed the map's size.
class ZtFileIndex {
 public:
  using Map = std::map<std::wstring, _ZT_FILE_ITEM>;
  using Entry = Map::value_type;

  /// Smaller maps are asked themselves.
  static constexpr std::size_t kMinSize = 9;

  ZtFileIndex() = default;
  ZtFileIndex(ZtFileIndex&&) = default;
  ZtFileIndex& operator=(ZtFileIndex&&) = default;
  // A copy would lead to the original's entries.
  ZtFileIndex(const ZtFileIndex&) = delete;
  ZtFileIndex& operator=(const ZtFileIndex&) = delete;
  ~ZtFileIndex() = default;

  /// The entry of `files` under `path`, or null.
  Entry* Find(Map& files, const std::wstring& path) noexcept;
  /// The same; where there is none, it is added. Tells whether it was. Throws std::bad_alloc with `files` unchanged.
  std::pair<Entry*, bool> FindOrAdd(Map& files, const std::wstring& path);
  /// Erases an entry of `files` and returns the next one.
  Map::iterator Erase(Map& files, Map::iterator entry) noexcept;

  /// Makes the index if `files` is large enough. Returns whether the questions below may be asked, until the map changes.
  bool Prepare(Map& files) noexcept;
  /// The first entry of `files` that is not less than `path`.
  Map::iterator LowerBound(Map& files, const std::wstring& path) const noexcept;
  /// The smallest length of a path that is at least `length`, in units; the largest number where there is none.
  [[nodiscard]] std::size_t NextPathLength(std::size_t length) const noexcept;
  /// The same of how long a path is up to the end of its stem: up to the last dot of its name, or all of it.
  [[nodiscard]] std::size_t NextStemEnd(std::size_t length) const noexcept;

 private:
  struct Tables;

  void Add(Map& files, Map::iterator entry) noexcept;
  void Build(Map& files) noexcept;
  void GiveUp(const Map& files) noexcept;

  std::size_t min_size_ = kMinSize;  ///< Of a map for which it is made; larger after a failure.
  std::shared_ptr<Tables> tables_;   ///< Nobody shares it; so can a host, which does not know Tables, have records of its own.
};

#endif  // ZTENG_ZT_FILE_INDEX_H
