// A program that does what its command line says, word by word, until it dies of it:
//
//   zt_crash_child DUMP SAID WORD...
//
// What it sees on the way, it adds to the file SAID, a line each: standard output also has what a debugger of the system says.

#include <windows.h>
// Needs the types of the header above.
#include <dbghelp.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string_view>

#include "platform/crash_filter.h"

namespace {

const char* dump_path = nullptr;
const char* said_path = nullptr;

void Say(const char* line) {
  if (std::FILE* const file = std::fopen(said_path, "ab"); file != nullptr) {
    std::fputs(line, file);
    std::fputs("\n", file);
    std::fclose(file);
  }
}

void WriteDump(const zt::CrashDetails& details) {
  Say("handler");
  zt::WriteCrashDump(dump_path, details);
}

LONG WINAPI ForeignFilter(EXCEPTION_POINTERS*) {
  Say("foreign");
  return EXCEPTION_CONTINUE_SEARCH;
}

HANDLE handler_runs = CreateEventA(nullptr, TRUE, FALSE, nullptr);

void NeverReturn(const zt::CrashDetails&) {
  Say("stuck");
  SetEvent(handler_runs);
  Sleep(INFINITE);
}

// By way of a variable, since compilers warn of a constant address that cannot be one.
volatile std::uintptr_t no_address = 0x10;
void WriteTo0x10() { *reinterpret_cast<volatile int*>(no_address) = 1; }

// The other thread's crash has a code of its own.
void CrashWhileHandlerRuns() {
  const auto crash = [](void*) -> DWORD {
    WaitForSingleObject(handler_runs, INFINITE);
    RaiseException(EXCEPTION_ILLEGAL_INSTRUCTION, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    return 0;
  };
  CreateThread(nullptr, 0, crash, nullptr, 0, nullptr);
  WriteTo0x10();
}

}  // namespace

int main(int argument_count, char** arguments) {
  const std::map<std::string_view, std::function<void()>> words = {
      {"install", [] { zt::InstallCrashFilter(&WriteDump); }},
      {"install-other", [] { zt::InstallCrashFilter([](const zt::CrashDetails&) { Say("other"); }); }},
      {"install-stuck", [] { zt::InstallCrashFilter(&NeverReturn); }},
      {"foreign", [] { SetUnhandledExceptionFilter(&ForeignFilter); }},
      {"remove", &zt::RemoveCrashFilter},
      {"remove-own", &zt::RemoveOwnCrashFilter},
      {"write", &WriteTo0x10},
      {"second-thread", &CrashWhileHandlerRuns},
  };
  // Nobody is there to answer the system's question about the crash.
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  // So that no dump tries to do it: Wine under qemu cannot, as it would look for the loaded libraries in a foreign process's
  // way.
  SymInitialize(GetCurrentProcess(), nullptr, FALSE);
  if (argument_count < 3) {
    return EXIT_FAILURE;
  }
  dump_path = arguments[1];
  said_path = arguments[2];
  for (int i = 3; i < argument_count; ++i) {
    words.at(arguments[i])();
  }
  return EXIT_SUCCESS;
}
