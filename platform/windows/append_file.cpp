#include "platform/append_file.h"

#include <windows.h>

namespace zt {
namespace {

HANDLE FileOf(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

// Not by way of a stdio stream: that would read the path in the encoding of the host's locale, take locks and use the heap.
HANDLE OpenForAppending(const char* path) {
  return CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Writes all of the text unless that fails; returns the number of bytes written.
std::size_t WriteAll(HANDLE file, std::string_view text) {
  std::size_t done = 0;
  while (done < text.size()) {
    DWORD count = 0;
    // No more than the buffer's size, which fits.
    if (!WriteFile(file, text.data() + done, static_cast<DWORD>(text.size() - done), &count, nullptr) || count == 0) {
      break;
    }
    done += count;
  }
  return done;
}

}  // namespace

std::optional<std::uint64_t> AppendFile::Open(const char* path) {
  const HANDLE file = OpenForAppending(path);
  if (file == INVALID_HANDLE_VALUE) {
    return std::nullopt;
  }
  // The end stays where the position is: nobody else writes meanwhile.
  LARGE_INTEGER size = {};
  if (!SetFilePointerEx(file, {}, &size, FILE_END)) {
    CloseHandle(file);
    return std::nullopt;
  }
  handle_ = reinterpret_cast<std::intptr_t>(file);
  buffered_ = 0;
  return static_cast<std::uint64_t>(size.QuadPart);
}

std::size_t AppendFile::Append(std::string_view text) {
  std::size_t taken = 0;
  while (taken < text.size()) {
    const std::size_t count = text.copy(buffer_ + buffered_, kBufferSize - buffered_, taken);
    buffered_ += count;
    taken += count;
    if (buffered_ == kBufferSize) {
      const std::size_t written = WriteAll(FileOf(handle_), {buffer_, kBufferSize});
      buffered_ = 0;
      if (written < kBufferSize) {
        const std::size_t lost = kBufferSize - written;
        return taken > lost ? taken - lost : 0;
      }
    }
  }
  return taken;
}

void AppendFile::Close() {
  if (IsOpen()) {
    static_cast<void>(WriteAll(FileOf(handle_), {buffer_, buffered_}));
    CloseHandle(FileOf(handle_));
    handle_ = 0;
    buffered_ = 0;
  }
}

}  // namespace zt
