// The processes that the engine has been told of.

#ifndef ZT_TOOLS_REPLAY_INPUT_KNOWN_PROCESSES_H
#define ZT_TOOLS_REPLAY_INPUT_KNOWN_PROCESSES_H

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "tools/replay/input/event_queue.h"

namespace replay {

/// A process as a row of a capture shows it.
struct SeenProcess {
  std::uint64_t pid = 0;
  std::uint64_t parent_pid = 0;  ///< 0 where the row does not tell.
  std::string_view image;        ///< Path of the image; empty where the row does not tell.
  std::string_view name;         ///< Name of the program; empty where the row does not tell.
};

/// Enters processes that run already when a capture starts, as a host does when it starts: each by a creation event, its parent
/// first. The parent's own parent is not known then, so that one is created by process 0, which means by nobody. A process of
/// which only the id is known is called "pid N". A process stays known after its exit, for a program's last rows follow it.
class KnownProcesses {
 public:
  struct Process {
    std::string image;
    std::string name;              ///< As its own rows give it; empty before the first.
    std::uint64_t entered_by = 0;  ///< The parent under which it was entered.
    std::uint64_t generation = 0;  ///< Tells processes apart that had the same id one after the other.
    bool starts = false;           ///< Created in the capture, and its own start not seen yet.
    bool exited = false;
  };

  /// Ordered, not hashed: a capture chooses the ids.
  using Processes = std::map<std::uint64_t, Process>;

  /// The process that acts in a row, entered at `time` when it is not known: when the id is new, or when it had another
  /// program's name before. The reference holds until another process is entered. REQUIRES: a pid other than 0.
  Process& See(const SeenProcess& seen, std::int64_t time, EventQueue& events);

  /// `creator` creates a process. It replaces one of the same id.
  void Create(const Actor& creator, std::uint64_t pid, std::string_view image, EventQueue& events);

  /// A process that says of itself that it has just been started, though no creation of it is in the capture.
  void Start(const SeenProcess& seen, std::int64_t time, EventQueue& events);

  /// The process of that id, or null.
  [[nodiscard]] Process* Find(std::uint64_t pid);

 private:
  Process& Enter(std::uint64_t pid, std::uint64_t parent_pid, std::string_view image, std::int64_t time, EventQueue& events);
  Process& Register(std::uint64_t pid, std::uint64_t parent_pid, std::string_view image);

  Processes processes_;
  std::uint64_t generations_ = 0;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_KNOWN_PROCESSES_H
