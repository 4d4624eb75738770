#include "tools/replay/input/records_reader.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

namespace replay {

bool RecordsReader::Next(Call& call) {
  if (!started_) {
    Start();
  }
  call = Call{};
  const std::size_t size = Read(reinterpret_cast<char*>(&call.record), sizeof call.record);
  if (size == 0) {
    return false;
  }
  if (size < sizeof call.record) {
    CheckLength(counts_.rows * sizeof call.record + size);
  }
  call.number = ++counts_.rows;
  return true;
}

void RecordsReader::Start() {
  started_ = true;
  if (const auto length = source_->length()) {
    CheckLength(*length);
  } else {
    CheckLength(CopyToSpool());
    std::rewind(spool_.get());
  }
}

std::uint64_t RecordsReader::CopyToSpool() {
  spool_.reset(std::tmpfile());
  if (!spool_) {
    throw InputError(source_->name(), std::string("no temporary file for the records: ") + std::strerror(errno));
  }
  std::vector<char> block(std::size_t{64} * 1024);
  std::uint64_t length = 0;
  while (const std::size_t count = source_->Read(block.data(), block.size())) {
    if (std::fwrite(block.data(), 1, count, spool_.get()) != count) {
      throw InputError(source_->name(), std::string("the temporary file for the records: ") + std::strerror(errno));
    }
    length += count;
  }
  if (std::fflush(spool_.get()) != 0) {
    throw InputError(source_->name(), std::string("the temporary file for the records: ") + std::strerror(errno));
  }
  return length;
}

// Fewer bytes than asked for only at the end.
std::size_t RecordsReader::Read(char* buffer, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
    const std::size_t count =
        spool_ ? std::fread(buffer + done, 1, size - done, spool_.get()) : source_->Read(buffer + done, size - done);
    if (count == 0) {
      break;
    }
    done += count;
  }
  return done;
}

void RecordsReader::CheckLength(std::uint64_t length) const {
  if (length % sizeof(LOG_ITEM) == 0) {
    return;
  }
  throw InputError(source_->name(), "holds " + std::to_string(length) + " bytes, which is no multiple of " +
                                        std::to_string(sizeof(LOG_ITEM)) + ": it ends amid a record");
}

}  // namespace replay
