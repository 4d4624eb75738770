#include "platform/process_ids.h"

#include <windows.h>

namespace zt {

std::uint32_t CurrentProcessId() { return GetCurrentProcessId(); }

std::uint32_t CurrentThreadId() { return GetCurrentThreadId(); }

}  // namespace zt
