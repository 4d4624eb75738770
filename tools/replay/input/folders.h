// Which names are folders.
//
// Folders are no input: the engine takes a name that contains another as a changed copy of it, so a folder that is fed once
// would match every file below it from then on. Captures say that an open name is a folder only sometimes, and sometimes later
// (by a query of its attributes). What always holds: a name with something below it is a folder. So the readers look some rows
// ahead and learn from each before the row is mapped.

#ifndef ZT_TOOLS_REPLAY_INPUT_FOLDERS_H
#define ZT_TOOLS_REPLAY_INPUT_FOLDERS_H

#include <string_view>

#include "tools/replay/input/bounded_map.h"

namespace replay {

/// Paths are compared without case and without a trailing backslash. Of what was learned first some is forgotten in time, so
/// memory stays bounded; folders in use are learned again.
class Folders {
 public:
  void Add(std::string_view folder);

  /// Adds all that `path` lies in. REQUIRES: something of that name exists, for programs ask for names below files too.
  void AddFoldersOf(std::string_view path);

  /// A file has that name now.
  void Remove(std::string_view path);

  [[nodiscard]] bool Contains(std::string_view path) const;

 private:
  struct Nothing {};
  BoundedMap<Nothing> folders_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_FOLDERS_H
