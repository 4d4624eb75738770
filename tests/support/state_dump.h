// All state of an engine as text, for tests of what changes nothing.

#ifndef ZT_TESTS_SUPPORT_STATE_DUMP_H
#define ZT_TESTS_SUPPORT_STATE_DUMP_H

#include <sstream>
#include <string>
#include <string_view>

#include "engine/context.h"
#include "engine/text.h"

namespace zt::testing {

/// ASCII as it stands, any other unit as \uXXXX.
inline std::string Narrow(std::wstring_view text) {
  std::ostringstream out;
  for (const wchar_t unit : text) {
    if (unit >= 0x20 && unit < 0x7F) {
      out << static_cast<char>(unit);
    } else {
      out << "\\u" << std::hex << static_cast<unsigned long>(unit) << std::dec;
    }
  }
  return out.str();
}

inline void DumpKey(std::ostream& out, const ZtProcKey& key) { out << "(" << key.Pid << ", " << key.Time << ")"; }

inline void DumpPaths(std::ostream& out, const char* name, const PathList& paths) {
  out << "    " << name << ":";
  for (const std::wstring& path : paths.Paths()) {
    out << " [" << Narrow(path) << "]";
  }
  out << "\n";
}

inline void DumpFile(std::ostream& out, const TrackedFile& tracked) {
  const FileItem& file = tracked.item;
  out << "    file [" << Narrow(Widen(tracked.key.Lower())) << "] state " << unsigned{file.State} << " path ["
      << Narrow(file.Path.Wide()) << "] time " << file.FirstTime << " context " << file.Context << " read " << file.ReadInfo
      << " create " << file.CreateInfo << " flags " << file.Written << file.Similar << file.Renamed << file.SimilarMark
      << file.Created << file.ReadStarted << file.penalized << "\n";
}

inline void DumpProcess(std::ostream& out, const ProcessItem& item) {
  out << "    pid " << item.Pid << " exiting " << item.Exiting << " score " << item.Score << " at " << item.ScoreTime
      << " last write " << item.LastWriteLength << "/" << item.LastWriteOffset << "/" << item.LastWriteDiff << " image ["
      << Narrow(item.ImagePath) << "] diff [" << Narrow(Widen(item.NameDiff)) << "] folder [" << Narrow(Widen(item.PrevFolder))
      << "]\n";
  DumpPaths(out, "quarantine", item.QuarantineList);
  DumpPaths(out, "created", item.CreatedFilesList);
  for (const TrackedFile* const file : item.files.Sorted([](const TrackedFile&) { return true; })) {
    DumpFile(out, *file);
  }
}

/// Everything that events and queries can change.
inline std::string DumpState(_ZtEngineCore& core) {
  std::ostringstream out;
  for (const auto& [pid, time] : core.StartTimes) {
    out << "start of " << pid << " is " << time << "\n";
  }
  for (auto& [key, entry] : core.Tree) {
    DumpKey(out, key);
    out << " own ";
    DumpKey(out, entry.key);
    out << " parent ";
    DumpKey(out, entry.parentKey);
    out << " live " << entry.LiveCount << " exited " << entry.Exited << " children";
    for (const ZtProcKey& child : entry.children) {
      out << " ";
      DumpKey(out, child);
    }
    out << "\n";
    DumpProcess(out, entry.Item);
  }
  return out.str();
}

}  // namespace zt::testing

#endif  // ZT_TESTS_SUPPORT_STATE_DUMP_H
