// Finds a process's file records by their whole path.

#ifndef ZTENG_ZT_FILE_INDEX_H
#define ZTENG_ZT_FILE_INDEX_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct _ZT_FILE_ITEM;

/// A hash table beside a file map. A descent of a map of a million files reads some twenty keys, nearly all of them from
/// memory; the table reads one. What asks for the order of the paths asks the map.
///
/// The table is made when it is first asked about a map that is large enough, and follows the map's changes as it is told of
/// them. It never fails: where memory is exhausted, it is dropped and the map is asked. The hash has a secret of the process's
/// own, so that nobody can choose paths that meet in the table.
///
/// Invariant, while there is a table: it holds exactly the map's entries, if every change was told. A change that was not, but
/// changed the map's size, is noticed.
class ZtFileIndex {
 public:
  using Map = std::map<std::wstring, _ZT_FILE_ITEM>;
  using Entry = Map::value_type;

  /// Maps of fewer entries are asked themselves.
  static constexpr std::size_t kMinSize = 48;

  /// The entry of `files` under `path`, or null.
  Entry* Find(Map& files, const std::wstring& path) noexcept;
  /// To be called after `entry` was added to the map.
  void OnAdded(Entry& entry) noexcept;
  /// To be called before `entry` is erased from the map.
  void OnErased(const Entry& entry) noexcept;

 private:
  static std::uint32_t TagOf(std::wstring_view path) noexcept;
  [[nodiscard]] std::size_t HomeOf(std::uint32_t tag) const noexcept { return (tag >> 1) & (tags_.size() - 1); }
  [[nodiscard]] std::size_t Next(std::size_t slot) const noexcept { return (slot + 1) & (tags_.size() - 1); }

  void Build(Map& files) noexcept;
  void Resize(std::size_t slots);
  void Put(std::uint32_t tag, Entry* entry) noexcept;
  void Drop() noexcept;

  // Slots, a power of two of them or none. A tag of 0 is an empty slot; others are odd.
  std::vector<std::uint32_t> tags_;
  std::vector<Entry*> entries_;
  std::size_t count_ = 0;
};

#endif  // ZTENG_ZT_FILE_INDEX_H
