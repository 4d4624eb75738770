// The few files that a similar-file search has to look at. docs/similar-search.md explains how they are found.

#ifndef ZT_ENGINE_SIMILAR_CANDIDATES_H
#define ZT_ENGINE_SIMILAR_CANDIDATES_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "engine/files/file_table.h"
#include "engine/files/path_name.h"

namespace zt {

/// The file with the smallest key that occurs somewhere in `target`, or null. Throws std::bad_alloc.
TrackedFile* SmallestKeyIn(PathName& target, FileTable& files);

/// The files of the target's folder that a search can learn from or find, in the order of their keys. While debug lines are
/// traced, all files whose stem occurs in the target's name: each of them has a line.
///
/// Borrows both arguments. The table may not change meanwhile.
class SimilarCandidates {
 public:
  /// A group of files of one stem that has more is not taken as a whole.
  static constexpr std::size_t kSmallGroup = 8;

  /// Throws std::bad_alloc.
  SimilarCandidates(PathName& target, FileTable& files, std::size_t small_group);
  SimilarCandidates(const SimilarCandidates&) = delete;
  SimilarCandidates& operator=(const SimilarCandidates&) = delete;

  /// The next file; null after the last one.
  TrackedFile* Next();

 private:
  using Group = std::set<TrackedFile*, KeyLess>;

  /// Files in the order of keys: one, or a group from `next` on.
  struct Run {
    TrackedFile* file;
    Group::const_iterator next;
    Group::const_iterator end;
  };
  struct RunGreater;

  void FindStems();
  void FindStem(std::size_t begin, std::size_t length);
  void MeetLargeGroup(const StemGroup& group, std::size_t begin, std::size_t length);
  void AddNamesAt(const StemGroup& group, std::size_t begin, std::size_t length);
  void AddNamesAsLongAsStem(std::uint64_t stem_hash, std::u16string_view stem);
  [[nodiscard]] bool IsLarge(StemFiles files) const;
  void AddFile(TrackedFile* file);
  void AddGroup(const Group& files);
  [[nodiscard]] std::uint64_t HashOf(std::size_t begin, std::size_t length) const;
  [[nodiscard]] TrackedFile* Find(std::uint64_t hash, std::initializer_list<std::u16string_view> name_parts);

  const TextHash& hash_;
  FileTable& files_;
  const std::uint64_t* beginnings_;  ///< Of the target.
  const std::size_t small_group_;
  const std::uint32_t search_;
  const bool all_;         ///< Whether large groups are taken as a whole, too.
  std::u16string folder_;  ///< With its backslash.
  std::uint64_t folder_hash_;
  std::size_t name_begin_;      ///< Of the target.
  std::u16string_view name_;    ///< Of the target.
  std::u16string_view stem_;    ///< Of the target.
  std::u16string_view dotted_;  ///< Of the target.
  std::vector<Run> runs_;       ///< A heap: the smallest key in front.
};

}  // namespace zt

#endif  // ZT_ENGINE_SIMILAR_CANDIDATES_H
