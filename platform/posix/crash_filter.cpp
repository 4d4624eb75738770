#include "platform/crash_filter.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>

#include "platform/posix/crash_details.h"
#include "platform/posix/signal_stack.h"

namespace zt {
namespace {

constexpr std::array kCrashSignals = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};

// Who has the crash: nobody yet, the thread of this id, or it has been handled.
constexpr std::uint32_t kArmed = 0;
constexpr std::uint32_t kSpent = UINT32_MAX;
std::atomic<std::uint32_t> crash_owner = kArmed;
static_assert(decltype(crash_owner)::is_always_lock_free && sizeof(crash_owner) == sizeof(std::uint32_t));

std::atomic<CrashHandler> crash_handler = nullptr;
static_assert(decltype(crash_handler)::is_always_lock_free);

// The actions from before, in the order of kCrashSignals. They stay known after a removal: what others have installed since may
// pass its signals on to this filter.
std::array<struct sigaction, kCrashSignals.size()> previous_actions;

// Hand-overs since the filter was installed. Many threads may crash at once, but a thousand rounds mean that two handlers hand
// the crash to each other.
constexpr int kMaxHandOvers = 1000;
std::atomic<int> hand_over_count = 0;

// How long a thread waits for another one's crash to be handled.
constexpr std::time_t kPatienceSeconds = 5;

void OnSignal(int signal, siginfo_t* info, void* context);

bool IsOwn(const struct sigaction& action) { return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == &OnSignal; }

bool IsInstalled(int signal) {
  struct sigaction action = {};
  return sigaction(signal, nullptr, &action) == 0 && IsOwn(action);
}

// Puts the actions from before back where this filter's are in place; for `signal` also where they are not, because whoever has
// put another one there passes the signal on to this filter. 0 is no signal.
void RestorePreviousActions(int signal) {
  for (std::size_t i = 0; i < kCrashSignals.size(); ++i) {
    if (kCrashSignals[i] == signal || IsInstalled(kCrashSignals[i])) {
      sigaction(kCrashSignals[i], &previous_actions[i], nullptr);
    }
  }
}

bool WasIgnored(int signal) {
  for (std::size_t i = 0; i < kCrashSignals.size(); ++i) {
    if (kCrashSignals[i] == signal) {
      return (previous_actions[i].sa_flags & SA_SIGINFO) == 0 && previous_actions[i].sa_handler == SIG_IGN;
    }
  }
  return false;
}

// Whether the signal comes again by itself, once the thread runs the same instruction again.
bool FaultComesAgain(const siginfo_t& info) {
  // A report of broken memory that nobody has used yet is raised by the system too, but at any instruction.
  const bool at_any_instruction = info.si_signo == SIGBUS && info.si_code == BUS_MCEERR_AO;
  return !WasSent(info) && !at_any_instruction;
}

// From here on the crash goes its way: the actions are those from before the filter, and the signal arrives again when the
// handler returns. A fault does so by itself, with the true place for the core dump; a signal that was sent is sent again, with
// all that was said about it, and waits for the return because the handler blocks it.
void HandOver(const CrashDetails& details) {
  RestorePreviousActions(details.signal);
  if (hand_over_count.fetch_add(1) >= kMaxHandOvers) {
    std::signal(details.signal, SIG_DFL);
  }
  if (!FaultComesAgain(details.info)) {
    siginfo_t info = details.info;
    if (syscall(SYS_rt_tgsigqueueinfo, getpid(), gettid(), details.signal, &info) != 0) {
      syscall(SYS_tgkill, getpid(), gettid(), details.signal);
    }
  }
}

// Waits until `owner` has handled its crash. In most cases the process ends meanwhile. The wait has an end because the owner
// may be waiting itself, against the rules, for something that the calling thread holds and will never give up now.
void WaitForCrashOf(std::uint32_t owner) {
  timespec deadline = {};
  clock_gettime(CLOCK_MONOTONIC, &deadline);
  deadline.tv_sec += kPatienceSeconds;
  bool goes_on = true;
  while (crash_owner == owner && goes_on) {
    // This call alone takes a point in time, so that interruptions do not prolong the wait.
    const long result =
        syscall(SYS_futex, &crash_owner, FUTEX_WAIT_BITSET_PRIVATE, owner, &deadline, nullptr, FUTEX_BITSET_MATCH_ANY);
    goes_on = result == 0 || errno == EINTR || errno == EAGAIN;
  }
}

void HandleCrash(const CrashDetails& details) {
  const auto thread = static_cast<std::uint32_t>(gettid());
  std::uint32_t owner = kArmed;
  if (crash_owner.compare_exchange_strong(owner, thread)) {
    if (const CrashHandler handler = crash_handler; handler != nullptr) {
      handler(details);
    }
    HandOver(details);
    crash_owner = kSpent;
    syscall(SYS_futex, &crash_owner, FUTEX_WAKE_PRIVATE, INT32_MAX);
    return;
  }
  if (owner != kSpent && owner != thread) {  // It is the same thread when the handler itself aborts.
    WaitForCrashOf(owner);
  }
  HandOver(details);
}

void OnSignal(int signal, siginfo_t* info, void* context) {
  const int saved_errno = errno;
  // A signal that the process ignored is no crash, unless the system insists.
  if (!WasSent(*info) || !WasIgnored(signal)) {
    HandleCrash({signal, *info, *static_cast<const ucontext_t*>(context)});
  }
  errno = saved_errno;
}

}  // namespace

void PrepareThreadForCrashes() { ProvideSignalStackWhereNone(); }

void InstallCrashFilter(CrashHandler handler) {
  crash_handler = handler;
  std::uint32_t spent = kSpent;
  if (crash_owner.compare_exchange_strong(spent, kArmed)) {
    hand_over_count = 0;
  }
  ProvideSignalStack();

  struct sigaction own = {};
  own.sa_sigaction = &OnSignal;
  own.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_RESTART;
  sigemptyset(&own.sa_mask);
  for (const int signal : kCrashSignals) {
    sigaddset(&own.sa_mask, signal);
  }
  for (std::size_t i = 0; i < kCrashSignals.size(); ++i) {
    if (!IsInstalled(kCrashSignals[i])) {
      // Remembered first: the signal may arrive as soon as the action is in place.
      sigaction(kCrashSignals[i], nullptr, &previous_actions[i]);
      sigaction(kCrashSignals[i], &own, nullptr);
    }
  }
}

void RemoveCrashFilter() { RemoveOwnCrashFilter(); }

void RemoveOwnCrashFilter() {
  constexpr int kNone = 0;
  RestorePreviousActions(kNone);
  crash_handler = nullptr;
  ReleaseSignalStack();
}

}  // namespace zt
