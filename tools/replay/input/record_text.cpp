#include "tools/replay/input/record_text.h"

#include <utf8cpp/utf8.h>

#include <algorithm>
#include <iterator>
#include <string>

namespace replay {
namespace {

constexpr std::size_t kTargetUnits = std::size(LOG_ITEM{}.Target);
constexpr std::size_t kPathBytes = sizeof(LOG_ITEM::Path) - 1;

// Copies what fits; true when something did not.
template <typename Text>
bool CopyUnits(LOG_ITEM& record, const Text& units) {
  const std::size_t count = std::min(std::size(units), kTargetUnits);
  std::transform(std::begin(units), std::begin(units) + static_cast<std::ptrdiff_t>(count), record.Target,
                 [](auto unit) { return static_cast<ZtWideChar>(unit); });
  return std::size(units) > kTargetUnits;
}

}  // namespace

bool SetTarget(LOG_ITEM& record, std::string_view utf8) {
  const bool ascii = std::all_of(utf8.begin(), utf8.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  if (ascii) {
    return CopyUnits(record, utf8);
  }

  std::string valid;
  utf8::replace_invalid(utf8.begin(), utf8.end(), std::back_inserter(valid));
  std::u16string units;
  utf8::utf8to16(valid.begin(), valid.end(), std::back_inserter(units));
  return CopyUnits(record, units);
}

void SetPathHead(LOG_ITEM& record, std::string_view text) { text.copy(record.Path, kPathBytes); }

void SetPathTail(LOG_ITEM& record, std::string_view text) {
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  if (text.size() > kPathBytes) {
    text.remove_prefix(text.size() - kPathBytes);
    while (!text.empty() && continues(text.front())) {
      text.remove_prefix(1);
    }
  }
  text.copy(record.Path, kPathBytes);
}

}  // namespace replay
