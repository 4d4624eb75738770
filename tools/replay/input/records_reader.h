// Binary captures: whole records, one after the other.

#ifndef ZT_TOOLS_REPLAY_INPUT_RECORDS_READER_H
#define ZT_TOOLS_REPLAY_INPUT_RECORDS_READER_H

#include <cstdint>
#include <cstdio>
#include <memory>

#include "tools/replay/input/capture_reader.h"
#include "tools/replay/input/file_source.h"

namespace replay {

/// Of a capture that ends amid a record nothing is fed. A regular file tells its length before the first record; of a pipe or a
/// compressed capture, whose length only its end tells, the first Next copies everything to a temporary file on disk.
class RecordsReader : public CaptureReader {
 public:
  explicit RecordsReader(std::unique_ptr<ByteSource> source) : source_(std::move(source)) {}

  bool Next(Call& call) override;
  [[nodiscard]] const ReadCounts& counts() const override { return counts_; }

 private:
  void Start();
  [[nodiscard]] std::uint64_t CopyToSpool();
  [[nodiscard]] std::size_t Read(char* buffer, std::size_t size);
  void CheckLength(std::uint64_t length) const;

  std::unique_ptr<ByteSource> source_;
  FileHandle spool_;  // Null where the source is read directly.
  bool started_ = false;
  ReadCounts counts_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_RECORDS_READER_H
