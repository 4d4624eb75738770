#include "engine/similar_candidates.h"

#include <algorithm>
#include <bit>

#include "engine/paths.h"
#include "engine/text.h"
#include "engine/tracing.h"

namespace zt {
namespace {

/// At which places of a text keys or stems end. The table is asked once for each place.
class KnownEnds {
 public:
  /// Which of the places `asked`, bits of the word of this number, are ends; is_end(place) says it of one.
  template <typename IsEnd>
  std::uint64_t Among(std::uint64_t asked, std::size_t word, const IsEnd& is_end) {
    for (std::uint64_t left = asked & ~known_[word]; left != 0; left &= left - 1) {
      if (is_end(PlaceSet::kWordBits * word + static_cast<std::size_t>(std::countr_zero(left)))) {
        ends_[word] |= left & (~left + 1);
      }
    }
    known_[word] |= asked;
    return asked & ends_[word];
  }

 private:
  using Words = std::array<std::uint64_t, TextHash::kMaxLength / PlaceSet::kWordBits + 1>;

  Words known_ = {};
  Words ends_ = {};
};

/// Looks for keys at one place of a target after the other.
class KeysInTarget {
 public:
  KeysInTarget(PathName& target, FileTable& files)
      : hash_(target.hash()),
        files_(files),
        text_(target.lower()),
        beginnings_(target.Beginnings()),
        before_end_(hash_(FileTable::kBeforeEnd)),
        shortest_(files.key_lengths().Next(0)),
        shortest_marked_(files.key_lengths().Next(FileTable::kKeyMark)) {}

  /// The smallest key that occurs, or null.
  TrackedFile* Smallest() {
    TrackedFile* smallest = nullptr;
    for (std::size_t begin = 0; begin <= text_.size(); ++begin) {
      if (shortest_ >= FileTable::kKeyMark && (begin == text_.size() || !files_.MayBeginKey(text_[begin]))) {
        continue;  // What holds nearly everywhere.
      }
      TrackedFile* const found = ShortestAt(begin);
      if (found != nullptr && (smallest == nullptr || KeyLess()(found, smallest))) {
        smallest = found;
      }
    }
    return smallest;
  }

 private:
  /// The smallest key at `begin`: the shortest one, as a text comes before those that it begins.
  TrackedFile* ShortestAt(std::size_t begin) {
    const std::size_t left = text_.size() - begin;
    for (std::size_t length = shortest_; length < FileTable::kKeyMark && length <= left;
         length = files_.key_lengths().Next(length + 1)) {
      if (TrackedFile* const found = Find(begin, begin + length); found != nullptr) {
        return found;
      }
    }
    if (shortest_marked_ > left || !files_.MayBeginKey(text_[begin]) ||
        !files_.HasMark(hash_.OfPart(beginnings_, begin, begin + FileTable::kKeyMark))) {
      return nullptr;
    }
    const auto is_end = [this](std::size_t end) {
      return files_.MayEndKey(&text_[end - 2]) &&
             files_.HasMark(hash_.OfPart(beginnings_, end - FileTable::kKeyMark, end, before_end_));
    };
    for (std::size_t word = (begin + shortest_marked_) / PlaceSet::kWordBits; word <= text_.size() / PlaceSet::kWordBits;
         ++word) {
      const std::uint64_t long_enough = ~PlaceSet::WordBelow(begin + shortest_marked_, word);
      const std::uint64_t fitting = PlaceSet::WordBelow(text_.size() + 1, word);
      const std::uint64_t asked = files_.key_lengths().Word(word, begin) & long_enough & fitting;
      for (std::uint64_t ends = ends_.Among(asked, word, is_end); ends != 0; ends &= ends - 1) {
        const std::size_t end = PlaceSet::kWordBits * word + static_cast<std::size_t>(std::countr_zero(ends));
        if (TrackedFile* const found = Find(begin, end); found != nullptr) {
          return found;
        }
      }
    }
    return nullptr;
  }

  TrackedFile* Find(std::size_t begin, std::size_t end) {
    const std::u16string_view part = text_.substr(begin, end - begin);
    return files_.FindPath(hash_.OfPart(beginnings_, begin, end),
                           [part](std::u16string_view key) { return SameUnits(key, part); });
  }

  const TextHash& hash_;
  FileTable& files_;
  const std::u16string_view text_;
  const std::uint64_t* const beginnings_;
  const std::uint64_t before_end_;
  const std::size_t shortest_;         ///< Length of a key.
  const std::size_t shortest_marked_;  ///< Length of a key that has marks.
  KnownEnds ends_;
};

}  // namespace

TrackedFile* SmallestKeyIn(PathName& target, FileTable& files) { return KeysInTarget(target, files).Smallest(); }

/// Puts the run with the smallest key in front of a heap. All keys have the same folder.
struct SimilarCandidates::RunGreater {
  bool operator()(const Run& a, const Run& b) const {
    return a.start != b.start ? a.start > b.start : KeyLess()(b.first.file, a.first.file);
  }
};

// A path without a folder is its own folder.
SimilarCandidates::SimilarCandidates(PathName& target, const TargetName& target_name,
                                     FileTable& files)  // NOLINT(cppcoreguidelines-pro-type-member-init)
    : hash_(target.hash()),
      files_(files),
      search_(files.BeginSearch()),
      all_(IsTraced(kTraceDebug)),
      folder_(target.folder()),
      name_(target_name.name),
      stem_(target_name.stem),
      dotted_(target_name.dotted),
      beginnings_(target.Beginnings() + target.parts().name_begin),
      folder_hash_(hash_.Append(target.Beginnings()[folder_.size()], u"\\")) {
  FindDots();
  FindLengths();
  FindStems();
  std::make_heap(runs_.begin(), runs_.end(), RunGreater());
}

SimilarCandidates::Candidate SimilarCandidates::Next() {
  if (runs_.empty()) {
    return {};
  }
  std::pop_heap(runs_.begin(), runs_.end(), RunGreater());
  Run& run = runs_.back();
  const Candidate next = run.first;
  if (run.next == run.end) {
    runs_.pop_back();
  } else {
    run.first.file = *run.next++;
    run.start = StartOf(*run.first.file);
    std::push_heap(runs_.begin(), runs_.end(), RunGreater());
  }
  return next;
}

void SimilarCandidates::FindDots() {
  std::size_t dot = name_.size();
  for (std::size_t place = name_.size() + 1; place-- > 0;) {
    if (place < name_.size() && name_[place] == u'.') {
      if (files_.extension_lengths().Next(1) <= dot - place) {
        extension_places_.Add(place);
      }
      dot = place;
    }
    next_dot_[place] = static_cast<std::uint16_t>(dot);
  }
}

/// The lengths of stems whose files can have names, or have stems, that are as long as the target's stem.
void SimilarCandidates::FindLengths() {
  const PlaceSet& extensions = files_.extension_lengths();
  for (std::size_t extension = extensions.Next(1); extension <= stem_.size(); extension = extensions.Next(extension + 1)) {
    matching_lengths_.Add(stem_.size() - extension);
  }
  matching_lengths_.Add(stem_.size());
}

/// Which of the places of this word can be the end of a stem from `begin` on whose files can matter.
std::uint64_t SimilarCandidates::EndsThatMatter(std::size_t begin, std::size_t word) const {
  if (all_) {
    return ~std::uint64_t{0};
  }
  std::uint64_t ends = extension_places_.Word(word) | matching_lengths_.Word(word, begin);
  if (files_.extension_lengths().Has(dotted_.size())) {
    ends |= PlaceSet::WordBelow(stem_.size() + 1, word);
  }
  if (files_.extension_lengths().Has(0)) {
    ends |= PlaceSet::WordBelow(next_dot_[begin] + std::size_t{1}, word);
  }
  return ends;
}

void SimilarCandidates::FindStems() {
  const PlaceSet& lengths = files_.stem_lengths();
  const std::size_t shortest = lengths.Next(0);
  const std::size_t shortest_marked = lengths.Next(FileTable::kStemMark);
  const bool has_short = shortest < FileTable::kStemMark;
  const std::uint64_t before_end = hash_(FileTable::kBeforeEnd);
  KnownEnds known_ends;
  const auto is_end = [this, before_end](std::size_t end) {
    return files_.MayEndStem(&name_[end - 2]) &&
           files_.HasMark(hash_.OfPart(beginnings_, end - FileTable::kStemMark, end, before_end));
  };
  for (std::size_t begin = 0; begin <= name_.size(); ++begin) {
    const std::size_t left = name_.size() - begin;
    for (std::size_t length = shortest; has_short && length < FileTable::kStemMark && length <= left;
         length = lengths.Next(length + 1)) {
      const std::size_t end = begin + length;
      if ((EndsThatMatter(begin, end / PlaceSet::kWordBits) >> end % PlaceSet::kWordBits & 1) != 0) {
        AskForStem(begin, end);
      }
    }
    if (shortest_marked > left || !files_.MayBeginStem(&name_[begin]) || !files_.HasMark(HashOf(begin, FileTable::kStemMark))) {
      continue;
    }
    for (std::size_t word = (begin + shortest_marked) / PlaceSet::kWordBits; word <= name_.size() / PlaceSet::kWordBits;
         ++word) {
      const std::uint64_t long_enough = ~PlaceSet::WordBelow(begin + shortest_marked, word);
      const std::uint64_t fitting = PlaceSet::WordBelow(name_.size() + 1, word);
      const std::uint64_t asked = lengths.Word(word, begin) & long_enough & fitting & EndsThatMatter(begin, word);
      for (std::uint64_t ends = known_ends.Among(asked, word, is_end); ends != 0; ends &= ends - 1) {
        AskForStem(begin, PlaceSet::kWordBits * word + static_cast<std::size_t>(std::countr_zero(ends)));
      }
    }
  }
  AnswerQuestions();
}

void SimilarCandidates::AskForStem(std::size_t begin, std::size_t end) {
  if (question_count_ == questions_.size()) {
    AnswerQuestions();
  }
  const std::uint64_t hash = HashOf(begin, end - begin);
  files_.FetchStemDirectory(hash);
  questions_[question_count_++] = {hash, begin, end - begin};
}

void SimilarCandidates::AnswerQuestions() {
  for (std::size_t question = 0; question < question_count_; ++question) {
    files_.FetchStemSegment(questions_[question].hash);
  }
  for (std::size_t question = 0; question < question_count_; ++question) {
    FindStem(questions_[question].hash, questions_[question].begin, questions_[question].length);
  }
  question_count_ = 0;
}

/// Takes in what there is to take of the files whose stem is this part of the target's name.
void SimilarCandidates::FindStem(std::uint64_t hash, std::size_t begin, std::size_t length) {
  const std::u16string_view stem = name_.substr(begin, length);
  // Of a group, the files that are taken are compared; a file that was added has been.
  const StemFiles* const found = files_.FindStem(hash, [&](StemFiles files) {
    return files.group() != nullptr || files.file()->last_search == search_ || IsMadeOf(files.file()->FolderAndStem(), {stem});
  });
  if (found == nullptr) {
    return;
  }
  if (StemGroup* const group = found->group(); group != nullptr) {
    MeetGroup(*group, begin, length);
  } else {
    MeetFile(*found->file(), begin, length);
  }
}

/// A stem that has one file.
void SimilarCandidates::MeetFile(TrackedFile& file, std::size_t begin, std::size_t length) {
  if (file.last_search == search_) {
    return;
  }
  const std::u16string_view file_name = NameOf(file);
  const std::u16string_view extension = file_name.substr(length);
  if (SameUnits(name_.substr(begin + length, extension.size()), extension)) {
    AddFile(&file, begin);
  } else if (all_ || length == stem_.size() || file_name.size() == stem_.size() ||
             (begin + length <= stem_.size() && SameUnits(extension, dotted_))) {
    AddFile(&file, kUnknown);
  }
}

/// A stem that has several files, of which each one that can matter is asked for.
void SimilarCandidates::MeetGroup(StemGroup& group, std::size_t begin, std::size_t length) {
  const std::u16string_view stem = name_.substr(begin, length);
  const bool is_new = group.last_search != search_;
  group.last_search = search_;
  if (all_ || length == stem_.size()) {
    if (is_new && IsMadeOf((*group.files.begin())->FolderAndStem(), {stem})) {
      AddGroup(group.files);
    }
    return;
  }
  const PlaceSet& extensions = files_.extension_lengths();
  const std::size_t longest = LongestExtensionAt(begin + length);
  for (std::size_t extension = extensions.Next(1); extension <= longest; extension = extensions.Next(extension + 1)) {
    AddFile(Find(HashOf(begin, length + extension), {name_.substr(begin, length + extension)}), begin);
  }
  if (!is_new) {
    return;
  }
  const std::uint64_t stem_hash = HashOf(begin, length);
  if (MayBeStemAlone(begin, length)) {
    AddFile(Find(stem_hash, {stem}), begin);
  }
  if (MayGrow(begin, length)) {
    AddFile(Find(hash_.Append(stem_hash, dotted_), {stem, dotted_}), kUnknown);
  }
  if (MayBeAsLongAsStem(length)) {
    AddNamesAsLongAsStem(group.files, stem_hash, stem);
  }
}

/// The files of this stem whose names are as long as the target's stem and whose extension is somewhere in the target's name:
/// by their names, or by the places of the target, whichever are fewer.
void SimilarCandidates::AddNamesAsLongAsStem(const Group& files, std::uint64_t stem_hash, std::u16string_view stem) {
  if (files.size() <= name_.size()) {
    for (TrackedFile* const file : files) {
      if (IsMadeOf(file->FolderAndStem(), {stem}) && NameOf(*file).size() == stem_.size()) {
        AddFile(file, kUnknown);
      }
    }
    return;
  }
  const std::size_t length = stem_.size() - stem.size() - 1;  // Of the extension, which has no dot.
  const std::uint64_t before = hash_.Append(stem_hash, u".");
  for (std::size_t begin = 0; begin + length <= name_.size(); ++begin) {
    if (next_dot_[begin] >= begin + length) {
      const std::uint64_t hash = hash_.OfPart(beginnings_, begin, begin + length, before);
      AddFile(Find(hash, {stem, u".", name_.substr(begin, length)}), kUnknown);
    }
  }
}

/// Adds a file unless this search has added it already. Ignores null.
void SimilarCandidates::AddFile(TrackedFile* file, std::size_t position) {
  if (file != nullptr && file->last_search != search_) {
    file->last_search = search_;
    runs_.push_back({StartOf(*file), {file, position}, {}, {}});
  }
}

void SimilarCandidates::AddGroup(const Group& files) {
  runs_.push_back({StartOf(**files.begin()), {*files.begin(), kUnknown}, std::next(files.begin()), files.end()});
}

/// Whether a file can have this part as its whole name.
bool SimilarCandidates::MayBeStemAlone(std::size_t begin, std::size_t length) const {
  return files_.extension_lengths().Has(0) && next_dot_[begin] >= begin + length;
}

/// Whether the target's name can be that of a file of this stem with something put between stem and extension.
bool SimilarCandidates::MayGrow(std::size_t begin, std::size_t length) const {
  return begin + length <= stem_.size() && files_.extension_lengths().Has(dotted_.size());
}

/// Whether a file of a stem of this length can have a name that is as long as the target's stem.
bool SimilarCandidates::MayBeAsLongAsStem(std::size_t length) const {
  return length < stem_.size() && files_.extension_lengths().Has(stem_.size() - length);
}

/// The length of the longest extension, with its dot, that the target's name has after this place; 0 where no dot is there.
std::size_t SimilarCandidates::LongestExtensionAt(std::size_t place) const {
  return place < name_.size() && name_[place] == u'.' ? next_dot_[place + 1] - place : 0;
}

/// Of the folder and a part of the target's name.
std::uint64_t SimilarCandidates::HashOf(std::size_t begin, std::size_t length) const {
  return hash_.OfPart(beginnings_, begin, begin + length, folder_hash_);
}

/// The file of the folder whose name consists of these parts, or null.
TrackedFile* SimilarCandidates::Find(std::uint64_t hash, std::initializer_list<std::u16string_view> name_parts) {
  return files_.FindPath(hash, [&](std::u16string_view key) { return IsMadeOf(key, name_parts); });
}

/// The name of a file of the folder.
std::u16string_view SimilarCandidates::NameOf(const TrackedFile& file) const {
  return file.key.Lower().substr(folder_.size() + 1);
}

/// The first four units of the name of a file of the folder, in the order of units.
std::uint64_t SimilarCandidates::StartOf(const TrackedFile& file) const {
  const std::u16string_view file_name = NameOf(file);
  std::uint64_t start = 0;
  for (std::size_t unit = 0; unit < 4; ++unit) {
    start = start << 16 | (unit < file_name.size() ? file_name[unit] : 0);
  }
  return start;
}

/// Whether `key` is the folder and these parts, one after the other.
bool SimilarCandidates::IsMadeOf(std::u16string_view key, std::initializer_list<std::u16string_view> name_parts) const {
  if (key.size() <= folder_.size() || key[folder_.size()] != u'\\' || !SameUnits(key.substr(0, folder_.size()), folder_)) {
    return false;
  }
  key.remove_prefix(folder_.size() + 1);
  for (const std::u16string_view part : name_parts) {
    if (!SameUnits(key.substr(0, part.size()), part)) {
      return false;
    }
    key.remove_prefix(part.size());
  }
  return key.empty();
}

}  // namespace zt
