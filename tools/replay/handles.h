// Process ids as the exports take and give them.

#ifndef ZT_TOOLS_REPLAY_HANDLES_H
#define ZT_TOOLS_REPLAY_HANDLES_H

#include <cstdint>

namespace replay {

inline void* HandleFromPid(std::uint64_t pid) {
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(pid));  // NOLINT(performance-no-int-to-ptr): ids are passed so.
}

inline std::uint64_t PidFromHandle(void* pid) { return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pid)); }

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_HANDLES_H
