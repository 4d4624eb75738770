// A file that appears whole or not at all.

#ifndef ZT_TOOLS_REPLAY_OUTPUT_FILE_H
#define ZT_TOOLS_REPLAY_OUTPUT_FILE_H

#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/temporary_file.h"

namespace replay {

/// An output that cannot be written. what() is "FILE: what is wrong".
class OutputError : public std::runtime_error {
 public:
  OutputError(const std::string& file, const std::string& what) : std::runtime_error(file + ": " + what) {}
};

/// One output. A file is written under another name in the same folder and takes its own name, replacing what stood there, when
/// it is committed; without that it leaves nothing behind, also where the process is interrupted. Standard output ("-") and
/// what is no regular file, such as a device or a named pipe, are written directly.
class OutputFile {
 public:
  /// Opens the output. Throws OutputError.
  explicit OutputFile(const std::string& path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  /// Discards what was not committed.
  ~OutputFile();

  /// Appends `bytes`. Throws OutputError when that fails at once; a failure may also show at a later write or at Commit.
  void Write(std::string_view bytes);

  /// Sends everything on its way and gives the file its name. Throws OutputError. Nothing may be written afterwards.
  void Commit();

 private:
  struct CloseUnlessStandard {
    void operator()(std::FILE* stream) const;
  };

  void OpenBeside();
  [[noreturn]] void Fail() const;

  std::string name_;                               ///< For messages.
  std::filesystem::path target_;                   ///< The file's own name; empty for standard output.
  std::filesystem::path temporary_;                ///< Where it is written meanwhile; empty when it is written directly.
  std::optional<zt::RemovalOnInterrupt> removal_;  ///< Of the temporary file.
  std::unique_ptr<std::FILE, CloseUnlessStandard> stream_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_OUTPUT_FILE_H
