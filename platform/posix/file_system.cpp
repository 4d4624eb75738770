#include "platform/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/clock.h"

namespace zt {
namespace {

// Appends to a buffer that must not overflow; once it would, it has failed for good.
class PathBuilder {
 public:
  PathBuilder(char* buffer, std::size_t size) : buffer_(buffer), size_(size) {}

  void Append(std::string_view text) {
    fits_ = fits_ && text.size() < size_ - length_;
    if (fits_) {
      length_ += text.copy(buffer_ + length_, text.size());
      buffer_[length_] = '\0';
    }
  }
  [[nodiscard]] std::size_t Length() const { return fits_ ? length_ : 0; }

 private:
  char* buffer_;
  std::size_t size_;
  std::size_t length_ = 0;
  bool fits_ = true;
};

// The value of the variable whose name this is, null without one, and in a program that has other rights than its user.
// REQUIRES: `name` fits a path.
const char* ValueOf(std::string_view name) {
  char terminated[kMaxPathSize];
  if (name.empty() || name.size() >= sizeof terminated) {
    return nullptr;
  }
  terminated[name.copy(terminated, name.size())] = '\0';
  return secure_getenv(terminated);
}

bool IsFolder(const char* path) {
  struct stat facts = {};
  return stat(path, &facts) == 0 && S_ISDIR(facts.st_mode);
}

constexpr const char kProgramLink[] = "/proc/self/exe";

// The mark that the system puts after the path of a program whose file is gone.
constexpr std::string_view kDeletedMark = " (deleted)";

// Whether the path leads to the very file that runs: then what looks like the mark belongs to its name.
bool LeadsToProgram(const char* path) {
  struct stat program = {};
  struct stat file = {};
  return stat(kProgramLink, &program) == 0 && stat(path, &file) == 0 && program.st_dev == file.st_dev &&
         program.st_ino == file.st_ino;
}

}  // namespace

const char kPathSeparator = '/';

std::size_t ExecutablePath(char* buffer, std::size_t size) {
  const ssize_t length = readlink(kProgramLink, buffer, size);
  if (length <= 0 || static_cast<std::size_t>(length) >= size) {
    return 0;
  }
  std::string_view path(buffer, static_cast<std::size_t>(length));
  buffer[path.size()] = '\0';
  if (path.ends_with(kDeletedMark) && !LeadsToProgram(buffer)) {
    path.remove_suffix(kDeletedMark.size());
    buffer[path.size()] = '\0';
  }
  return path.size();
}

std::size_t ExpandEnvironment(const char* text, char* buffer, std::size_t size) {
  PathBuilder out(buffer, size);
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t end = rest.front() == '%' ? rest.find('%', 1) : std::string_view::npos;
    const char* const value = end == std::string_view::npos ? nullptr : ValueOf(rest.substr(1, end - 1));
    const std::size_t taken = value != nullptr ? end + 1 : std::min(rest.find('%', 1), rest.size());
    out.Append(value != nullptr ? std::string_view(value) : rest.substr(0, taken));
    rest.remove_prefix(taken);
  }
  return out.Length();
}

bool MakeFoldersFor(const char* path) {
  char folder[kMaxPathSize];
  if (std::strlen(path) >= sizeof folder) {
    return false;
  }
  std::strcpy(folder, path);
  for (char* slash = std::strchr(folder + 1, '/'); slash != nullptr; slash = std::strchr(slash + 1, '/')) {
    *slash = '\0';
    // A folder that is there may lie where this process could not make one, so the answer is looked up.
    if (mkdir(folder, S_IRWXU | S_IRGRP | S_IXGRP | S_IROTH | S_IXOTH) != 0 && !IsFolder(folder)) {
      return false;
    }
    *slash = '/';
  }
  return true;
}

void DeleteFileAt(const char* path) { static_cast<void>(unlink(path)); }

FileFacts FactsOf(const char* path) {
  struct stat facts = {};
  if (stat(path, &facts) != 0) {
    return {};
  }
  return {static_cast<std::uint64_t>(facts.st_size), kUnixEpochAsFileTime +
                                                         static_cast<std::uint64_t>(facts.st_mtim.tv_sec) * kFileTimePerSecond +
                                                         static_cast<std::uint64_t>(facts.st_mtim.tv_nsec) / 100};
}

}  // namespace zt
