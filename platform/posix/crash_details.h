// What is known about a crash where crashes arrive as signals.

#ifndef ZT_PLATFORM_POSIX_CRASH_DETAILS_H
#define ZT_PLATFORM_POSIX_CRASH_DETAILS_H

#include <ucontext.h>

#include <csignal>

#include "platform/crash_filter.h"

namespace zt {

/// The three arguments of a signal handler.
struct CrashDetails {
  int signal;
  const siginfo_t& info;
  const ucontext_t& context;  ///< The state of the thread where the signal met it.
};

/// Whether somebody sent the signal (abort, raise, kill); otherwise the system raised it for what the thread did.
inline bool WasSent(const siginfo_t& info) { return info.si_code <= 0; }

}  // namespace zt

#endif  // ZT_PLATFORM_POSIX_CRASH_DETAILS_H
