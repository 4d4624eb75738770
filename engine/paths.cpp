#include "engine/paths.h"

#include <algorithm>

namespace zt {

std::wstring_view Folder(std::wstring_view path) { return path.substr(0, path.rfind(L'\\')); }

std::wstring_view Name(std::wstring_view path) {
  const std::size_t last = path.rfind(L'\\');
  return last == std::wstring_view::npos ? path : path.substr(last + 1);
}

std::wstring_view Stem(std::wstring_view name) { return name.substr(0, name.rfind(L'.')); }

std::wstring_view LastExtension(std::wstring_view name) {
  const std::size_t dot = name.rfind(L'.');
  return dot == std::wstring_view::npos ? name : name.substr(dot + 1);
}

std::wstring_view AfterFirstDot(std::wstring_view name) {
  const std::size_t dot = name.find(L'.');
  return dot == std::wstring_view::npos ? name : name.substr(dot + 1);
}

std::wstring_view DottedExtension(std::wstring_view name) {
  const std::wstring_view text = UpToZero(name);
  const std::size_t stop = text.find_last_of(L"\\ .");
  return stop == std::wstring_view::npos || text[stop] != L'.' ? std::wstring_view() : text.substr(stop);
}

std::wstring_view FileNamePart(std::wstring_view path) {
  const std::wstring_view text = UpToZero(path);
  for (std::size_t next = text.size(); next-- > 1;) {
    const wchar_t separator = text[next - 1];
    const bool separates = separator == L'\\' || separator == L'/' || separator == L':';
    if (separates && text[next] != L'\\' && text[next] != L'/') {
      return text.substr(next);
    }
  }
  return text;
}

std::wstring_view UpToZero(std::wstring_view text) { return text.substr(0, text.find(L'\0')); }

std::size_t CommonPrefix(std::wstring_view a, std::wstring_view b) {
  return static_cast<std::size_t>(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
}

namespace {

wchar_t ToLower(wchar_t unit) { return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + (L'a' - L'A')) : unit; }

}  // namespace

std::wstring ToLower(std::wstring_view text) {
  std::wstring lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](wchar_t unit) { return ToLower(unit); });
  return lower;
}

}  // namespace zt
