#include "platform/last_error.h"

#include <windows.h>

namespace zt {

void SetLastErrorCode(ErrorCode code) { SetLastError(static_cast<DWORD>(code)); }

std::uint32_t LastErrorCode() { return GetLastError(); }

}  // namespace zt
