// The few files that a similar-file search has to look at. docs/similar-search.md explains how they are found.

#ifndef ZT_ENGINE_SIMILAR_CANDIDATES_H
#define ZT_ENGINE_SIMILAR_CANDIDATES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <set>
#include <string_view>
#include <vector>

#include "engine/files/file_table.h"
#include "engine/files/path_name.h"
#include "engine/name_match.h"

namespace zt {

/// The file with the smallest key that occurs somewhere in `target`, or null.
TrackedFile* SmallestKeyIn(PathName& target, FileTable& files);

/// The files of the target's folder that a search can learn from or find, in the order of their keys. While debug lines are
/// traced, all files whose stem occurs in the target's name: each of them has a line.
///
/// Borrows both arguments. The table may not change meanwhile.
class SimilarCandidates {
 public:
  static constexpr std::size_t kUnknown = ~std::size_t{0};

  struct Candidate {
    TrackedFile* file = nullptr;      ///< Null after the last one.
    std::size_t position = kUnknown;  ///< Where its whole name occurs first in the target's, if that is known.
  };

  /// `target_name` is the name of `target`. Throws std::bad_alloc.
  SimilarCandidates(PathName& target, const TargetName& target_name, FileTable& files);
  SimilarCandidates(const SimilarCandidates&) = delete;
  SimilarCandidates& operator=(const SimilarCandidates&) = delete;

  Candidate Next();

 private:
  using Group = std::set<TrackedFile*, KeyLess>;

  /// Files in the order of keys: one, or a group from `next` on.
  struct Run {
    std::uint64_t start;  ///< The first units of the file's name: what settles most comparisons.
    Candidate first;
    Group::const_iterator next;
    Group::const_iterator end;
  };
  struct RunGreater;
  /// Whether a part of the target's name is a stem.
  struct Question {
    std::uint64_t hash;
    std::size_t begin;
    std::size_t length;
  };
  static constexpr std::size_t kMostQuestions = 16;  ///< At a time.

  void FindDots();
  void FindLengths();
  void FindStems();
  void AskForStem(std::size_t begin, std::size_t end);
  void AnswerQuestions();
  void FindStem(std::uint64_t hash, std::size_t begin, std::size_t length);
  void MeetFile(TrackedFile& file, std::size_t begin, std::size_t length);
  void MeetGroup(StemGroup& group, std::size_t begin, std::size_t length);
  void AddNamesAsLongAsStem(const Group& files, std::uint64_t stem_hash, std::u16string_view stem);
  void AddFile(TrackedFile* file, std::size_t position);
  void AddGroup(const Group& files);

  [[nodiscard]] std::uint64_t EndsThatMatter(std::size_t begin, std::size_t word) const;
  [[nodiscard]] bool MayBeStemAlone(std::size_t begin, std::size_t length) const;
  [[nodiscard]] bool MayGrow(std::size_t begin, std::size_t length) const;
  [[nodiscard]] bool MayBeAsLongAsStem(std::size_t length) const;
  [[nodiscard]] std::size_t LongestExtensionAt(std::size_t place) const;
  [[nodiscard]] std::uint64_t HashOf(std::size_t begin, std::size_t length) const;
  [[nodiscard]] TrackedFile* Find(std::uint64_t hash, std::initializer_list<std::u16string_view> name_parts);
  [[nodiscard]] std::u16string_view NameOf(const TrackedFile& file) const;
  [[nodiscard]] std::uint64_t StartOf(const TrackedFile& file) const;
  [[nodiscard]] bool IsMadeOf(std::u16string_view key, std::initializer_list<std::u16string_view> name_parts) const;

  const TextHash& hash_;
  FileTable& files_;
  const std::uint32_t search_;
  const bool all_;                                                ///< Whether every file whose stem occurs is a candidate.
  const std::u16string_view folder_;                              ///< Without the backslash after it.
  const std::u16string_view name_;                                ///< Of the target.
  const std::u16string_view stem_;                                ///< Of the target.
  const std::u16string_view dotted_;                              ///< Of the target.
  const std::uint64_t* beginnings_;                               ///< Of the target, from its name on.
  const std::uint64_t folder_hash_;                               ///< With the backslash.
  std::array<std::uint16_t, TextHash::kMaxLength + 1> next_dot_;  ///< For each place of the name: the next dot, or its end.
  PlaceSet extension_places_;  ///< The dots of the name after which the extension of some file has room.
  PlaceSet matching_lengths_;  ///< See FindLengths.
  std::array<Question, kMostQuestions> questions_;
  std::size_t question_count_ = 0;
  std::vector<Run> runs_;  ///< A heap: the smallest key in front.
};

}  // namespace zt

#endif  // ZT_ENGINE_SIMILAR_CANDIDATES_H
