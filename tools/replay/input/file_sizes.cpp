#include "tools/replay/input/file_sizes.h"

#include <algorithm>
#include <string>

#include "tools/replay/input/ascii.h"

namespace replay {

void FileSizes::Is(std::string_view path, std::uint64_t size) { sizes_.Set(LowerCase(path), {size, true}); }

void FileSizes::ReadTo(std::string_view path, std::uint64_t end) {
  const std::string key = LowerCase(path);
  Size* size = sizes_.Find(key);
  if (size == nullptr) {
    sizes_.Set(key, {end, false});
  } else if (!size->told) {
    size->bytes = std::max(size->bytes, end);
  }
}

void FileSizes::WrittenTo(std::string_view path, std::uint64_t end) {
  const std::string key = LowerCase(path);
  if (Size* size = sizes_.Find(key)) {
    size->bytes = std::max(size->bytes, end);
  } else {
    sizes_.Set(key, {end, false});
  }
}

void FileSizes::IsAtMost(std::string_view path, std::uint64_t size) {
  if (Size* known = sizes_.Find(LowerCase(path))) {
    known->bytes = std::min(known->bytes, size);
  }
}

void FileSizes::Renamed(std::string_view from, std::string_view to) {
  const std::string from_key = LowerCase(from);
  const std::string to_key = LowerCase(to);
  if (from_key == to_key) {
    return;
  }
  if (const Size* size = sizes_.Find(from_key)) {
    sizes_.Set(to_key, Size(*size));
    sizes_.Erase(from_key);
  } else {
    sizes_.Erase(to_key);
  }
}

void FileSizes::Deleted(std::string_view path) { sizes_.Erase(LowerCase(path)); }

std::uint64_t FileSizes::ForOpen(std::string_view path) const {
  const Size* size = sizes_.Find(LowerCase(path));
  return size == nullptr ? 1 : std::max<std::uint64_t>(size->bytes, 1);
}

}  // namespace replay
