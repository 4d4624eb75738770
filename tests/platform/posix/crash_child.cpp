// A program that does what its command line says, word by word, until it dies of it:
//
//   zt_crash_child REPORT WORD...
//
// What it sees on the way, it says on standard output, a line each. main() lists the words.

#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <string_view>
#include <thread>

#include "platform/crash_filter.h"
#include "platform/file_system.h"
#include "platform/posix/crash_details.h"
#include "platform/posix/crash_registers.h"
#include "platform/posix/report_writer.h"
#include "tests/platform/posix/crash_instructions.h"

// What the sanitizers' libraries ask for, where they are linked: they shall leave the signals alone, and make no alternate
// stack.
#define ZT_OPTIONS_OF(sanitizer)                                                                             \
  extern "C" [[gnu::visibility("default")]] const char* __##sanitizer##_default_options();                   \
  const char* __##sanitizer##_default_options() {                                                            \
    return "handle_segv=0:handle_sigbus=0:handle_sigill=0:handle_sigfpe=0:handle_abort=0:use_sigaltstack=0"; \
  }
ZT_OPTIONS_OF(asan)
ZT_OPTIONS_OF(ubsan)
ZT_OPTIONS_OF(tsan)

namespace {

using zt::ReportWriter;

const char* report_path = nullptr;
sem_t handler_runs;

constexpr std::array kSignals = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};

void SayThread(std::string_view word) {
  ReportWriter out(STDOUT_FILENO);
  out.Text(word);
  out.Text(" ");
  out.Number(gettid());
  out.Text("\n");
}

void SayNumber(std::string_view word, std::int64_t number) {
  ReportWriter out(STDOUT_FILENO);
  out.Text(word);
  out.Text(" ");
  out.Number(number);
  out.Text("\n");
}

// All by which two handlers can tell that they were called for the same crash.
void SaySignal(std::string_view word, int signal, const siginfo_t& info, const ucontext_t& context) {
  ReportWriter out(STDOUT_FILENO);
  out.Text(word);
  out.Text(" ");
  out.Number(signal);
  out.Text(" ");
  out.Number(info.si_code);
  out.Text(" ");
  out.Hex(reinterpret_cast<std::uintptr_t>(info.si_addr));  // Shares its place with the sender's ids.
  out.Text(" ");
  out.Hex(zt::RegistersOf(context).program_counter);
  out.Text("\n");
}

// Needs as much stack as a handler may.
void UseStack() {
  std::array<volatile char, 48 * 1024> room;
  for (volatile char& byte : room) {
    byte = 1;
  }
}

void WriteReport(const zt::CrashDetails& details) {
  SaySignal("handler", details.signal, details.info, details.context);
  UseStack();
  zt::WriteCrashDump(report_path, details);
  errno = EIO;
}

void SayOther(const zt::CrashDetails&) { SayThread("other"); }

void Abort(const zt::CrashDetails&) {
  SayThread("aborting");
  std::abort();
}

void Fault(const zt::CrashDetails&) {
  SayThread("faulting");
  zt::testing::WriteTo0x10();
}

void NeverReturn(const zt::CrashDetails&) {
  SayThread("stuck");
  sem_post(&handler_runs);
  while (true) {
    pause();
  }
}

void SetAction(int signal, void (*handler)(int, siginfo_t*, void*)) {
  struct sigaction action = {};
  action.sa_sigaction = handler;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  sigaction(signal, &action, nullptr);
}

void OnPreviousSignal(int signal, siginfo_t* info, void* context) {
  SaySignal("previous", signal, *info, *static_cast<const ucontext_t*>(context));
  if (info->si_code > 0) {
    std::signal(signal, SIG_DFL);
  }
}

// An action that was installed over the filter's and passes the signal on by a call.
struct sigaction passed_on;
void OnForeignSignal(int signal, siginfo_t* info, void* context) {
  SaySignal("foreign", signal, *info, *static_cast<const ucontext_t*>(context));
  passed_on.sa_sigaction(signal, info, context);
}

void InstallForeignAction() {
  sigaction(SIGSEGV, nullptr, &passed_on);
  SetAction(SIGSEGV, &OnForeignSignal);
}

void InstallPreviousActions() {
  for (const int signal : kSignals) {
    SetAction(signal, &OnPreviousSignal);
  }
}

[[gnu::noinline]] void Crash() { zt::testing::WriteTo0x10(); }

// The crash that most tests use: with a caller, and a known value on the stack.
[[gnu::noinline]] void CallCrash() {
  volatile std::uint64_t mark = 0x7a746d61726b3031;
  Crash();
  SayNumber("mark", static_cast<std::int64_t>(mark));
}

// A file's mapping that the file no longer fills.
void ReadBeyondFile() {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const int file = memfd_create("short", MFD_CLOEXEC);
  if (ftruncate(file, static_cast<off_t>(page)) != 0) {
    return;
  }
  const auto* const bytes = static_cast<volatile char*>(mmap(nullptr, page, PROT_READ, MAP_SHARED, file, 0));
  if (ftruncate(file, 0) == 0) {
    SayNumber("byte", bytes[0]);
  }
}

std::atomic<bool> go_deeper = true;

[[gnu::noinline]] int Recurse(int depth) {
  volatile char frame[512] = {};
  frame[depth % 512] = 1;
  return go_deeper ? Recurse(depth + 1) + frame[0] : depth;
}

void OverflowStack() {
  const rlimit one_mebibyte = {1 << 20, RLIM_INFINITY};
  setrlimit(RLIMIT_STACK, &one_mebibyte);
  SayNumber("depth", Recurse(0));
}

void CrashOnThread() {
  std::thread([] {
    pthread_setname_np(pthread_self(), "worker \n 7");
    SayThread("thread");
    CallCrash();
  }).join();
}

void CrashOnTwoThreads() {
  pthread_barrier_t barrier;
  pthread_barrier_init(&barrier, nullptr, 2);
  std::thread other([&] {
    pthread_barrier_wait(&barrier);
    CallCrash();
  });
  pthread_barrier_wait(&barrier);
  CallCrash();
  other.join();
}

void CrashWhileHandlerRuns() {
  std::thread other([] {
    while (sem_wait(&handler_runs) != 0) {
    }
    zt::testing::RunIllegalInstruction();
  });
  CallCrash();
  other.join();
}

// Lets the signal be handled, and goes on.
void RaiseFpe() {
  errno = ENOTTY;
  raise(SIGFPE);
  SayNumber("errno", errno);
}

void WaitForSignal() {
  SayThread("ready");
  while (true) {
    pause();
  }
}

void SayWhereProgramBegins() {
  Dl_info info = {};
  dladdr(reinterpret_cast<const void*>(&CallCrash), &info);
  ReportWriter out(STDOUT_FILENO);
  out.Text("base ");
  out.Hex(reinterpret_cast<std::uintptr_t>(info.dli_fbase));
  out.Text("\n");
}

void SayProgram() {
  std::array<char, zt::kMaxPathSize> path = {};
  zt::ExecutablePath(path.data(), path.size());
  ReportWriter out(STDOUT_FILENO);
  out.Text("program ");
  out.Text(path.data());
  out.Text("\n");
}

}  // namespace

int main(int argument_count, char** arguments) {
  const std::map<std::string_view, std::function<void()>> words = {
      // What is in place before the filter, and after it.
      {"previous", &InstallPreviousActions},
      {"ignore-fpe", [] { std::signal(SIGFPE, SIG_IGN); }},
      {"foreign", &InstallForeignAction},
      // The filter, with handlers of various manners.
      {"install", [] { zt::InstallCrashFilter(&WriteReport); }},
      {"install-other", [] { zt::InstallCrashFilter(&SayOther); }},
      {"install-aborting", [] { zt::InstallCrashFilter(&Abort); }},
      {"install-faulting", [] { zt::InstallCrashFilter(&Fault); }},
      {"install-stuck", [] { zt::InstallCrashFilter(&NeverReturn); }},
      {"install-on-thread", [] { std::thread([] { zt::InstallCrashFilter(&WriteReport); }).join(); }},
      {"prepare", &zt::PrepareThreadForCrashes},
      {"remove", &zt::RemoveCrashFilter},
      {"remove-own", &zt::RemoveOwnCrashFilter},
      // What happens then.
      {"say-base", &SayWhereProgramBegins},
      {"say-program", &SayProgram},
      {"delete-program", [arguments] { unlink(arguments[0]); }},
      {"write", &CallCrash},
      {"bus", &ReadBeyondFile},
      {"illegal", &zt::testing::RunIllegalInstruction},
      {"divide", &zt::testing::DivideByZero},
      {"abort", [] { std::abort(); }},
      {"overflow", &OverflowStack},
      {"thread", &CrashOnThread},
      {"two-threads", &CrashOnTwoThreads},
      {"second-thread", &CrashWhileHandlerRuns},
      {"raise-fpe", &RaiseFpe},
      {"wait", &WaitForSignal},
  };
  const rlimit no_core = {0, 0};
  setrlimit(RLIMIT_CORE, &no_core);
  sem_init(&handler_runs, 0, 0);
  if (argument_count < 2) {
    return EXIT_FAILURE;
  }
  report_path = arguments[1];
  for (int i = 2; i < argument_count; ++i) {
    words.at(arguments[i])();
  }
  return EXIT_SUCCESS;
}
