#include "tools/replay/input/file_source.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "tools/replay/input/call.h"

namespace replay {
namespace {

// The size of a regular file. Files that a system makes up on the fly claim a size of 0: theirs is not known.
std::optional<std::uint64_t> RegularFileSize(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) {
    return std::nullopt;
  }
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error || size == 0) {
    return std::nullopt;
  }
  return size;
}

}  // namespace

FileSource::FileSource(const std::string& path) : name_(path == "-" ? "standard input" : path) {
  if (path == "-") {
    file_.reset(stdin);
    return;
  }
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) {
    throw InputError(name_, "is a folder, not a capture");
  }
  file_.reset(std::fopen(path.c_str(), "rb"));
  if (!file_) {
    throw InputError(name_, std::string("cannot be opened: ") + std::strerror(errno));
  }
  length_ = RegularFileSize(path);
}

std::size_t FileSource::ReadMore(char* buffer, std::size_t size) {
  const std::size_t count = std::fread(buffer, 1, size, file_.get());
  if (count < size && std::ferror(file_.get()) != 0) {
    throw InputError(name_, std::string("cannot be read: ") + std::strerror(errno));
  }
  consumed_ += count;
  return count;
}

}  // namespace replay
