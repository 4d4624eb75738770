#include "trace/build_stamp.h"

namespace zt {

const char* const kBuildStamp = ZT_BUILD_STAMP;

}  // namespace zt
