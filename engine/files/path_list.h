// A list of paths in order of insertion, without duplicates.

#ifndef ZT_ENGINE_FILES_PATH_LIST_H
#define ZT_ENGINE_FILES_PATH_LIST_H

#include <cstddef>
#include <list>
#include <string>
#include <vector>

#include "engine/files/hash_table.h"
#include "engine/files/path_name.h"
#include "engine/files/path_text.h"

namespace zt {

/// Lower-case paths in order of insertion, each at most once. Adding, finding and removing take the same time however many
/// there are.
///
/// Invariant: `index_` has each element of `order_` under the hash of its path.
class PathList {
 public:
  PathList() = default;
  PathList(PathList&&) = default;
  PathList& operator=(PathList&&) = default;
  PathList(const PathList&) = delete;  // A copy's index would lead to the original's elements.
  PathList& operator=(const PathList&) = delete;
  ~PathList() = default;

  /// Appends `path` and returns true, or returns false when it is present. Throws std::bad_alloc with the list unchanged.
  bool Add(PathName& path);
  /// Removes `path`, keeping the order of the others, and returns true, or returns false when it is absent.
  bool Remove(const PathName& path) noexcept;

  [[nodiscard]] bool Contains(const PathName& path) noexcept { return Find(path) != nullptr; }
  [[nodiscard]] std::size_t size() const noexcept { return order_.size(); }
  [[nodiscard]] bool empty() const noexcept { return order_.empty(); }
  /// The paths in order of insertion. Throws std::bad_alloc.
  [[nodiscard]] std::vector<std::wstring> Paths() const;

 private:
  using Order = std::list<PathText>;

  [[nodiscard]] Order::iterator* Find(const PathName& path) noexcept;

  Order order_;
  HashTable<Order::iterator> index_;
};

}  // namespace zt

#endif  // ZT_ENGINE_FILES_PATH_LIST_H
