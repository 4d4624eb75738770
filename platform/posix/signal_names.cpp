#include "platform/posix/signal_names.h"

#include <csignal>

namespace zt {
namespace {

struct NamedCode {
  int signal;  // kAnySignal: whatever the signal.
  int code;
  SignalReason reason;
};

constexpr int kAnySignal = 0;

constexpr NamedCode kCodes[] = {
    {kAnySignal, SI_USER, {"SI_USER", "sent by kill"}},
    {kAnySignal, SI_TKILL, {"SI_TKILL", "sent to this thread, as abort and raise do"}},
    {kAnySignal, SI_QUEUE, {"SI_QUEUE", "sent by sigqueue"}},
    {kAnySignal, SI_TIMER, {"SI_TIMER", "sent by a timer"}},
    {kAnySignal, SI_MESGQ, {"SI_MESGQ", "sent by a message queue"}},
    {kAnySignal, SI_ASYNCIO, {"SI_ASYNCIO", "sent by an asynchronous transfer"}},
    {kAnySignal, SI_KERNEL, {"SI_KERNEL", "raised by the system, which tells no address"}},
    {SIGSEGV, SEGV_MAPERR, {"SEGV_MAPERR", "nothing is mapped at the address"}},
    {SIGSEGV, SEGV_ACCERR, {"SEGV_ACCERR", "the mapping does not permit the access"}},
    {SIGSEGV, SEGV_BNDERR, {"SEGV_BNDERR", "a bounds check failed"}},
    {SIGSEGV, SEGV_PKUERR, {"SEGV_PKUERR", "a protection key does not permit the access"}},
    {SIGBUS, BUS_ADRALN, {"BUS_ADRALN", "the address is not aligned"}},
    {SIGBUS, BUS_ADRERR, {"BUS_ADRERR", "there is nothing behind the address, as beyond the end of a mapped file"}},
    {SIGBUS, BUS_OBJERR, {"BUS_OBJERR", "the hardware reports an error"}},
    {SIGBUS, BUS_MCEERR_AR, {"BUS_MCEERR_AR", "broken memory was used"}},
    {SIGBUS, BUS_MCEERR_AO, {"BUS_MCEERR_AO", "broken memory was found"}},
    {SIGILL, ILL_ILLOPC, {"ILL_ILLOPC", "illegal instruction"}},
    {SIGILL, ILL_ILLOPN, {"ILL_ILLOPN", "illegal operand"}},
    {SIGILL, ILL_ILLADR, {"ILL_ILLADR", "illegal addressing mode"}},
    {SIGILL, ILL_ILLTRP, {"ILL_ILLTRP", "illegal trap"}},
    {SIGILL, ILL_PRVOPC, {"ILL_PRVOPC", "privileged instruction"}},
    {SIGILL, ILL_PRVREG, {"ILL_PRVREG", "privileged register"}},
    {SIGILL, ILL_COPROC, {"ILL_COPROC", "coprocessor error"}},
    {SIGILL, ILL_BADSTK, {"ILL_BADSTK", "error of the internal stack"}},
    {SIGFPE, FPE_INTDIV, {"FPE_INTDIV", "integer divided by zero"}},
    {SIGFPE, FPE_INTOVF, {"FPE_INTOVF", "integer overflow"}},
    {SIGFPE, FPE_FLTDIV, {"FPE_FLTDIV", "floating point divided by zero"}},
    {SIGFPE, FPE_FLTOVF, {"FPE_FLTOVF", "floating point overflow"}},
    {SIGFPE, FPE_FLTUND, {"FPE_FLTUND", "floating point underflow"}},
    {SIGFPE, FPE_FLTRES, {"FPE_FLTRES", "floating point result is not exact"}},
    {SIGFPE, FPE_FLTINV, {"FPE_FLTINV", "invalid floating point operation"}},
    {SIGFPE, FPE_FLTSUB, {"FPE_FLTSUB", "subscript out of range"}},
};

}  // namespace

std::string_view SignalName(int signal) {
  switch (signal) {
    case SIGSEGV:
      return "SIGSEGV";
    case SIGBUS:
      return "SIGBUS";
    case SIGILL:
      return "SIGILL";
    case SIGFPE:
      return "SIGFPE";
    case SIGABRT:
      return "SIGABRT";
    default:
      return "another signal";
  }
}

SignalReason ReasonOf(int signal, int code) {
  for (const NamedCode& named : kCodes) {
    if (named.code == code && (named.signal == signal || named.signal == kAnySignal)) {
      return named.reason;
    }
  }
  return {"unknown", "unknown"};
}

}  // namespace zt
