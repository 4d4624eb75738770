#include <cstddef>
#include <limits>
#include <string_view>

#include "tests/model/model_engine.h"

namespace zt::model {

std::wstring Lower(std::wstring text) {
  for (wchar_t& unit : text) {
    if (unit >= L'A' && unit <= L'Z') {
      unit = static_cast<wchar_t>(unit - L'A' + L'a');
    }
  }
  return text;
}

std::wstring TargetOf(const LOG_ITEM& log) {
  std::wstring target;
  for (const ZtWideChar unit : log.Target) {
    if (unit == 0) {
      break;
    }
    target.push_back(static_cast<wchar_t>(unit));
  }
  return target;
}

std::int32_t ReadNumber(const std::wstring& text) {
  constexpr std::wstring_view kSpace = L" \t\n\v\f\r";
  std::size_t i = 0;
  while (i < text.size() && kSpace.find(text[i]) != std::wstring_view::npos) {
    ++i;
  }
  const bool negative = i < text.size() && text[i] == L'-';
  if (i < text.size() && (text[i] == L'-' || text[i] == L'+')) {
    ++i;
  }
  std::int64_t value = 0;
  for (; i < text.size() && text[i] >= L'0' && text[i] <= L'9'; ++i) {
    value = value * 10 + (negative ? -(text[i] - L'0') : text[i] - L'0');
    if (value > std::numeric_limits<std::int32_t>::max()) {
      return std::numeric_limits<std::int32_t>::max();
    }
    if (value < std::numeric_limits<std::int32_t>::min()) {
      return std::numeric_limits<std::int32_t>::min();
    }
  }
  return static_cast<std::int32_t>(value);
}

}  // namespace zt::model
