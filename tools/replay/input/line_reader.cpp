#include "tools/replay/input/line_reader.h"

#include <utility>

#include "tools/replay/input/call.h"

namespace replay {

LineReader::LineReader(std::unique_ptr<ByteSource> source) : source_(std::move(source)) {}

bool LineReader::Next(std::string_view& line) {
  std::size_t searched = start_;
  std::size_t end = buffer_.find('\n', searched);
  while (end == std::string::npos) {
    searched = buffer_.size() - start_;
    if (searched > kLongestLine) {
      break;
    }
    buffer_.erase(0, start_);
    start_ = 0;
    if (!ReadBlock()) {
      break;
    }
    end = buffer_.find('\n', searched);
  }
  const bool has_line_feed = end != std::string::npos;
  const std::size_t length = (has_line_feed ? end : buffer_.size()) - start_;
  if (length == 0 && !has_line_feed) {
    return false;
  }
  ++number_;
  if (length > kLongestLine) {
    Fail("the line is longer than 16 MiB");
  }
  const std::size_t size = length + (has_line_feed ? 1 : 0);
  line = std::string_view(buffer_).substr(start_, size);
  start_ += size;
  return true;
}

void LineReader::Fail(const std::string& what) const { throw InputError(name(), number_, what); }

bool LineReader::ReadBlock() {
  constexpr std::size_t kBlock = std::size_t{64} * 1024;
  const std::size_t known = buffer_.size();
  buffer_.resize(known + kBlock);
  const std::size_t count = source_->Read(buffer_.data() + known, kBlock);
  buffer_.resize(known + count);
  return count > 0;
}

}  // namespace replay
