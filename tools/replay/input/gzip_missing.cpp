// In place of gzip_source.cpp where the build found no zlib.

#include "tools/replay/input/call.h"
#include "tools/replay/input/decoders.h"

namespace replay {

std::unique_ptr<ByteSource> DecodeGzip(std::unique_ptr<ByteSource> source) {
  throw InputError(source->name(), "is compressed with gzip, which this build cannot read: it was built without zlib");
}

}  // namespace replay
