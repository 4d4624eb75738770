// The engine's records by wide paths, as tests write them.

#ifndef ZT_TESTS_SUPPORT_RECORDS_H
#define ZT_TESTS_SUPPORT_RECORDS_H

#include <algorithm>
#include <string>
#include <string_view>

#include "engine/paths.h"
#include "engine/process_item.h"
#include "engine/text.h"

namespace zt {

/// In the path's own letter case.
inline bool operator==(const PathText& path, std::wstring_view wide) { return path.Wide() == wide; }

namespace testing {

inline PathText MakePath(std::wstring_view path) {
  const std::u16string units = ToUnits(path);
  std::u16string lower = units;
  std::transform(lower.begin(), lower.end(), lower.begin(), ToLower);
  return {lower, units};
}

/// A path to look up, with its units.
class OwnedPath {
 public:
  /// REQUIRES: the path is in lower case.
  explicit OwnedPath(std::wstring_view path, const TextHash& hash = TextHash::OfProcess())
      : units_(ToUnits(path)), name_(units_, units_, hash) {}
  OwnedPath(const OwnedPath&) = delete;
  OwnedPath& operator=(const OwnedPath&) = delete;

  PathName& name() { return name_; }

 private:
  std::u16string units_;
  PathName name_;
};

/// The record of the file under the lower-case key, or null.
inline FileItem* FindFile(ProcessItem& process, std::wstring_view key) {
  TrackedFile* const file = process.files.Find(OwnedPath(key).name());
  return file == nullptr ? nullptr : &file->item;
}
inline bool HasFile(ProcessItem& process, std::wstring_view key) { return FindFile(process, key) != nullptr; }
/// The same; made where there is none.
inline FileItem& EnterFile(ProcessItem& process, std::wstring_view key) {
  return process.files.FindOrAdd(OwnedPath(key).name()).first->item;
}

inline bool AddPath(PathList& list, std::wstring_view path) { return list.Add(OwnedPath(path).name()); }
inline bool RemovePath(PathList& list, std::wstring_view path) { return list.Remove(OwnedPath(path).name()); }
inline bool HasPath(PathList& list, std::wstring_view path) { return list.Contains(OwnedPath(path).name()); }

}  // namespace testing
}  // namespace zt

#endif  // ZT_TESTS_SUPPORT_RECORDS_H
