#include "engine/files/path_list.h"

#include <algorithm>
#include <iterator>

#include "engine/text.h"

namespace zt {

bool PathList::Add(PathName& path) {
  if (Contains(path)) {
    return false;
  }
  order_.push_back(path.Text());
  try {
    index_.Insert(path.parts().whole, std::prev(order_.end()));
  } catch (...) {
    order_.pop_back();
    throw;
  }
  return true;
}

bool PathList::Remove(const PathName& path) noexcept {
  const Order::iterator* const found = Find(path);
  if (found == nullptr) {
    return false;
  }
  const Order::iterator element = *found;
  index_.Erase(path.parts().whole, [element](Order::iterator other) { return other == element; });
  order_.erase(element);
  return true;
}

std::vector<std::wstring> PathList::Paths() const {
  std::vector<std::wstring> paths;
  paths.reserve(order_.size());
  std::transform(order_.begin(), order_.end(), std::back_inserter(paths),
                 [](const PathText& path) { return Widen(path.Lower()); });
  return paths;
}

PathList::Order::iterator* PathList::Find(const PathName& path) noexcept {
  return index_.Find(path.parts().whole,
                     [&path](Order::iterator element) { return SameUnits(element->Lower(), path.lower()); });
}

}  // namespace zt
