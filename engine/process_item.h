// The engine's record of one process.

#ifndef ZT_ENGINE_PROCESS_ITEM_H
#define ZT_ENGINE_PROCESS_ITEM_H

#include <cstdint>
#include <string>

#include "engine/files/file_table.h"
#include "engine/files/path_list.h"

namespace zt {

/// One process. The same as the interface's _ZT_PID_ITEM, with a table and lists that find a path at once.
struct ProcessItem {
  /// No write seen yet, in the three pre-write members.
  static constexpr std::uint32_t kNoWrite = 0xFFFFFFFF;

  std::uint32_t Exiting = 0;                 ///< Set when the process exits.
  std::int32_t Score = 0;                    ///< 1 for a new process, 0 for an ignored one.
  std::uint32_t LastWriteLength = kNoWrite;  ///< Of the last pre-write, in bytes.
  std::uint32_t LastWriteOffset = kNoWrite;  ///< Of the last pre-write that updated it.
  std::uint32_t LastWriteDiff = kNoWrite;    ///< File size less offset at that write.
  std::uint64_t Pid = 0;
  std::int64_t ScoreTime = 0;  ///< LOG_ITEM::Time of the last penalty.
  std::u16string NameDiff;     ///< The name difference that the similar-file search learned last.
  FileTable files;
  PathList QuarantineList;    ///< Files that the process made, changed or moved.
  PathList CreatedFilesList;  ///< Files that the process made; opening one again does not start tracking it.
  std::u16string PrevFolder;  ///< Folder of the last rename into another folder.
  std::wstring ImagePath;     ///< Without a leading "\??\", in the creation event's letter case.
};

}  // namespace zt

#endif  // ZT_ENGINE_PROCESS_ITEM_H
