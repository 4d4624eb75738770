#include "engine/file_order.h"

#include <algorithm>
#include <limits>
#include <span>

#include "engine/paths.h"

namespace zt {
namespace {

constexpr wchar_t kBackslash = L'\\';
constexpr wchar_t kDot = L'.';

}  // namespace

const std::pmr::vector<ZtFileMap::iterator>& FoundFiles::SortedByKey() {
  std::sort(entries_.begin(), entries_.end(), [](const auto& a, const auto& b) { return a->first < b->first; });
  entries_.erase(std::unique(entries_.begin(), entries_.end()), entries_.end());
  return entries_;
}

/// The units that follow a prefix in the keys. Folders mostly begin with few different units, and most positions of a text
/// need no look-up then; where there are many, every unit is taken as possible.
class FileOrder::StartUnits {
 public:
  StartUnits(FileOrder& order, std::wstring_view prefix) {
    auto entry = order.LowerBound(prefix);
    while (entry != order.files_.end() && std::wstring_view(entry->first).starts_with(prefix)) {
      if (entry->first.size() == prefix.size()) {
        ++entry;  // The prefix itself.
        continue;
      }
      if (count_ == units_.size()) {
        many_ = true;
        return;
      }
      units_[count_] = entry->first[prefix.size()];
      entry = order.AfterPrefix(prefix, {&units_[count_], 1});
      ++count_;
    }
  }

  [[nodiscard]] bool MayHold(wchar_t unit) const {
    const auto units = std::span(units_).first(count_);
    return many_ || std::find(units.begin(), units.end(), unit) != units.end();
  }

 private:
  std::array<wchar_t, 12> units_ = {};
  std::size_t count_ = 0;
  bool many_ = false;
};

ZtFileMap::iterator FileOrder::LowerBound(std::wstring_view head, std::wstring_view tail) {
  probe_.assign(head);
  probe_.append(tail);
  return LowerBoundOfProbe();
}

ZtFileMap::iterator FileOrder::LowerBoundOfProbe() {
  return index_ != nullptr ? index_->LowerBound(files_, probe_) : files_.lower_bound(probe_);
}

// Without an index there may be any length.
std::size_t FileOrder::NextPathLength(std::size_t length) const {
  return index_ != nullptr ? index_->NextPathLength(length) : length;
}

std::size_t FileOrder::NextStemEnd(std::size_t length) const {
  return index_ != nullptr ? index_->NextStemEnd(length) : length;
}

/// The first entry behind all keys that begin with head + tail.
ZtFileMap::iterator FileOrder::AfterPrefix(std::wstring_view head, std::wstring_view tail) {
  probe_.assign(head);
  probe_.append(tail);
  while (!probe_.empty() && probe_.back() == std::numeric_limits<wchar_t>::max()) {
    probe_.pop_back();
  }
  if (probe_.empty()) {
    return files_.end();
  }
  ++probe_.back();
  return LowerBoundOfProbe();
}

ZtFileMap::iterator FileOrder::SmallestKeyIn(std::wstring_view text) {
  if (files_.empty() || files_.begin()->first.empty()) {
    return files_.begin();
  }
  const StartUnits starts(*this, {});
  auto smallest = files_.end();
  for (std::size_t position = 0; position < text.size(); ++position) {
    if (starts.MayHold(text[position])) {
      const auto found = ShortestKeyBeginning(text.substr(position));
      if (found != files_.end() && (smallest == files_.end() || found->first < smallest->first)) {
        smallest = found;
      }
    }
  }
  return smallest;
}

/// The shortest key that begins `text`, or the end. Only lengths that keys have are tried. The lower bound of a beginning of
/// the text either is such a key, or shares more units with the text than the beginning had, and no key of a length in between
/// begins the text; or it shares fewer, and no key begins with that much of the text.
ZtFileMap::iterator FileOrder::ShortestKeyBeginning(std::wstring_view text) {
  for (std::size_t length = NextPathLength(1); length <= text.size();) {
    const auto entry = LowerBound(text.substr(0, length));
    if (entry == files_.end()) {
      break;
    }
    const std::size_t common = CommonPrefix(entry->first, text);
    if (common == entry->first.size()) {
      return entry;
    }
    if (common < length) {
      break;
    }
    length = NextPathLength(common + 1);
  }
  return files_.end();
}

void FileOrder::FindStemsIn(std::wstring_view folder, std::wstring_view name, ZtFileMap::iterator end, FoundFiles& found) {
  std::wstring prefix(folder);
  prefix += kBackslash;
  const StartUnits starts(*this, prefix);
  // The empty stem stands everywhere: that of an empty name, and of names that begin with their only dot.
  if (NextStemEnd(prefix.size()) == prefix.size()) {
    if (const auto entry = LowerBound(prefix); entry != files_.end() && entry->first == prefix) {
      found.Add(entry);
    }
    FindStem(prefix, {}, end, found);
  }
  for (std::size_t position = 0; position < name.size(); ++position) {
    if (starts.MayHold(name[position])) {
      FindStemsAtStartOf(prefix, name.substr(position), end, found);
    }
  }
}

/// Adds the entries whose stem begins `text` and is not empty. Only lengths that stems have are tried.
///
/// `entry` is the lower bound of a beginning of the text, of `length` units, and shares `common` units with the text. A name
/// with a stem of between `length` and `common` units goes on with a dot where `entry` goes on with the text's unit: it comes
/// after `entry` only where that unit is not behind the dot. All other stems need no look-up.
void FileOrder::FindStemsAtStartOf(std::wstring_view folder_prefix, std::wstring_view text, ZtFileMap::iterator end,
                                   FoundFiles& found) {
  const auto next_stem = [&](std::size_t length) { return NextStemEnd(folder_prefix.size() + length) - folder_prefix.size(); };
  for (std::size_t length = next_stem(1); length <= text.size();) {
    const auto entry = LowerBound(folder_prefix, text.substr(0, length));
    if (entry == files_.end() || !std::wstring_view(entry->first).starts_with(folder_prefix)) {
      return;
    }
    const std::wstring_view name = std::wstring_view(entry->first).substr(folder_prefix.size());
    const std::size_t common = CommonPrefix(name, text);
    if (common < length) {
      return;
    }
    if (name.size() == common && name.find(kDot) == std::wstring_view::npos) {
      found.Add(entry);  // A name without a dot is its own stem.
    }
    for (; length <= common; length = next_stem(length + 1)) {
      if (length == common || text[length] <= kDot) {
        FindStem(folder_prefix, text.substr(0, length), end, found);
      }
    }
  }
}

bool FileOrder::IsBefore(ZtFileMap::iterator entry, ZtFileMap::iterator end) const {
  return entry != files_.end() && (end == files_.end() || entry->first < end->first);
}

/// Adds the entries that are `stem`, a dot and an extension without a further dot.
void FileOrder::FindStem(std::wstring_view folder_prefix, std::wstring_view stem, ZtFileMap::iterator end, FoundFiles& found) {
  stem_prefix_.assign(folder_prefix).append(stem).push_back(kDot);
  const std::wstring_view prefix = stem_prefix_;
  for (auto entry = LowerBound(prefix); IsBefore(entry, end) && std::wstring_view(entry->first).starts_with(prefix);) {
    const std::wstring_view extension = std::wstring_view(entry->first).substr(prefix.size());
    const std::size_t stop = extension.find_first_of(L".\\");
    if (stop == std::wstring_view::npos) {
      found.Add(entry);
      ++entry;
    } else {
      entry = AfterPrefix(prefix, extension.substr(0, stop + 1));  // A longer stem, or a folder: over all that it begins.
    }
  }
}

}  // namespace zt
