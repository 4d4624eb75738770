// xz by liblzma.

#include <lzma.h>

#include "tools/replay/input/decoders.h"
#include "tools/replay/input/decoding_source.h"

namespace replay {
namespace {

// The strongest preset of xz needs 65 MiB to decompress; a file that asks for more than this was made to exhaust memory.
constexpr std::uint64_t kMemoryLimit = 512ULL << 20;

class XzSource : public DecodingSource {
 public:
  explicit XzSource(std::unique_ptr<ByteSource> compressed) : DecodingSource(std::move(compressed)) {
    if (lzma_stream_decoder(&stream_, kMemoryLimit, LZMA_CONCATENATED) != LZMA_OK) {
      Fail("liblzma cannot start");
    }
  }
  ~XzSource() override { lzma_end(&stream_); }

 protected:
  std::size_t ReadMore(char* buffer, std::size_t size) override {
    stream_.next_out = reinterpret_cast<std::uint8_t*>(buffer);
    stream_.avail_out = size;
    while (stream_.avail_out == size && !ended_) {
      if (stream_.avail_in == 0 && !input_ended_) {
        stream_.next_in = reinterpret_cast<const std::uint8_t*>(block().data());
        stream_.avail_in = ReadBlock();
        input_ended_ = stream_.avail_in == 0;
      }
      Check(lzma_code(&stream_, input_ended_ ? LZMA_FINISH : LZMA_RUN));
    }
    return size - stream_.avail_out;
  }

 private:
  void Check(lzma_ret result) {
    switch (result) {
      case LZMA_OK:
        return;
      case LZMA_STREAM_END:
        ended_ = true;
        return;
      case LZMA_BUF_ERROR:
        if (input_ended_) {
          Fail("the xz data are cut off: the file ends before they do");
        }
        return;
      case LZMA_MEM_ERROR:
        Fail("not enough memory to decompress");
      case LZMA_MEMLIMIT_ERROR:
        Fail("needs more than 512 MiB of memory to decompress");
      case LZMA_OPTIONS_ERROR:
        Fail("the xz data use an option that liblzma does not know");
      default:
        Fail("the xz data are damaged");
    }
  }

  lzma_stream stream_ = LZMA_STREAM_INIT;
  bool input_ended_ = false;
  bool ended_ = false;
};

}  // namespace

std::unique_ptr<ByteSource> DecodeXz(std::unique_ptr<ByteSource> source) {
  return std::make_unique<XzSource>(std::move(source));
}

}  // namespace replay
