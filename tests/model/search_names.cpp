#include "tests/model/search_names.h"

#include <array>

namespace zt::model {
namespace {

// Short, so that stems are shared, are parts of each other, are empty or hold dots; with units that sort before and after the
// dot and the backslash, and the first and last units there are.
constexpr std::array<std::wstring_view, 7> kAlphabets = {
    L"ab.", L"ab.-\\", L"abc.\\", L"a.", L"a-\\. ", L"xyzabc.-/\\", std::wstring_view(L"a.\x1\xffff\\", 5)};

}  // namespace

Names::Names(std::uint32_t seed, Shape shape) : random_(seed), shape_(shape), alphabet_(kAlphabets[Below(kAlphabets.size())]) {
  longest_ = Below(20) == 0 ? 120 : 12;
  for (std::size_t length = Below(20) == 0 ? 255 : 16; length > 0; --length) {
    whole_ += L"ab."[Below(3)];
  }
}

std::wstring Names::Key() { return shape_ == Shape::kRandom ? RandomPath(6) : Path(HostileName()); }

std::wstring Names::Target(const std::vector<std::wstring>& known) {
  if (known.empty() || Below(3) != 0) {
    if (shape_ == Shape::kHostile && Below(40) == 0) {
      const std::wstring path = L"c:\\d\\" + HostileName();
      return path + std::wstring(523 - path.size(), L'a');  // As long as a record takes.
    }
    return shape_ == Shape::kRandom ? RandomPath(9) : Path(HostileName());
  }
  std::wstring target = known[Below(known.size())];
  target.insert(Below(target.size() + 1), Text(3));
  return Below(2) == 0 ? target : target + Text(3);
}

std::wstring Names::Text(std::size_t longest) {
  std::wstring text(Below(longest + 1), L' ');
  for (wchar_t& unit : text) {
    unit = alphabet_[Below(alphabet_.size())];
  }
  return text;
}

std::wstring Names::Path(const std::wstring& name) {
  switch (Below(shape_ == Shape::kRandom ? 6 : 30)) {
    case 0:
      return name;  // Often without a backslash.
    case 1:
      return L"c:\\" + name;
    case 2:
      return L"c:\\d\\e\\" + name;
    case 3:
      return Text(4) + L"\\" + name;
    default:
      return L"c:\\d\\" + name;
  }
}

std::wstring Names::HostileName() {
  switch (Below(8)) {
    case 0:
      return Letters(L'a');
    case 1:
      return Letters(L'a') + L"!";
    case 2:
      return Letters(L'.');
    case 3:
      return Letters(L'a') + L"." + Letters(L'b');
    case 4:  // One stem with many extensions.
      return L"aa." + std::to_wstring(Below(50));
    case 5:  // Dotted stems inside dotted stems.
      return Letters(L'a') + L"." + Letters(L'b') + L"." + std::to_wstring(Below(3));
    case 6:
      return L"." + Part();
    default:
      return Part();
  }
}

/// Some part of the whole.
std::wstring Names::Part() {
  const std::size_t begin = Below(whole_.size());
  return whole_.substr(begin, Below(whole_.size() - begin + 1));
}

}  // namespace zt::model
