#include "tools/replay/input/byte_source.h"

#include <string_view>
#include <utility>

#include "tools/replay/input/decoders.h"
#include "tools/replay/input/file_source.h"

namespace replay {

std::unique_ptr<ByteSource> OpenByteSource(const std::string& path) {
  using namespace std::string_view_literals;
  constexpr std::string_view kGzipMagic = "\x1f\x8b";
  constexpr std::string_view kXzMagic = "\xfd\x37zXZ\0"sv;

  std::unique_ptr<ByteSource> source = std::make_unique<FileSource>(path);
  if (source->Peek(kGzipMagic.size()) == kGzipMagic) {
    return DecodeGzip(std::move(source));
  }
  if (source->Peek(kXzMagic.size()) == kXzMagic) {
    return DecodeXz(std::move(source));
  }
  return source;
}

}  // namespace replay
