#include "engine/files/path_text.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "engine/paths.h"
#include "engine/text.h"

namespace zt {

PathText::PathText(std::u16string_view lower, std::u16string_view path) {
  if (path.empty()) {
    return;
  }
  const bool has_upper = !SameUnits(lower, path);
  const std::size_t bits = has_upper ? (path.size() + 7) / 8 : 0;
  text_ = static_cast<Text*>(::operator new(sizeof(Text) + path.size() * sizeof(char16_t) + bits));
  *text_ = {1, static_cast<std::uint32_t>(path.size()), has_upper};
  std::memcpy(text_->units(), lower.data(), path.size() * sizeof(char16_t));
  for (std::size_t byte = 0; byte < bits; ++byte) {
    unsigned upper = 0;
    for (std::size_t unit = 8 * byte; unit < std::min(8 * byte + 8, path.size()); ++unit) {
      upper |= (IsUpper(path[unit]) ? 1U : 0U) << unit % 8;
    }
    text_->upper_bits()[byte] = static_cast<unsigned char>(upper);
  }
}

std::wstring PathText::Wide() const {
  std::wstring wide(Lower().size(), L'\0');
  for (std::size_t unit = 0; unit < wide.size(); ++unit) {
    wide[unit] = static_cast<wchar_t>(text_->IsUpper(unit) ? ToUpper(text_->units()[unit]) : text_->units()[unit]);
  }
  return wide;
}

std::uint64_t PathText::Hash(const TextHash& hash) const noexcept {
  std::uint64_t value = hash(Lower());
  for (std::size_t unit = 0; unit < Lower().size() && text_->has_upper; ++unit) {
    if (text_->IsUpper(unit)) {
      const auto place = static_cast<char16_t>(unit);
      value = hash.Append(value, {&place, 1});
    }
  }
  return value;
}

bool operator==(const PathText& a, const PathText& b) noexcept {
  if (a.text_ == b.text_) {
    return true;
  }
  if (!SameUnits(a.Lower(), b.Lower())) {
    return false;
  }
  for (std::size_t unit = 0; unit < a.Lower().size(); ++unit) {
    if (a.text_->IsUpper(unit) != b.text_->IsUpper(unit)) {
      return false;
    }
  }
  return true;
}

}  // namespace zt
