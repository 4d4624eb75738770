// Files under a name of their own until they are finished, which an interrupted process does not leave behind.

#ifndef ZT_PLATFORM_TEMPORARY_FILE_H
#define ZT_PLATFORM_TEMPORARY_FILE_H

#include <cstddef>
#include <cstdio>
#include <filesystem>

namespace zt {

/// Creates `file` for writing. Null, with errno set, where that fails or the file exists. On Windows the file can be removed
/// while it is open, as it always can elsewhere.
std::FILE* CreateTemporaryFile(const std::filesystem::path& file);

/// While it lives, an interruption removes `file` before it ends the process: Ctrl-C, a terminal that closes, a request to end
/// (SIGINT, SIGHUP and SIGTERM; the console's events on Windows). The process then ends as it would have without this. Signals
/// that are ignored, or that somebody handles already, stay so.
///
/// Of files beyond the eighth at the same time nothing is removed.
class RemovalOnInterrupt {
 public:
  explicit RemovalOnInterrupt(const std::filesystem::path& file);
  RemovalOnInterrupt(const RemovalOnInterrupt&) = delete;
  RemovalOnInterrupt& operator=(const RemovalOnInterrupt&) = delete;
  ~RemovalOnInterrupt();

 private:
  std::size_t place_;  ///< Among the files to remove; beyond the last where there was none left.
};

}  // namespace zt

#endif  // ZT_PLATFORM_TEMPORARY_FILE_H
