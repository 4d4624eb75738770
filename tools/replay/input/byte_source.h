// A capture as a stream of bytes: a file or standard input, decompressed where it is compressed.

#ifndef ZT_TOOLS_REPLAY_INPUT_BYTE_SOURCE_H
#define ZT_TOOLS_REPLAY_INPUT_BYTE_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace replay {

class ByteSource {
 public:
  ByteSource() = default;
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;
  virtual ~ByteSource() = default;

  /// Reads up to `size` bytes into `buffer` and returns how many; 0 only at the end. Throws InputError.
  virtual std::size_t Read(char* buffer, std::size_t size) = 0;

  /// The first bytes of the stream, up to `size` and at most 64 KiB, without consuming them. Shorter only when the stream is.
  /// REQUIRES: nothing has been read.
  virtual std::string_view Peek(std::size_t size) = 0;

  /// The name to use in messages: the path as given, or "standard input".
  [[nodiscard]] virtual const std::string& name() const = 0;

  /// Bytes of the (possibly compressed) input consumed so far, and its whole size or 0 where that is not known: for progress.
  [[nodiscard]] virtual std::uint64_t consumed() const = 0;
  [[nodiscard]] virtual std::uint64_t total() const = 0;

  /// How many bytes the stream gives from its start to its end, where that is known without reading it: for an uncompressed
  /// regular file.
  [[nodiscard]] virtual std::optional<std::uint64_t> length() const { return std::nullopt; }
};

/// Opens `path` ("-" for standard input); .xz and .gz content is told by its first bytes and decompressed as it is read. Throws
/// InputError: a file that cannot be opened or is a folder, compressed input in a build without the library for it.
std::unique_ptr<ByteSource> OpenByteSource(const std::string& path);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_BYTE_SOURCE_H
