#include "engine/files/path_name.h"

#include <algorithm>

namespace zt {
namespace {

/// The last "." of the path's name, or the path's end.
std::size_t StemEnd(std::u16string_view path) {
  for (std::size_t end = path.size(); end > 0 && path[end - 1] != u'\\'; --end) {
    if (path[end - 1] == u'.') {
      return end - 1;
    }
  }
  return path.size();
}

}  // namespace

PathParts::PathParts(std::u16string_view path, const TextHash& hash)  // NOLINT(cppcoreguidelines-pro-type-member-init)
    : name_begin(StemEnd(path)), stem_end(name_begin) {
  while (name_begin > 0 && path[name_begin - 1] != u'\\') {
    --name_begin;
  }
  const std::size_t start_end = std::min(name_begin + kStemStart, stem_end);
  stem_start = hash(path.substr(0, start_end));
  stem = hash.Append(stem_start, path.substr(start_end, stem_end - start_end));
  whole = hash.Append(stem, path.substr(stem_end));
}

}  // namespace zt
