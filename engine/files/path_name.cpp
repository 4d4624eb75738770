#include "engine/files/path_name.h"

#include <algorithm>

namespace zt {

PathParts::PathParts(std::u16string_view path, const TextHash& hash)
    : name_begin(path.rfind(u'\\') + 1), stem_end(FolderAndStem(path).size()) {
  const std::size_t start_end = std::min(name_begin + kStemStart, stem_end);
  stem_start = hash(path.substr(0, start_end));
  stem = hash.Append(stem_start, path.substr(start_end, stem_end - start_end));
  whole = hash.Append(stem, path.substr(stem_end));
}

std::u16string_view FolderAndStem(std::u16string_view path) {
  const std::size_t last = path.find_last_of(u".\\");
  return last == std::u16string_view::npos || path[last] == u'\\' ? path : path.substr(0, last);
}

}  // namespace zt
