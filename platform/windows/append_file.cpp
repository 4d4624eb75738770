#include "platform/append_file.h"

#include <share.h>

#include <cstdio>

namespace zt {
namespace {

std::FILE* StreamOf(std::intptr_t handle) { return reinterpret_cast<std::FILE*>(handle); }

}  // namespace

std::optional<std::uint64_t> AppendFile::Open(const char* path) {
  std::FILE* const stream = _fsopen(path, "a+b", _SH_DENYWR);
  if (stream == nullptr) {
    return std::nullopt;
  }
  static_cast<void>(std::setvbuf(stream, buffer_, _IOFBF, kBufferSize));
  handle_ = reinterpret_cast<std::intptr_t>(stream);
  const std::int64_t size = _fseeki64(stream, 0, SEEK_END) == 0 ? _ftelli64(stream) : -1;
  if (size < 0) {
    Close();
    return std::nullopt;
  }
  return static_cast<std::uint64_t>(size);
}

std::size_t AppendFile::Append(std::string_view text) { return std::fwrite(text.data(), 1, text.size(), StreamOf(handle_)); }

void AppendFile::Close() {
  if (IsOpen()) {
    static_cast<void>(std::fclose(StreamOf(handle_)));
    handle_ = 0;
  }
}

}  // namespace zt
