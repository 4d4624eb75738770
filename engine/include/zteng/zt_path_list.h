// A list of paths in order of insertion, without duplicates.

#ifndef ZTENG_ZT_PATH_LIST_H
#define ZTENG_ZT_PATH_LIST_H

#include <cstddef>
#include <list>
#include <map>
#include <string>
#include <string_view>

/// Paths in order of insertion, each at most once, compared exactly. Adding, finding and removing take O(log n); a tree and
/// not a hash, so that chosen paths cannot make them slower.
///
/// Invariant: `index_` has one entry for each element of `order_`; its key views that element's text. Elements of a list never
/// move, so the views stay valid until the element is erased.
class ZtPathList {
 public:
  using const_iterator = std::list<std::wstring>::const_iterator;

  ZtPathList() = default;
  ZtPathList(ZtPathList&&) = default;
  ZtPathList& operator=(ZtPathList&&) = default;
  // A copy's index would view the original's elements.
  ZtPathList(const ZtPathList&) = delete;
  ZtPathList& operator=(const ZtPathList&) = delete;
  ~ZtPathList() = default;

  /// Appends `path` and returns true, or returns false when it is present. Throws std::bad_alloc with the list unchanged.
  bool Add(std::wstring_view path) {
    const auto hint = index_.lower_bound(path);
    if (hint != index_.end() && hint->first == path) {
      return false;
    }
    order_.emplace_back(path);
    try {
      index_.emplace_hint(hint, order_.back(), std::prev(order_.end()));
    } catch (...) {
      order_.pop_back();
      throw;
    }
    return true;
  }

  /// Removes `path`, keeping the order of the others, and returns true, or returns false when it is absent.
  bool Remove(std::wstring_view path) noexcept {
    const auto found = index_.find(path);
    if (found == index_.end()) {
      return false;
    }
    const auto element = found->second;
    index_.erase(found);
    order_.erase(element);
    return true;
  }

  [[nodiscard]] bool Contains(std::wstring_view path) const noexcept { return index_.find(path) != index_.end(); }
  [[nodiscard]] std::size_t size() const noexcept { return order_.size(); }
  [[nodiscard]] bool empty() const noexcept { return order_.empty(); }
  [[nodiscard]] const_iterator begin() const noexcept { return order_.begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return order_.end(); }

 private:
  std::list<std::wstring> order_;
  std::map<std::wstring_view, std::list<std::wstring>::iterator> index_;
};

#endif  // ZTENG_ZT_PATH_LIST_H
