// Processes that are made as copies of this one.

#ifndef ZT_PLATFORM_FORK_H
#define ZT_PLATFORM_FORK_H

namespace zt {

/// Has `function` called in every process that is forked from this one from now on, first thing, on its only thread. What is
/// called must be safe there: other threads of this process may have been anywhere. Ends when this library is unloaded. Windows
/// has no such processes, and nothing is called.
void CallInForkedProcesses(void (*function)());

}  // namespace zt

#endif  // ZT_PLATFORM_FORK_H
