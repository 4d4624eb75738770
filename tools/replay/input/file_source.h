// The bytes of a file, a pipe or standard input as they are.

#ifndef ZT_TOOLS_REPLAY_INPUT_FILE_SOURCE_H
#define ZT_TOOLS_REPLAY_INPUT_FILE_SOURCE_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "tools/replay/input/peekable_source.h"

namespace replay {

/// Closes the file, but for standard input, which is not ours to close.
struct FileCloser {
  void operator()(std::FILE* file) const {
    if (file != stdin) {
      static_cast<void>(std::fclose(file));
    }
  }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

class FileSource : public PeekableSource {
 public:
  /// Opens `path`, or standard input for "-". Throws InputError: a folder, or a file that cannot be opened.
  explicit FileSource(const std::string& path);

  [[nodiscard]] const std::string& name() const override { return name_; }
  [[nodiscard]] std::uint64_t consumed() const override { return consumed_; }
  [[nodiscard]] std::uint64_t total() const override { return length_.value_or(0); }
  [[nodiscard]] std::optional<std::uint64_t> length() const override { return length_; }

 protected:
  std::size_t ReadMore(char* buffer, std::size_t size) override;

 private:
  std::string name_;
  FileHandle file_;
  std::optional<std::uint64_t> length_;
  std::uint64_t consumed_ = 0;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_FILE_SOURCE_H
