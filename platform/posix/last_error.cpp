#include "platform/last_error.h"

namespace zt {
namespace {

thread_local std::uint32_t last_error = 0;

}  // namespace

void SetLastErrorCode(ErrorCode code) { last_error = static_cast<std::uint32_t>(code); }

std::uint32_t LastErrorCode() { return last_error; }

}  // namespace zt
