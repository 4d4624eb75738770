#include "platform/debugger.h"

#include <cstdio>

namespace zt {

void WriteDebuggerText(std::string_view text) { static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr)); }

}  // namespace zt
