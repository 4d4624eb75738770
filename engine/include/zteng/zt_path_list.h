// A list of paths in order of insertion, without duplicates.

#ifndef ZTENG_ZT_PATH_LIST_H
#define ZTENG_ZT_PATH_LIST_H

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "zteng/zt_path_hash.h"
#include "zteng/zt_text.h"

/// Paths in order of insertion, each at most once, compared exactly. Adding, finding and removing take the same time however
/// many there are.
///
/// Invariant: `index_` has one iterator for each element of `order_`. Elements of a list never move, so the iterators stay
/// valid until the element is erased.
class ZtPathList {
 public:
  ZtPathList() = default;
  ZtPathList(ZtPathList&&) = default;
  ZtPathList& operator=(ZtPathList&&) = default;
  // A copy's index would lead to the original's elements.
  ZtPathList(const ZtPathList&) = delete;
  ZtPathList& operator=(const ZtPathList&) = delete;
  ~ZtPathList() = default;

  /// Appends `path` and returns true, or returns false when it is present. Throws std::bad_alloc with the list unchanged.
  bool Add(std::wstring_view path);
  /// Removes `path`, keeping the order of the others, and returns true, or returns false when it is absent.
  bool Remove(std::wstring_view path) noexcept;

  [[nodiscard]] bool Contains(std::wstring_view path) const noexcept { return Find(path) != nullptr; }
  [[nodiscard]] std::size_t size() const noexcept { return order_.size(); }
  [[nodiscard]] bool empty() const noexcept { return order_.empty(); }
  /// Copies of the paths in order of insertion. Throws std::bad_alloc.
  [[nodiscard]] std::vector<std::wstring> Paths() const;

 private:
  using Element = std::list<ZtText>::iterator;

  [[nodiscard]] const Element* Find(std::wstring_view path) const noexcept;

  std::list<ZtText> order_;
  ZtPathHash<Element> index_;
};

#endif  // ZTENG_ZT_PATH_LIST_H
