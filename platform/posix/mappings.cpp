#include "platform/posix/mappings.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>

namespace zt {
namespace {

// Takes the text up to the next space off the line, and the spaces behind it.
std::string_view TakeWord(std::string_view& line) {
  const std::string_view word = line.substr(0, line.find(' '));
  line.remove_prefix(word.size());
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  return word;
}

template <typename Value>
bool ParseNumber(std::string_view text, int base, Value& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  return error == std::errc() && end == text.data() + text.size();
}

std::string_view WithoutFolders(std::string_view path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

// A line is "begin-end rwxp offset device inode   path".
bool ParseMapping(std::string_view line, Mapping& mapping) {
  const std::string_view range = TakeWord(line);
  const std::string_view permissions = TakeWord(line);
  TakeWord(line);
  TakeWord(line);
  const std::string_view file = TakeWord(line);
  const std::size_t dash = range.find('-');
  if (dash == std::string_view::npos || permissions.size() != 4) {
    return false;
  }
  mapping.executable = permissions[2] == 'x';
  mapping.path = line;
  return ParseNumber(range.substr(0, dash), 16, mapping.begin) && ParseNumber(range.substr(dash + 1), 16, mapping.end) &&
         ParseNumber(file, 10, mapping.file);
}

MappingReader::MappingReader() : file_(open(kMappingsFile, O_RDONLY | O_CLOEXEC)) {}

MappingReader::~MappingReader() {
  if (file_ >= 0) {
    close(file_);
  }
}

bool MappingReader::Next(Mapping& mapping) {
  std::string_view line;
  while (NextLine(line)) {
    if (ParseMapping(line, mapping)) {
      return true;
    }
  }
  return false;
}

bool MappingReader::NextLine(std::string_view& line) {
  while (true) {
    const std::string_view unread(buffer_.data() + begin_, end_ - begin_);
    if (const std::size_t length = unread.find('\n'); length != std::string_view::npos) {
      line = unread.substr(0, length);
      begin_ += length + 1;
      return true;
    }
    if (unread.size() == buffer_.size()) {  // The rest of an endless line comes as a line of its own, which is no mapping.
      line = unread;
      begin_ = end_;
      return true;
    }
    if (!Fill()) {
      return false;
    }
  }
}

bool MappingReader::Fill() {
  std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_), buffer_.begin() + static_cast<std::ptrdiff_t>(end_),
            buffer_.begin());
  end_ -= begin_;
  begin_ = 0;
  while (true) {
    const ssize_t count = read(file_, buffer_.data() + end_, buffer_.size() - end_);
    if (count > 0) {
      end_ += static_cast<std::size_t>(count);
      return true;
    }
    if (count == 0 || errno != EINTR) {
      return false;
    }
  }
}

bool FindMapping(std::uintptr_t address, Mapping& mapping) {
  MappingReader reader;
  while (reader.Next(mapping)) {
    if (address >= mapping.begin && address < mapping.end) {
      mapping.path = {};
      return true;
    }
  }
  return false;
}

void ModuleTable::Read() {
  entry_count_ = 0;
  names_used_ = 0;
  MappingReader reader;
  Mapping mapping;
  while (reader.Next(mapping)) {
    if ((mapping.file != 0 || mapping.executable) && !Add(mapping)) {
      return;
    }
  }
}

bool ModuleTable::Add(const Mapping& mapping) {
  if (entry_count_ == entries_.size()) {
    return false;
  }
  Entry entry = {mapping.begin, mapping.end, mapping.begin, mapping.file, WithoutFolders(mapping.path)};
  if (entry.name.empty()) {
    entry.name = "anonymous";
  }
  const Entry* const last = entry_count_ == 0 ? nullptr : &entries_[entry_count_ - 1];
  if (last != nullptr && mapping.file != 0 && last->file == mapping.file && last->name == entry.name) {
    entry.module_begin = last->module_begin;
    entry.name = last->name;
  } else {
    if (entry.name.size() > names_.size() - names_used_) {
      return false;
    }
    char* const copy = names_.data() + names_used_;
    names_used_ += entry.name.copy(copy, entry.name.size());
    entry.name = {copy, entry.name.size()};
  }
  entries_[entry_count_++] = entry;
  return true;
}

ModulePlace ModuleTable::Find(std::uintptr_t address) const {
  const auto end = entries_.begin() + static_cast<std::ptrdiff_t>(entry_count_);
  const auto after = std::upper_bound(entries_.begin(), end, address,
                                      [](std::uintptr_t wanted, const Entry& entry) { return wanted < entry.begin; });
  if (after == entries_.begin() || address >= std::prev(after)->end) {
    return {};
  }
  const Entry& entry = *std::prev(after);
  return {entry.name, address - entry.module_begin};
}

}  // namespace zt
