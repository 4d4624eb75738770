#include "zteng/zt_path_list.h"

#include <algorithm>
#include <iterator>

bool ZtPathList::Add(std::wstring_view path) {
  if (Contains(path)) {
    return false;
  }
  order_.emplace_back(path);
  try {
    index_.Insert(path, std::prev(order_.end()));
  } catch (...) {
    order_.pop_back();
    throw;
  }
  return true;
}

bool ZtPathList::Remove(std::wstring_view path) noexcept {
  const Element* const found = Find(path);
  if (found == nullptr) {
    return false;
  }
  const auto element = *found;
  index_.Erase(path, [element](Element other) { return other == element; });
  order_.erase(element);
  return true;
}

std::vector<std::wstring> ZtPathList::Paths() const {
  std::vector<std::wstring> paths;
  paths.reserve(order_.size());
  std::transform(order_.begin(), order_.end(), std::back_inserter(paths), [](const ZtText& path) { return path.Wide(); });
  return paths;
}

const ZtPathList::Element* ZtPathList::Find(std::wstring_view path) const noexcept {
  return index_.Find(path, [path](Element element) { return *element == path; });
}
