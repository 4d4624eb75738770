// Which names in a sandbox's call log are folders.

#ifndef ZT_TOOLS_REPLAY_INPUT_SANDBOX_FOLDERS_H
#define ZT_TOOLS_REPLAY_INPUT_SANDBOX_FOLDERS_H

#include <string_view>

#include "tools/replay/input/folders.h"
#include "tools/replay/input/handle_table.h"
#include "tools/replay/input/sandbox_call.h"

namespace replay {

/// Learns from calls which names are folders.
class SandboxFolders {
 public:
  void Learn(const SandboxCall& call);
  [[nodiscard]] bool Contains(std::string_view name) const { return folders_.Contains(name); }

 private:
  void LearnFromQuery(const SandboxCall& call);

  Folders folders_;
  HandleTable handles_;  // Of its own, since it runs ahead of the mapping.
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_SANDBOX_FOLDERS_H
