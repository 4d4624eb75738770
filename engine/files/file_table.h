// A process's files.

#ifndef ZT_ENGINE_FILES_FILE_TABLE_H
#define ZT_ENGINE_FILES_FILE_TABLE_H

#include <algorithm>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/files/hash_table.h"
#include "engine/files/length_counts.h"
#include "engine/files/path_name.h"
#include "engine/files/tracked_file.h"
#include "engine/text.h"

namespace zt {

/// Several files of one folder whose names have one stem, such as "photo.jpg" and "photo.raw".
struct StemGroup {
  std::set<TrackedFile*, KeyLess> files;
  std::uint32_t last_search = 0;  ///< As of a file.
};

/// The files of one folder whose names have one stem: nearly always one file, else a group.
class StemFiles {
 public:
  StemFiles() = default;
  explicit StemFiles(TrackedFile* file) : bits_(reinterpret_cast<std::uintptr_t>(file)) {}
  explicit StemFiles(StemGroup* group) : bits_(reinterpret_cast<std::uintptr_t>(group) | kGroup) {}

  /// The group, or null where there is one file.
  [[nodiscard]] StemGroup* group() const {
    return (bits_ & kGroup) == 0 ? nullptr : reinterpret_cast<StemGroup*>(bits_ & ~kGroup);
  }
  /// The file, or one of the group.
  [[nodiscard]] TrackedFile* file() const {
    return (bits_ & kGroup) == 0 ? reinterpret_cast<TrackedFile*>(bits_) : *group()->files.begin();
  }

 private:
  static constexpr std::uintptr_t kGroup = 1;  ///< Set in the address of a group; addresses are even.

  std::uintptr_t bits_ = 0;
};

/// The files that a process touched, by path. Owns the records. Answers, without reading paths that are not meant, which file
/// has a path, and which files of a folder have a stem. No call takes longer for what is tracked than for what it is asked
/// about, but for the few that go through all files and say so.
///
/// Invariant: every file is in `paths_`; it is in `stems_`, alone or in the group of its stem; and it is counted in `marks_`
/// and in the lengths. A table that an exception left is as it was before the call.
class FileTable {
 public:
  FileTable() = default;
  FileTable(FileTable&& other) noexcept = default;
  FileTable& operator=(FileTable&& other) noexcept;
  FileTable(const FileTable&) = delete;
  FileTable& operator=(const FileTable&) = delete;
  ~FileTable();

  [[nodiscard]] std::size_t size() const noexcept { return paths_.size(); }
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }

  /// The file under this path, or null.
  [[nodiscard]] TrackedFile* Find(const PathName& path) noexcept {
    return FindPath(path.parts().whole, [&path](std::u16string_view key) { return SameUnits(key, path.lower()); });
  }
  /// The same; where there is none, it is added. Whether it was is the second value. Throws std::bad_alloc with nothing
  /// changed.
  std::pair<TrackedFile*, bool> FindOrAdd(PathName& path);
  void Erase(TrackedFile& file, const TextHash& hash = TextHash::OfProcess()) noexcept;

  /// Calls goes(file) for all files, in no order, and erases those for which it returns true.
  template <typename Goes>
  void EraseIf(const Goes& goes, const TextHash& hash = TextHash::OfProcess()) noexcept {
    paths_.EraseIf([&](TrackedFile* file) {
      const bool is_erased = goes(*file);
      if (is_erased) {
        Unlink(*file, PathParts(file->key.Lower(), hash), hash);
        delete file;
      }
      return is_erased;
    });
  }
  /// Calls visit(file) for all files, in no order.
  template <typename Visit>
  void ForEach(const Visit& visit) const {
    paths_.ForEach([&](TrackedFile* file) { visit(*file); });
  }
  /// All files in the order of keys for which is(file) is true. Throws std::bad_alloc.
  template <typename Is>
  [[nodiscard]] std::vector<TrackedFile*> Sorted(const Is& is) const {
    std::vector<std::pair<std::u16string_view, TrackedFile*>> by_key;  // With the key, so that it is fetched by one step less.
    ForEach([&](TrackedFile& file) {
      if (is(file)) {
        by_key.emplace_back(file.key.Lower(), &file);
      }
    });
    std::sort(by_key.begin(), by_key.end(), [](const auto& a, const auto& b) { return LessUnits(a.first, b.first); });
    std::vector<TrackedFile*> files(by_key.size());
    std::transform(by_key.begin(), by_key.end(), files.begin(), [](const auto& file) { return file.second; });
    return files;
  }

  // For the similar-file search: questions by hash.

  /// The file whose path has this hash and for which is(key) is true, or null.
  template <typename Is>
  [[nodiscard]] TrackedFile* FindPath(std::uint64_t hash, const Is& is) noexcept {
    TrackedFile** const found = paths_.Find(hash, [&is](const TrackedFile* file) { return is(file->key.Lower()); });
    return found == nullptr ? nullptr : *found;
  }
  /// The files whose folder and stem have this hash and for which is(StemFiles) is true, or null.
  template <typename Is>
  [[nodiscard]] StemFiles* FindStem(std::uint64_t hash, const Is& is) noexcept {
    return stems_.Find(hash, is);
  }
  void FetchStemDirectory(std::uint64_t hash) const noexcept { stems_.FetchDirectory(hash); }
  void FetchStemSegment(std::uint64_t hash) const noexcept { stems_.FetchSegment(hash); }

  /// Whether one of these has this hash: the first kKeyMark units of a key; a folder and the first kStemMark units of a stem;
  /// kBeforeEnd and the last kKeyMark units of a key, or the last kStemMark units of a stem.
  [[nodiscard]] bool HasMark(std::uint64_t hash) noexcept { return FindMark(hash) != nullptr; }
  static constexpr std::size_t kKeyMark = 4;
  static constexpr std::size_t kStemMark = PathParts::kStemStart;
  static constexpr std::u16string_view kBeforeEnd = u"*";  ///< Tells ends from beginnings; no name of a file has it.

  // First questions, which are cheaper than those for marks.

  /// Whether a key may begin with this unit, or end with the two units from `text` on.
  [[nodiscard]] bool MayBeginKey(char16_t unit) const { return outline().key_starts[unit % 64]; }
  [[nodiscard]] bool MayEndKey(const char16_t* text) const { return outline().key_ends[PlaceOf(text)]; }
  /// Whether a stem may begin with the two units from `text` on, or end with them.
  [[nodiscard]] bool MayBeginStem(const char16_t* text) const { return outline().stem_starts[PlaceOf(text)]; }
  [[nodiscard]] bool MayEndStem(const char16_t* text) const { return outline().stem_ends[PlaceOf(text)]; }

  [[nodiscard]] const PlaceSet& key_lengths() const { return outline().key_lengths.lengths(); }
  [[nodiscard]] const PlaceSet& stem_lengths() const { return outline().stem_lengths.lengths(); }
  /// Of what follows the stem: the dot and the extension; 0 for names without a dot.
  [[nodiscard]] const PlaceSet& extension_lengths() const { return outline().extension_lengths.lengths(); }

  /// A number that no file's or group's last_search has yet.
  std::uint32_t BeginSearch() noexcept;

 private:
  struct Marks;
  static constexpr std::size_t kPairs = 1024;

  /// What first questions are answered by.
  struct Outline {
    std::bitset<64> key_starts;       ///< How keys have ever begun: first units, by their remainders.
    std::bitset<kPairs> key_ends;     ///< How they have ever ended: pairs of units, by PlaceOf.
    std::bitset<kPairs> stem_starts;  ///< The same of stems.
    std::bitset<kPairs> stem_ends;
    LengthCounts key_lengths;
    LengthCounts stem_lengths;
    LengthCounts extension_lengths;
  };
  [[nodiscard]] const Outline& outline() const { return outline_ == nullptr ? kNoFiles : *outline_; }
  static const Outline kNoFiles;

  void Link(TrackedFile& file, const PathParts& parts, const TextHash& hash);
  void Unlink(TrackedFile& file, const PathParts& parts, const TextHash& hash) noexcept;
  void AddToStem(TrackedFile& file, const PathParts& parts);
  void RemoveFromStem(TrackedFile& file, const PathParts& parts) noexcept;
  StemFiles* FindStemOf(const TrackedFile& file, const PathParts& parts) noexcept;
  std::size_t* FindMark(std::uint64_t hash) noexcept {
    return marks_.Find(hash, [](std::size_t) { return true; });
  }
  void RemoveMark(std::uint64_t hash) noexcept;
  /// The place of a pair of units. Names differ most in the lower bits of their units.
  static std::size_t PlaceOf(const char16_t* pair) { return (pair[0] * 33U ^ pair[1]) % kPairs; }

  HashTable<TrackedFile*> paths_;     ///< By the hash of the whole path.
  HashTable<StemFiles> stems_;        ///< By the hash of folder and stem.
  HashTable<std::size_t> marks_;      ///< How many files there are of each beginning and end of keys and stems.
  std::unique_ptr<Outline> outline_;  ///< Made with the first file.
  std::uint32_t last_search_ = 0;
};

}  // namespace zt

#endif  // ZT_ENGINE_FILES_FILE_TABLE_H
