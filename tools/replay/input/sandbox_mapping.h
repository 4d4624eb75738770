// From a sandbox's call log to the events that a file-system filter on the same machine would have reported.

#ifndef ZT_TOOLS_REPLAY_INPUT_SANDBOX_MAPPING_H
#define ZT_TOOLS_REPLAY_INPUT_SANDBOX_MAPPING_H

#include <cstdint>
#include <string_view>

#include "tools/replay/input/event_queue.h"
#include "tools/replay/input/file_sizes.h"
#include "tools/replay/input/handle_table.h"
#include "tools/replay/input/known_processes.h"
#include "tools/replay/input/sandbox_call.h"
#include "tools/replay/input/sandbox_folders.h"

namespace replay {

/// Calls have to be learned from before they are mapped: in their order, some calls ahead.
class SandboxMapping {
 public:
  void Learn(const SandboxCall& call) { folders_.Learn(call); }

  /// Adds the events of a call, or counts it as no input. Throws RowError.
  void Map(const SandboxCall& call);

  [[nodiscard]] EventQueue& events() { return events_; }
  [[nodiscard]] const EventQueue& events() const { return events_; }

 private:
  // A call that succeeded, with its process.
  struct Event {
    const SandboxCall& call;
    Actor actor;
    KnownProcesses::Process& process;
  };
  using Handler = void (SandboxMapping::*)(const Event&);

  static Handler HandlerFor(std::string_view api);

  void Open(const Event& event);
  void Read(const Event& event);
  void Write(const Event& event);
  void SetInformation(const Event& event);
  void QueryInformation(const Event& event);
  void Delete(const Event& event);
  void Move(const Event& event);
  void CreateSection(const Event& event);
  void CloseHandle(const Event& event);
  void DuplicateHandle(const Event& event);
  void LoadModule(const Event& event);
  void CreateProcess(const Event& event);
  void TerminateProcess(const Event& event);

  void SetDisposition(const Event& event);
  void SetSize(const Event& event, bool end_of_file);

  bool IsFile(std::string_view name);
  HandleTable::File& FileOf(const Event& event, std::string_view name);

  EventQueue events_;
  KnownProcesses processes_;
  SandboxFolders folders_;
  FileSizes sizes_;
  HandleTable handles_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_SANDBOX_MAPPING_H
