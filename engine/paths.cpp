#include "engine/paths.h"

#include <cstddef>

namespace zt {

std::u16string_view Folder(std::u16string_view path) { return path.substr(0, path.rfind(u'\\')); }

std::u16string_view Name(std::u16string_view path) {
  const std::size_t last = path.rfind(u'\\');
  return last == std::u16string_view::npos ? path : path.substr(last + 1);
}

std::u16string_view Stem(std::u16string_view name) { return name.substr(0, name.rfind(u'.')); }

std::u16string_view LastExtension(std::u16string_view name) {
  const std::size_t dot = name.rfind(u'.');
  return dot == std::u16string_view::npos ? name : name.substr(dot + 1);
}

std::u16string_view AfterFirstDot(std::u16string_view name) {
  const std::size_t dot = name.find(u'.');
  return dot == std::u16string_view::npos ? name : name.substr(dot + 1);
}

std::u16string_view DottedExtension(std::u16string_view name) {
  const std::u16string_view text = UpToZero(name);
  for (std::size_t place = text.size(); place-- > 0;) {
    if (text[place] == u'.') {
      return text.substr(place);
    }
    if (text[place] == u' ' || text[place] == u'\\') {
      break;
    }
  }
  return {};
}

std::u16string_view FileNamePart(std::u16string_view path) {
  const std::u16string_view text = UpToZero(path);
  for (std::size_t next = text.size(); next-- > 1;) {
    const char16_t separator = text[next - 1];
    const bool separates = separator == u'\\' || separator == u'/' || separator == u':';
    if (separates && text[next] != u'\\' && text[next] != u'/') {
      return text.substr(next);
    }
  }
  return text;
}

std::u16string_view UpToZero(std::u16string_view text) { return text.substr(0, text.find(u'\0')); }

}  // namespace zt
