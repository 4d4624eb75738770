#include "trace/build_stamp.h"

// Made by the build.
#include "build_stamp_text.h"

namespace zt {

const char* const kBuildStamp = kBuildStampText;

}  // namespace zt
