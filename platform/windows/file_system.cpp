#include "platform/file_system.h"

#include <windows.h>
// After windows.h, whose types it uses.
#include <dbghelp.h>

namespace zt {

const char kPathSeparator = '\\';

std::size_t ExecutablePath(char* buffer, std::size_t size) {
  const DWORD length = GetModuleFileNameA(nullptr, buffer, static_cast<DWORD>(size));
  return length < size ? length : 0;
}

std::size_t ExpandEnvironment(const char* text, char* buffer, std::size_t size) {
  // The count returned includes the NUL, or is what would have been needed.
  const DWORD needed = ExpandEnvironmentStringsA(text, buffer, static_cast<DWORD>(size));
  return needed == 0 || needed > size ? 0 : needed - 1;
}

bool MakeFoldersFor(const char* path) { return MakeSureDirectoryPathExists(path) != FALSE; }

void DeleteFileAt(const char* path) { static_cast<void>(DeleteFileA(path)); }

FileFacts FactsOf(const char* path) {
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (!GetFileAttributesExA(path, GetFileExInfoStandard, &data)) {
    return {};
  }
  return {static_cast<std::uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow,
          static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32 | data.ftLastWriteTime.dwLowDateTime};
}

}  // namespace zt
