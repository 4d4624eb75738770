// The records of processes and files, as ZtSearchSimilarFile takes them.

#ifndef ZTENG_ZT_ITEMS_H
#define ZTENG_ZT_ITEMS_H

#include <compare>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// The engine behind a handle.
class _ZtEngineCore;

/// Names a process: ids are reused, the pair of id and start time is not. Ordered by id, then by start time.
struct ZtProcKey {
  std::uint64_t Pid = 0;
  std::int64_t Time = 0;

  friend auto operator<=>(const ZtProcKey&, const ZtProcKey&) = default;  // NOLINT(modernize-use-nullptr): a false alarm.
};

/// One file as one process touches it.
struct _ZT_FILE_ITEM {
  bool Written = false;           ///< The content was changed or replaced.
  bool Similar = false;           ///< The file is a restore candidate: changed, or a similar copy of it was written.
  bool Renamed = false;           ///< The file was produced or moved by a rename.
  bool SimilarMark = false;       ///< Set with Similar by a write to the tracked file.
  bool Created = false;           ///< The process created the file.
  bool ReadStarted = false;       ///< The file was opened existing and then read.
  bool penalized = false;         ///< A penalty was charged for this file to the process that owns the record.
  std::uint32_t State = 0;        ///< One of the file states, 0 to 10.
  std::int64_t FirstTime = 0;     ///< LOG_ITEM::Time of the event that filled the record.
  std::uint64_t Context = 0;      ///< LOG_ITEM::Context of that event.
  std::uint64_t ReadInfo = 0;     ///< Position reached by the first read; taken as the file's size.
  std::wstring Path;              ///< The path in the letter case of the event that filled the record.
  std::uint32_t CreateInfo = 0;   ///< Low 32 bits of LOG_ITEM::TargetPid of that event; taken as the 32-bit size.
  unsigned char Block[512] = {};  ///< Further data, carried with the record.
};
using ZT_FILE_ITEM = _ZT_FILE_ITEM;

/// A process's files: full path in lower case to record, ordered by code units.
using ZtFileMap = std::map<std::wstring, ZT_FILE_ITEM>;

/// One process.
struct _ZT_PID_ITEM {
  std::uint32_t Exiting = 0;                   ///< Set when the process exits.
  std::int32_t Score = 0;                      ///< 1 for a new process, 0 for an ignored one.
  std::uint32_t LastWriteLength = 0xFFFFFFFF;  ///< Of the last pre-write, in bytes; all bits set while there was none.
  std::uint32_t LastWriteOffset = 0xFFFFFFFF;  ///< Of the last pre-write that updated it.
  std::uint32_t LastWriteDiff = 0xFFFFFFFF;    ///< File size less offset at that write.
  std::uint64_t Pid = 0;
  std::int64_t ScoreTime = 0;  ///< LOG_ITEM::Time of the last penalty.
  std::wstring NameDiff;       ///< The name difference that the similar-file search learned last.
  ZtFileMap files;
  std::vector<std::wstring> QuarantineList;    ///< Lower-case paths of files that the process made, changed or moved.
  std::vector<std::wstring> CreatedFilesList;  ///< Lower-case paths of files that the process made.
  std::wstring PrevFolder;                     ///< Folder of the last rename into another folder.
  std::wstring ImagePath;                      ///< Without a leading "\??\", in the creation event's letter case.
};
using ZT_PID_ITEM = _ZT_PID_ITEM;

#endif  // ZTENG_ZT_ITEMS_H
