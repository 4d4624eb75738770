#include "platform/debugger.h"

#include <unistd.h>

#include <cstdio>

#include "platform/posix/crash_output.h"

namespace zt {

void WriteDebuggerText(std::string_view text) { static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr)); }

void WriteDebuggerTextInCrash(std::string_view text) { WriteWithoutWaiting(STDERR_FILENO, text); }

}  // namespace zt
