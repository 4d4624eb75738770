// What the decompressing sources share: the compressed bytes, read block by block.

#ifndef ZT_TOOLS_REPLAY_INPUT_DECODING_SOURCE_H
#define ZT_TOOLS_REPLAY_INPUT_DECODING_SOURCE_H

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tools/replay/input/call.h"
#include "tools/replay/input/peekable_source.h"

namespace replay {

class DecodingSource : public PeekableSource {
 public:
  [[nodiscard]] const std::string& name() const override { return compressed_->name(); }
  [[nodiscard]] std::uint64_t consumed() const override { return compressed_->consumed(); }
  [[nodiscard]] std::uint64_t total() const override { return compressed_->total(); }

 protected:
  explicit DecodingSource(std::unique_ptr<ByteSource> compressed)
      : compressed_(std::move(compressed)), block_(std::size_t{64} * 1024) {}

  /// Reads the next compressed bytes to the front of block(); 0 at their end.
  std::size_t ReadBlock() { return compressed_->Read(block_.data(), block_.size()); }
  [[nodiscard]] std::vector<char>& block() { return block_; }

  [[noreturn]] void Fail(const std::string& what) const { throw InputError(name(), what); }

 private:
  std::unique_ptr<ByteSource> compressed_;
  std::vector<char> block_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_DECODING_SOURCE_H
