// The record of one file as one process touches it.

#ifndef ZT_ENGINE_FILES_TRACKED_FILE_H
#define ZT_ENGINE_FILES_TRACKED_FILE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "engine/files/path_text.h"
#include "engine/text.h"

namespace zt {

/// What is known of a file. The same as the interface's _ZT_FILE_ITEM, in a fifth of the memory.
struct FileItem {
  PathText Path;                 ///< As the event that filled the record named it.
  std::int64_t FirstTime = 0;    ///< LOG_ITEM::Time of that event.
  std::uint64_t Context = 0;     ///< LOG_ITEM::Context of that event.
  std::uint64_t ReadInfo = 0;    ///< Position reached by the first read; taken as the file's size.
  std::uint32_t CreateInfo = 0;  ///< Low 32 bits of LOG_ITEM::TargetPid of that event; taken as the 32-bit size.
  std::uint8_t State = 0;        ///< One of the file states, see engine/transition_table.h.
  bool Written : 1 = false;      ///< The content was changed or replaced.
  bool Similar : 1 = false;      ///< The file is a restore candidate: changed, or a similar copy of it was written.
  bool Renamed : 1 = false;      ///< The file was produced or moved by a rename.
  bool SimilarMark : 1 = false;  ///< Set with Similar by a write to the tracked file.
  bool Created : 1 = false;      ///< The process created the file.
  bool ReadStarted : 1 = false;  ///< The file was opened existing and then read.
  bool penalized : 1 = false;    ///< A penalty was charged for this file to the process that owns the record.
};

/// A record with the path that it is found by. Stays where it is until it is erased.
struct TrackedFile {
  TrackedFile(const PathText& path, std::size_t end_of_stem) : key(path), stem_end(static_cast<std::uint16_t>(end_of_stem)) {}

  /// The folder and the stem of the key.
  [[nodiscard]] std::u16string_view FolderAndStem() const noexcept { return key.Lower().substr(0, stem_end); }

  const PathText key;
  FileItem item;
  const std::uint16_t stem_end;   ///< As PathParts::stem_end.
  std::uint32_t last_search = 0;  ///< The search that met the file last; see FileTable::BeginSearch.
};

/// In the order of keys.
struct KeyLess {
  bool operator()(const TrackedFile* a, const TrackedFile* b) const noexcept {
    return LessUnits(a->key.Lower(), b->key.Lower());
  }
};

}  // namespace zt

#endif  // ZT_ENGINE_FILES_TRACKED_FILE_H
