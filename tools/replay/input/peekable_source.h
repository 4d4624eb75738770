// The part of a ByteSource that all of them share: looking at the first bytes without consuming them.

#ifndef ZT_TOOLS_REPLAY_INPUT_PEEKABLE_SOURCE_H
#define ZT_TOOLS_REPLAY_INPUT_PEEKABLE_SOURCE_H

#include <cstddef>
#include <string>
#include <string_view>

#include "tools/replay/input/byte_source.h"

namespace replay {

class PeekableSource : public ByteSource {
 public:
  std::size_t Read(char* buffer, std::size_t size) final;
  std::string_view Peek(std::size_t size) final;

 protected:
  /// As Read, of the bytes that nobody has looked at yet.
  virtual std::size_t ReadMore(char* buffer, std::size_t size) = 0;

 private:
  std::string peeked_;
  std::size_t handed_out_ = 0;  // Bytes of peeked_ that Read has given.
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_PEEKABLE_SOURCE_H
