// The calling thread's last error, as the system's callers know it.

#ifndef ZT_PLATFORM_LAST_ERROR_H
#define ZT_PLATFORM_LAST_ERROR_H

#include <cstdint>

namespace zt {

/// The errors that the trace library reports. The values are Windows's.
enum class ErrorCode : std::uint32_t { kNotReady = 21, kInvalidParameter = 87, kAlreadyExists = 183 };

/// Leaves the code as the calling thread's last error: on Windows by SetLastError. Elsewhere, where errno has no such values,
/// it is kept for LastErrorCode alone.
void SetLastErrorCode(ErrorCode code);

/// The calling thread's last error.
std::uint32_t LastErrorCode();

}  // namespace zt

#endif  // ZT_PLATFORM_LAST_ERROR_H
