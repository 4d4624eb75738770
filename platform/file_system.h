// Paths, folders and files as the trace library needs them: narrow paths in the system's own form, no heap, no exceptions, so
// that all of it can be called while the process starts, ends or has crashed.

#ifndef ZT_PLATFORM_FILE_SYSTEM_H
#define ZT_PLATFORM_FILE_SYSTEM_H

#include <cstddef>
#include <cstdint>

namespace zt {

/// Bytes that a path takes at most here, its terminating NUL included. The system's own limit may be lower.
inline constexpr std::size_t kMaxPathSize = 4096;
/// What stands between a folder and what is in it.
extern const char kPathSeparator;

/// Writes the full path of the running program into `buffer` of `size` bytes, NUL included: as it last was where the file has
/// been deleted or replaced since. Returns its length; 0 when it is not known or does not fit.
std::size_t ExecutablePath(char* buffer, std::size_t size);

/// Writes `text` into `buffer` of `size` bytes, NUL included, with the values of environment variables in the place of their
/// names between percent signs; names without a value stay as they are, as do all in a program with other rights than the user
/// who starts it (set-user-id). Returns the length; 0 when it does not fit.
std::size_t ExpandEnvironment(const char* text, char* buffer, std::size_t size);

/// Makes the folders that are missing on the way to a file: all that stands before the path's last separator. False when one of
/// them cannot be made.
bool MakeFoldersFor(const char* path);

/// Deletes a file. Failures are ignored.
void DeleteFileAt(const char* path);

/// What a folder tells about a file.
struct FileFacts {
  std::uint64_t size = 0;      ///< Bytes.
  std::uint64_t modified = 0;  ///< Time of the last change in 100 ns units since 1 January 1601 UTC.
};

/// All zero when there is no such file.
FileFacts FactsOf(const char* path);

}  // namespace zt

#endif  // ZT_PLATFORM_FILE_SYSTEM_H
