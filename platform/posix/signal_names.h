// Signals and the reasons for them in words.

#ifndef ZT_PLATFORM_POSIX_SIGNAL_NAMES_H
#define ZT_PLATFORM_POSIX_SIGNAL_NAMES_H

#include <string_view>

namespace zt {

/// E.g. "SIGSEGV"; "another signal" when it is none of those that a crash filter watches.
std::string_view SignalName(int signal);

/// Why a signal was raised.
struct SignalReason {
  std::string_view name;     ///< E.g. "SEGV_MAPERR".
  std::string_view meaning;  ///< E.g. "nothing is mapped at the address".
};

/// What siginfo_t's si_code means with this signal; both texts are "unknown" when that is not known.
SignalReason ReasonOf(int signal, int code);

}  // namespace zt

#endif  // ZT_PLATFORM_POSIX_SIGNAL_NAMES_H
