#include "platform/temporary_file.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cerrno>
#include <cstdint>

#include "platform/temporary_names.h"

namespace zt {
namespace {

/// Never destroyed: the console's events come on a thread of their own, also while the process ends.
TemporaryNames* names = nullptr;

/// Removes the files and leaves the event to the next handler, the last of which ends the process.
BOOL WINAPI OnConsoleEvent(DWORD /*event*/) {
  names->ForEach([](const wchar_t* name) { DeleteFileW(name); });
  return FALSE;
}

TemporaryNames& Names() {
  static const bool kInstalled = [] {
    names = new TemporaryNames;
    return SetConsoleCtrlHandler(OnConsoleEvent, TRUE) != 0;
  }();
  static_cast<void>(kInstalled);
  return *names;
}

int ErrnoFor(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
      return ENOENT;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
      return EACCES;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return EEXIST;
    case ERROR_DISK_FULL:
      return ENOSPC;
    default:
      return EIO;
  }
}

}  // namespace

std::FILE* CreateTemporaryFile(const std::filesystem::path& file) {
  const HANDLE handle = CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    errno = ErrnoFor(GetLastError());
    return nullptr;
  }
  const int descriptor = _open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_BINARY);
  if (descriptor == -1) {
    CloseHandle(handle);
    return nullptr;
  }
  std::FILE* const stream = _fdopen(descriptor, "wb");
  if (stream == nullptr) {
    _close(descriptor);
  }
  return stream;
}

RemovalOnInterrupt::RemovalOnInterrupt(const std::filesystem::path& file) : place_(Names().Add(file)) {}

RemovalOnInterrupt::~RemovalOnInterrupt() { Names().Remove(place_); }

}  // namespace zt
