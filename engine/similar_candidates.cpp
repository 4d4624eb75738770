#include "engine/similar_candidates.h"

#include <algorithm>

#include "engine/paths.h"
#include "engine/text.h"
#include "engine/tracing.h"

namespace zt {
namespace {

/// Whether `text` is the parts, one after the other.
bool IsMadeOf(std::u16string_view text, std::initializer_list<std::u16string_view> parts) {
  for (const std::u16string_view part : parts) {
    if (!SameUnits(text.substr(0, part.size()), part)) {
      return false;
    }
    text.remove_prefix(part.size());
  }
  return text.empty();
}

/// Whether the units before a place of a text are the end of a key or stem. Each place is asked for once.
class MarkedEnds {
 public:
  /// `beginnings` are the hashes of the beginnings of the text, which has `length` units.
  MarkedEnds(const std::uint64_t* beginnings, std::size_t length, const TextHash& hash, FileTable& files)
      : beginnings_(beginnings), hash_(hash), files_(files), known_(length + 1, kUnknown) {}

  /// REQUIRES: there are FileTable::kEnd units before `end`.
  bool Has(std::size_t end) {
    if (known_[end] == kUnknown) {
      known_[end] = files_.HasMark(hash_.OfPart(beginnings_, end - FileTable::kEnd, end)) ? kYes : kNo;
    }
    return known_[end] == kYes;
  }

 private:
  static constexpr char kUnknown = 0;
  static constexpr char kYes = 1;
  static constexpr char kNo = 2;

  const std::uint64_t* beginnings_;
  const TextHash& hash_;
  FileTable& files_;
  std::vector<char> known_;
};

/// Looks for keys at one place of a target after the other.
class KeysInTarget {
 public:
  KeysInTarget(PathName& target, FileTable& files)
      : files_(files),
        hash_(target.hash()),
        text_(target.lower()),
        beginnings_(target.Beginnings()),
        short_(files.key_lengths().Between(0, FileTable::kKeyStart - 1)),
        long_(files.key_lengths().Between(FileTable::kKeyStart, text_.size())),
        ends_(beginnings_, text_.size(), hash_, files) {}

  /// The smallest key at `begin`: the shortest one, as a text comes before those that it begins.
  TrackedFile* ShortestAt(std::size_t begin) {
    TrackedFile* found = FirstOf(short_, begin);
    if (found == nullptr && !long_.empty() && begin + long_.front() <= text_.size() && files_.MayBegin(text_[begin]) &&
        files_.HasMark(hash_.OfPart(beginnings_, begin, begin + FileTable::kKeyStart))) {
      found = FirstOf(long_, begin);
    }
    return found;
  }

 private:
  TrackedFile* FirstOf(const std::vector<std::size_t>& lengths, std::size_t begin) {
    for (const std::size_t length : lengths) {
      if (begin + length > text_.size()) {
        break;
      }
      if (length >= FileTable::kKeyStart && !ends_.Has(begin + length)) {
        continue;
      }
      const std::u16string_view part = text_.substr(begin, length);
      TrackedFile* const found = files_.FindPath(hash_.OfPart(beginnings_, begin, begin + length),
                                                 [part](std::u16string_view key) { return SameUnits(key, part); });
      if (found != nullptr) {
        return found;
      }
    }
    return nullptr;
  }

  FileTable& files_;
  const TextHash& hash_;
  std::u16string_view text_;
  const std::uint64_t* beginnings_;
  std::vector<std::size_t> short_;  ///< Lengths of keys.
  std::vector<std::size_t> long_;
  MarkedEnds ends_;
};

}  // namespace

TrackedFile* SmallestKeyIn(PathName& target, FileTable& files) {
  KeysInTarget keys(target, files);
  TrackedFile* smallest = nullptr;
  for (std::size_t begin = 0; begin <= target.lower().size(); ++begin) {
    TrackedFile* const found = keys.ShortestAt(begin);
    if (found != nullptr && (smallest == nullptr || KeyLess()(found, smallest))) {
      smallest = found;
    }
  }
  return smallest;
}

/// Puts the run with the smallest key in front of a heap.
struct SimilarCandidates::RunGreater {
  bool operator()(const Run& a, const Run& b) const { return KeyLess()(b.file, a.file); }
};

// A path without a folder is its own folder.
SimilarCandidates::SimilarCandidates(PathName& target, FileTable& files, std::size_t small_group)
    : hash_(target.hash()),
      files_(files),
      beginnings_(target.Beginnings()),
      small_group_(small_group),
      search_(files.BeginSearch()),
      all_(IsTraced(kTraceDebug)),
      folder_(Folder(target.lower())),
      name_begin_(target.parts().name_begin),
      name_(Name(target.lower())),
      stem_(Stem(name_)),
      dotted_(DottedExtension(name_)) {
  folder_ += u'\\';
  folder_hash_ = hash_(folder_);
  FindStems();
  std::make_heap(runs_.begin(), runs_.end(), RunGreater());
}

TrackedFile* SimilarCandidates::Next() {
  if (runs_.empty()) {
    return nullptr;
  }
  std::pop_heap(runs_.begin(), runs_.end(), RunGreater());
  Run& run = runs_.back();
  TrackedFile* const file = run.file;
  if (run.next == run.end) {
    runs_.pop_back();
  } else {
    run.file = *run.next++;
    std::push_heap(runs_.begin(), runs_.end(), RunGreater());
  }
  return file;
}

void SimilarCandidates::FindStems() {
  const std::vector<std::size_t> short_stems = files_.stem_lengths().Between(0, PathParts::kStemStart - 1);
  const std::vector<std::size_t> long_stems = files_.stem_lengths().Between(PathParts::kStemStart, name_.size());
  MarkedEnds ends(beginnings_ + name_begin_, name_.size(), hash_, files_);
  for (std::size_t begin = 0; begin <= name_.size(); ++begin) {
    const std::size_t left = name_.size() - begin;
    for (const std::size_t length : short_stems) {
      if (length <= left) {
        FindStem(begin, length);
      }
    }
    if (long_stems.empty() || long_stems.front() > left || !files_.HasMark(HashOf(begin, PathParts::kStemStart))) {
      continue;
    }
    for (const std::size_t length : long_stems) {
      if (length > left) {
        break;
      }
      if (ends.Has(begin + length)) {
        FindStem(begin, length);
      }
    }
  }
}

/// Takes in what there is to take of the files whose stem is this part of the target's name.
void SimilarCandidates::FindStem(std::size_t begin, std::size_t length) {
  const std::u16string_view stem = name_.substr(begin, length);
  const StemFiles* const found = files_.FindStem(HashOf(begin, length), [&](StemFiles files) {
    // A stem that this search has met was compared then. Of a large group, the files that are taken are compared.
    return files.last_search() == search_ || (IsLarge(files) && length != stem_.size()) ||
           IsMadeOf(FolderAndStem(files.file()->key.Lower()), {folder_, stem});
  });
  if (found == nullptr) {
    return;
  }
  StemGroup* const group = found->group();
  if (group == nullptr) {
    AddFile(found->file());
    return;
  }
  const bool is_new = group->last_search != search_;
  group->last_search = search_;
  if (!IsLarge(*found) || length == stem_.size()) {
    if (is_new) {
      AddGroup(group->files);
    }
    return;
  }
  if (is_new) {
    MeetLargeGroup(*group, begin, length);
  }
  AddNamesAt(*group, begin, length);
}

/// Of a group with a stem of another length than the target's: the stem alone, the file with the target's extension, and files
/// whose names are as long as the target's stem.
void SimilarCandidates::MeetLargeGroup(const StemGroup& group, std::size_t begin, std::size_t length) {
  const std::u16string_view stem = name_.substr(begin, length);
  const std::uint64_t stem_hash = HashOf(begin, length);
  if (stem.find(u'.') == std::u16string_view::npos && files_.extension_lengths().Has(0)) {
    AddFile(Find(stem_hash, {stem}));
  }
  if (begin + length <= stem_.size() && files_.extension_lengths().Has(dotted_.size())) {
    AddFile(Find(hash_.Append(stem_hash, dotted_), {stem, dotted_}));
  }
  if (length < stem_.size() && files_.extension_lengths().Has(stem_.size() - length) &&
      group.name_lengths.count(stem_.size()) != 0) {
    AddNamesAsLongAsStem(stem_hash, stem);
  }
}

/// The files whose whole name is at this place of the target's, their stem being `length` long.
void SimilarCandidates::AddNamesAt(const StemGroup& group, std::size_t begin, std::size_t length) {
  const std::size_t dot = begin + length;
  if (dot >= name_.size() || name_[dot] != u'.') {
    return;
  }
  const std::size_t end = std::min(name_.find(u'.', dot + 1), name_.size());
  for (auto name = group.name_lengths.upper_bound(length); name != group.name_lengths.end() && begin + name->first <= end;
       ++name) {
    AddFile(Find(HashOf(begin, name->first), {name_.substr(begin, name->first)}));
  }
}

/// The files of this stem whose names are as long as the target's stem and whose extension is somewhere in the target's name.
void SimilarCandidates::AddNamesAsLongAsStem(std::uint64_t stem_hash, std::u16string_view stem) {
  const std::size_t length = stem_.size() - stem.size() - 1;  // Of the extension.
  const std::uint64_t before = hash_.Append(stem_hash, u".");
  for (std::size_t begin = 0; begin + length <= name_.size(); ++begin) {
    const std::u16string_view extension = name_.substr(begin, length);
    const std::size_t dot = extension.rfind(u'.');
    if (dot != std::u16string_view::npos) {
      begin += dot;  // An extension has no dot.
      continue;
    }
    const std::uint64_t hash = hash_.OfPart(beginnings_, name_begin_ + begin, name_begin_ + begin + length, before);
    AddFile(Find(hash, {stem, u".", extension}));
  }
}

/// Whether only some of the files are taken, each of which is asked for.
bool SimilarCandidates::IsLarge(StemFiles files) const {
  const StemGroup* const group = files.group();
  return group != nullptr && !all_ && group->files.size() > small_group_;
}

/// Adds a file unless this search has added it already. Ignores null.
void SimilarCandidates::AddFile(TrackedFile* file) {
  if (file != nullptr && file->last_search != search_) {
    file->last_search = search_;
    runs_.push_back({file, {}, {}});
  }
}

void SimilarCandidates::AddGroup(const Group& files) {
  runs_.push_back({*files.begin(), std::next(files.begin()), files.end()});
}

/// Of the folder and a part of the target's name.
std::uint64_t SimilarCandidates::HashOf(std::size_t begin, std::size_t length) const {
  return hash_.OfPart(beginnings_, name_begin_ + begin, name_begin_ + begin + length, folder_hash_);
}

/// The file of the folder whose name consists of these parts, or null.
TrackedFile* SimilarCandidates::Find(std::uint64_t hash, std::initializer_list<std::u16string_view> name_parts) {
  return files_.FindPath(hash, [&](std::u16string_view key) {
    return SameUnits(key.substr(0, folder_.size()), folder_) && IsMadeOf(key.substr(folder_.size()), name_parts);
  });
}

}  // namespace zt
