#include "tools/replay/input/peekable_source.h"

#include <algorithm>
#include <cstring>

namespace replay {

std::size_t PeekableSource::Read(char* buffer, std::size_t size) {
  if (handed_out_ == peeked_.size()) {
    return ReadMore(buffer, size);
  }
  const std::size_t count = std::min(size, peeked_.size() - handed_out_);
  std::memcpy(buffer, peeked_.data() + handed_out_, count);
  handed_out_ += count;
  return count;
}

std::string_view PeekableSource::Peek(std::size_t size) {
  constexpr std::size_t kMost = std::size_t{64} * 1024;
  size = std::min(size, kMost);
  while (peeked_.size() < size) {
    const std::size_t known = peeked_.size();
    peeked_.resize(size);
    const std::size_t count = ReadMore(peeked_.data() + known, size - known);
    peeked_.resize(known + count);
    if (count == 0) {
      break;
    }
  }
  return std::string_view(peeked_).substr(0, size);
}

}  // namespace replay
