#include "tools/replay/output_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <random>
#include <system_error>

namespace replay {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBufferSize = std::size_t{1} << 16U;

}  // namespace

void OutputFile::CloseUnlessStandard::operator()(std::FILE* stream) const {
  if (stream != stdout) {
    static_cast<void>(std::fclose(stream));  // Only what is discarded is closed here.
  }
}

OutputFile::OutputFile(const std::string& path) : name_(path == "-" ? "standard output" : path) {
  if (path == "-") {
    stream_.reset(stdout);
    return;
  }
  target_ = path;
  std::error_code error;
  const fs::file_status status = fs::status(target_, error);
  if (fs::is_directory(status)) {
    throw OutputError(name_, "is a folder");
  }
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    stream_.reset(std::fopen(target_.string().c_str(), "wb"));
  } else {
    OpenBeside();
  }
  if (!stream_) {
    Fail();
  }
  // Without its buffer the stream is slower, no more.
  static_cast<void>(std::setvbuf(stream_.get(), nullptr, _IOFBF, kBufferSize));
}

void OutputFile::OpenBeside() {
  std::error_code error;
  if (fs::is_symlink(target_, error)) {
    // The file that a link leads to is replaced, not the link.
    target_ = fs::weakly_canonical(target_, error);
  }
  std::random_device random;
  const fs::path beside = target_.parent_path() / fmt::format(".ztreplay-{:08x}{:08x}.tmp", random(), random());
  // Before the file is there, so that there is no moment in which an interruption leaves it.
  removal_.emplace(beside);
  stream_.reset(zt::CreateTemporaryFile(beside));
  if (stream_) {
    temporary_ = beside;
  }
}

OutputFile::~OutputFile() {
  stream_.reset();
  if (!temporary_.empty()) {
    std::error_code ignored;
    fs::remove(temporary_, ignored);
  }
}

void OutputFile::Write(std::string_view bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), stream_.get()) != bytes.size()) {
    Fail();
  }
}

void OutputFile::Commit() {
  if (std::fflush(stream_.get()) != 0) {
    Fail();
  }
  if (stream_.get() == stdout) {
    return;
  }
  if (std::fclose(stream_.release()) != 0) {
    Fail();
  }
  if (temporary_.empty()) {
    return;
  }
  std::error_code error;
  const fs::file_status former = fs::status(target_, error);
  if (fs::exists(former)) {
    fs::permissions(temporary_, former.permissions(), error);
  }
  fs::rename(temporary_, target_, error);
  if (error) {
    throw OutputError(name_, error.message());
  }
  temporary_.clear();
}

void OutputFile::Fail() const { throw OutputError(name_, std::generic_category().message(errno)); }

}  // namespace replay
