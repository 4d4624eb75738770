// Decompression while reading. Each function has two bodies, chosen by the build: one that decompresses, and one for a build
// without the library, which says so.

#ifndef ZT_TOOLS_REPLAY_INPUT_DECODERS_H
#define ZT_TOOLS_REPLAY_INPUT_DECODERS_H

#include <memory>

#include "tools/replay/input/byte_source.h"

namespace replay {

/// The content of `source`, a gzip file of one or more members. Damage and truncation throw InputError from Read, as does, from
/// the function itself, a build without zlib.
std::unique_ptr<ByteSource> DecodeGzip(std::unique_ptr<ByteSource> source);

/// The content of `source`, an xz file of one or more streams. Errors as above.
std::unique_ptr<ByteSource> DecodeXz(std::unique_ptr<ByteSource> source);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_DECODERS_H
