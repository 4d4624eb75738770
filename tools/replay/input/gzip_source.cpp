// gzip by zlib.

#include <zlib.h>

#include <algorithm>
#include <limits>

#include "tools/replay/input/decoders.h"
#include "tools/replay/input/decoding_source.h"

namespace replay {
namespace {

class GzipSource : public DecodingSource {
 public:
  explicit GzipSource(std::unique_ptr<ByteSource> compressed) : DecodingSource(std::move(compressed)) {
    constexpr int kGzipOnly = 16 + MAX_WBITS;
    if (inflateInit2(&stream_, kGzipOnly) != Z_OK) {
      Fail("zlib cannot start");
    }
  }
  ~GzipSource() override { inflateEnd(&stream_); }

 protected:
  std::size_t ReadMore(char* buffer, std::size_t size) override {
    const auto room = static_cast<uInt>(std::min<std::size_t>(size, std::numeric_limits<uInt>::max()));
    stream_.next_out = reinterpret_cast<Bytef*>(buffer);
    stream_.avail_out = room;
    while (stream_.avail_out == room && EnsureInput()) {
      if (between_members_ && !EnterMember()) {
        continue;
      }
      Inflate();
    }
    return room - stream_.avail_out;
  }

 private:
  // False at the end of a whole file.
  bool EnsureInput() {
    if (stream_.avail_in > 0) {
      return true;
    }
    stream_.next_in = reinterpret_cast<Bytef*>(block().data());
    stream_.avail_in = static_cast<uInt>(ReadBlock());
    if (stream_.avail_in > 0) {
      return true;
    }
    if (!between_members_) {
      Fail("the gzip data are cut off: the file ends before they do");
    }
    return false;
  }

  // Members may follow each other; zeros that pad the file to a block are passed over.
  bool EnterMember() {
    if (*stream_.next_in == 0 && padding_allowed_) {
      ++stream_.next_in;
      --stream_.avail_in;
      return false;
    }
    if (inflateReset(&stream_) != Z_OK) {
      Fail("zlib cannot start");
    }
    between_members_ = false;
    return true;
  }

  void Inflate() {
    const int result = inflate(&stream_, Z_NO_FLUSH);
    if (result == Z_STREAM_END) {
      between_members_ = true;
      padding_allowed_ = true;
    } else if (result == Z_MEM_ERROR) {
      Fail("not enough memory to decompress");
    } else if (result != Z_OK && result != Z_BUF_ERROR) {
      Fail(std::string("the gzip data are damaged: ") + (stream_.msg != nullptr ? stream_.msg : "unknown fault"));
    }
  }

  z_stream stream_ = {};
  bool between_members_ = true;
  bool padding_allowed_ = false;  // Not before the first member.
};

}  // namespace

std::unique_ptr<ByteSource> DecodeGzip(std::unique_ptr<ByteSource> source) {
  return std::make_unique<GzipSource>(std::move(source));
}

}  // namespace replay
