#include "tools/replay/input/folders.h"

#include <string>

#include "tools/replay/input/ascii.h"
#include "tools/replay/input/file_names.h"

namespace replay {
namespace {

std::string KeyOf(std::string_view path) {
  while (path.ends_with('\\')) {
    path.remove_suffix(1);
  }
  return LowerCase(path);
}

}  // namespace

void Folders::Add(std::string_view folder) { folders_.Set(KeyOf(folder), {}); }

void Folders::AddFoldersOf(std::string_view path) {
  std::string key = KeyOf(path);
  for (;;) {
    key = FolderOf(key);
    // Where a folder is known, those above it are.
    if (key.empty() || !folders_.Set(key, {})) {
      return;
    }
  }
}

void Folders::Remove(std::string_view path) { folders_.Erase(KeyOf(path)); }

bool Folders::Contains(std::string_view path) const { return folders_.Find(KeyOf(path)) != nullptr; }

}  // namespace replay
