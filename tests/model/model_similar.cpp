#include "tests/model/model_similar.h"

#include <cstddef>

namespace zt::model {
namespace {

constexpr std::size_t kNone = std::wstring::npos;

std::wstring FolderOf(const std::wstring& path) {
  const std::size_t pos = path.rfind(L'\\');
  return pos == kNone ? path : path.substr(0, pos);
}

std::wstring NameOf(const std::wstring& path) {
  const std::size_t pos = path.rfind(L'\\');
  return pos == kNone ? path : path.substr(pos + 1);
}

std::wstring StemOf(const std::wstring& name) {
  const std::size_t pos = name.rfind(L'.');
  return pos == kNone ? name : name.substr(0, pos);
}

std::wstring AfterLastDot(const std::wstring& name) {
  const std::size_t pos = name.rfind(L'.');
  return pos == kNone ? name : name.substr(pos + 1);
}

std::wstring AfterFirstDot(const std::wstring& name) {
  const std::size_t pos = name.find(L'.');
  return pos == kNone ? name : name.substr(pos + 1);
}

std::wstring UpToZero(const std::wstring& text) { return text.substr(0, text.find(L'\0')); }

/// From the last dot on that neither a space nor a "\" follows; empty when there is none.
std::wstring DottedExtensionOf(const std::wstring& name) {
  const std::wstring text = UpToZero(name);
  const std::size_t dot = text.rfind(L'.');
  if (dot == kNone || text.find(L' ', dot) != kNone || text.find(L'\\', dot) != kNone) {
    return L"";
  }
  return text.substr(dot);
}

bool Has(const std::wstring& text, const std::wstring& part) { return text.find(part) != kNone; }

/// True when `diff` is the difference that was learned before; otherwise learns it.
bool KnownDifference(std::wstring& name_diff, const std::wstring& diff, ModelTrace& trace) {
  if (diff.empty()) {
    trace.Reached("similar: empty difference");
  }
  if (diff == name_diff) {
    return true;
  }
  name_diff = diff;
  return false;
}

/// Whether `target` is a transformed copy of the file `key` of the same folder.
bool IsCopyInFolder(std::wstring& name_diff, const std::wstring& key, const std::wstring& target, ModelTrace& trace) {
  const std::wstring tn = NameOf(target);
  const std::wstring in = NameOf(key);
  const std::wstring is = StemOf(in);
  const std::wstring ts = StemOf(tn);
  const std::wstring te = DottedExtensionOf(tn);
  const std::wstring te2 = AfterFirstDot(tn);
  const std::wstring ie = AfterLastDot(in);
  const std::wstring ix = DottedExtensionOf(in);

  // The whole name stands in the target's name.
  const std::size_t p = tn.find(in);
  if (p != kNone) {
    const std::wstring diff = tn.substr(0, p) + tn.substr(p + in.size());
    trace.Debug(233, "Name diff: %ws", {Utf8(diff)});
    const bool known = KnownDifference(name_diff, diff, trace);
    trace.Reached(known ? "similar: name contained, found" : "similar: name contained, learned");
    return known;
  }

  if (te.empty() || !Has(tn, is)) {
    trace.Reached(te.empty() ? "similar: target without extension" : "similar: stem not in the target");
    return false;
  }
  trace.Debug(242, "Extension is %ws, extension2 is %ws, itemext is %ws", {Utf8(te), Utf8(te2), Utf8(ix)});

  // The dot before the old extension gave way to another character, and a new extension follows.
  if (Has(tn, ie) && UpToZero(in).size() == UpToZero(ts).size()) {
    const bool known = KnownDifference(name_diff, te, trace);
    trace.Reached(known ? "similar: extension for the dot, found" : "similar: extension for the dot, learned");
    return known;
  }

  // Another extension. Here each entry of the list of common extensions would be compared with te; te begins with a dot and no
  // entry does, so that none excuses anything and the model carries no list.
  if (te == te2 || te != ix || !Has(ts, is)) {
    if (is.size() != ts.size()) {
      trace.Reached("similar: new extension, other length");
      return false;
    }
    const bool known = KnownDifference(name_diff, te, trace);
    trace.Reached(known ? "similar: new extension, found" : "similar: new extension, learned");
    return known;
  }

  // The same extension after a longer stem.
  const std::wstring diff = ts.substr(is.size());
  trace.Debug(255, "Ext diff: %ws, targetname: %ws, itemname: %ws", {Utf8(diff), Utf8(tn), Utf8(in)});
  const bool known = KnownDifference(name_diff, diff, trace);
  trace.Reached(known ? "similar: stem grown, found" : "similar: stem grown, learned");
  return known;
}

}  // namespace

FileMap::iterator SearchSimilarFile(std::wstring& name_diff, FileMap& files, const std::wstring& target, ModelTrace& trace) {
  for (auto entry = files.begin(); entry != files.end(); ++entry) {
    const std::wstring& key = entry->first;
    if (Has(target, key)) {
      trace.Reached(key.empty() ? "similar: empty path contained, found" : "similar: path contained, found");
      return entry;
    }
    if (FolderOf(key) == FolderOf(target) && IsCopyInFolder(name_diff, key, target, trace)) {
      return entry;
    }
  }
  trace.Reached("similar: nothing found");
  return files.end();
}

std::wstring FileNameOf(const std::wstring& path) {
  const auto is_separator = [](wchar_t unit) { return unit == L'\\' || unit == L'/' || unit == L':'; };
  std::size_t start = 0;
  for (std::size_t i = 0; i + 1 < path.size(); ++i) {
    if (is_separator(path[i]) && !is_separator(path[i + 1])) {
      start = i + 1;
    }
  }
  return path.substr(start);
}

}  // namespace zt::model
