// Text that is kept rather than worked with.

#ifndef ZTENG_ZT_TEXT_H
#define ZTENG_ZT_TEXT_H

#include <algorithm>
#include <string>
#include <string_view>

/// UTF-16 text in two bytes a unit on every system: a wide string takes four where wchar_t has them, and a process keeps a path
/// for each file that it touched.
class ZtText {
 public:
  ZtText() = default;
  explicit ZtText(std::wstring_view text) : units_(text.begin(), text.end()) {}
  /// Throws std::bad_alloc with the text unchanged.
  ZtText& operator=(std::wstring_view text) {
    units_ = std::u16string(text.begin(), text.end());
    return *this;
  }

  void clear() noexcept { units_.clear(); }
  [[nodiscard]] bool empty() const noexcept { return units_.empty(); }
  /// The units, valid until the text is changed.
  [[nodiscard]] std::u16string_view Units() const noexcept { return units_; }
  /// The text as a wide string, one element a unit.
  [[nodiscard]] std::wstring Wide() const { return {units_.begin(), units_.end()}; }

  friend bool operator==(const ZtText&, const ZtText&) = default;
  friend bool operator==(const ZtText& text, std::wstring_view wide) {
    return std::equal(text.units_.begin(), text.units_.end(), wide.begin(), wide.end(),
                      [](char16_t unit, wchar_t other) { return static_cast<wchar_t>(unit) == other; });
  }

 private:
  std::u16string units_;
};

#endif  // ZTENG_ZT_TEXT_H
