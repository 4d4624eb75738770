#include "platform/temporary_file.h"

#include <unistd.h>

#include <csignal>

#include "platform/temporary_names.h"

namespace zt {
namespace {

/// Never destroyed: a signal can come while the process ends.
TemporaryNames* names = nullptr;

/// Removes the files and ends the process by the same signal, which has its default action again.
void OnSignal(int signal) {
  names->ForEach([](const char* name) { unlink(name); });
  raise(signal);
}

TemporaryNames& Names() {
  static const bool kInstalled = [] {
    names = new TemporaryNames;
    for (const int signal : {SIGINT, SIGHUP, SIGTERM}) {
      struct sigaction action = {};
      if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_DFL) {
        action.sa_handler = OnSignal;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(signal, &action, nullptr);
      }
    }
    return true;
  }();
  static_cast<void>(kInstalled);
  return *names;
}

}  // namespace

std::FILE* CreateTemporaryFile(const std::filesystem::path& file) { return std::fopen(file.c_str(), "wbx"); }

RemovalOnInterrupt::RemovalOnInterrupt(const std::filesystem::path& file) : place_(Names().Add(file)) {}

RemovalOnInterrupt::~RemovalOnInterrupt() { Names().Remove(place_); }

}  // namespace zt
