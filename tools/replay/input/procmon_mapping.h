// From Process Monitor's rows to the events that a file-system filter on the same machine would have reported.

#ifndef ZT_TOOLS_REPLAY_INPUT_PROCMON_MAPPING_H
#define ZT_TOOLS_REPLAY_INPUT_PROCMON_MAPPING_H

#include <cstdint>
#include <string_view>

#include "tools/replay/input/delete_on_close.h"
#include "tools/replay/input/event_queue.h"
#include "tools/replay/input/file_sizes.h"
#include "tools/replay/input/folders.h"
#include "tools/replay/input/known_processes.h"
#include "tools/replay/input/procmon_clock.h"
#include "tools/replay/input/procmon_detail.h"
#include "tools/replay/input/procmon_rows.h"

namespace replay {

/// Rows have to be learned from before they are mapped: in their order, some rows ahead.
class ProcmonMapping {
 public:
  /// Learns which names are folders.
  void Learn(const ProcmonRow& row);

  /// Adds the events of a row, or counts it as no input. Throws RowError.
  void Map(const ProcmonRow& row);

  [[nodiscard]] EventQueue& events() { return events_; }
  [[nodiscard]] const EventQueue& events() const { return events_; }

 private:
  // A row with its process and its path.
  struct Event {
    const ProcmonRow& row;
    Actor actor;
    KnownProcesses::Process& process;
    std::string_view path;
    std::string_view detail;
  };
  using Handler = void (ProcmonMapping::*)(const Event&);

  static Handler HandlerFor(std::string_view operation);

  void MapStart(const ProcmonRow& row, const SeenProcess& seen, std::int64_t time);
  void Open(const Event& event);
  void Read(const Event& event);
  void Write(const Event& event);
  void Delete(const Event& event);
  void Rename(const Event& event);
  void Resize(const Event& event);
  void Section(const Event& event);
  void Close(const Event& event);
  void Query(const Event& event);
  void LoadImage(const Event& event);
  void CreateProcess(const Event& event);
  void ExitProcess(const Event& event);

  bool Succeeded(const Event& event);
  bool IsFile(std::string_view path);
  bool IsSuccessOnFile(const Event& event) { return Succeeded(event) && IsFile(event.path); }
  static std::uint64_t Number(const Event& event, std::string_view key, const DetailKeys& keys);

  EventQueue events_;
  KnownProcesses processes_;
  Folders folders_;
  FileSizes sizes_;
  DeleteOnClose delete_on_close_;
  RowClock clock_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_PROCMON_MAPPING_H
