// Who is running: the numbers by which the system knows the process and its threads.

#ifndef ZT_PLATFORM_PROCESS_IDS_H
#define ZT_PLATFORM_PROCESS_IDS_H

#include <cstdint>

namespace zt {

/// Id of this process.
std::uint32_t CurrentProcessId();

/// Id of the calling thread, unique among the threads that are alive.
std::uint32_t CurrentThreadId();

}  // namespace zt

#endif  // ZT_PLATFORM_PROCESS_IDS_H
