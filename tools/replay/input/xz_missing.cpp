// In place of xz_source.cpp where the build found no liblzma.

#include "tools/replay/input/call.h"
#include "tools/replay/input/decoders.h"

namespace replay {

std::unique_ptr<ByteSource> DecodeXz(std::unique_ptr<ByteSource> source) {
  throw InputError(source->name(), "is compressed with xz, which this build cannot read: it was built without liblzma");
}

}  // namespace replay
