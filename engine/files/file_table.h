// A process's files.

#ifndef ZT_ENGINE_FILES_FILE_TABLE_H
#define ZT_ENGINE_FILES_FILE_TABLE_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
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
  std::map<std::size_t, std::size_t> name_lengths;  ///< How many of the names have each length.
  std::uint32_t last_search = 0;                    ///< As of a file.
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
  [[nodiscard]] std::uint32_t& last_search() const {
    return (bits_ & kGroup) == 0 ? file()->last_search : group()->last_search;
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
    std::vector<TrackedFile*> files;
    ForEach([&](TrackedFile& file) {
      if (is(file)) {
        files.push_back(&file);
      }
    });
    std::sort(files.begin(), files.end(), KeyLess());
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
  /// Whether one of these has this hash, or may have it: the first kKeyStart units of a key; the last kEnd units of a key; a
  /// folder and the first PathParts::kStemStart units of a stem; the last kEnd units of a stem.
  [[nodiscard]] bool HasMark(std::uint64_t hash) noexcept { return FindMark(hash) != nullptr; }
  static constexpr std::size_t kKeyStart = 4;
  static constexpr std::size_t kEnd = 3;

  /// Whether a key may begin with this unit: a first question, which is cheaper than that for a mark.
  [[nodiscard]] bool MayBegin(char16_t unit) const { return first_units_[unit % first_units_.size()] != 0; }

  [[nodiscard]] const LengthCounts& key_lengths() const { return key_lengths_; }
  [[nodiscard]] const LengthCounts& stem_lengths() const { return stem_lengths_; }
  /// Of what follows the stem: the dot and the extension; 0 for names without a dot.
  [[nodiscard]] const LengthCounts& extension_lengths() const { return extension_lengths_; }

  /// A number that no file's or group's last_search has yet.
  std::uint32_t BeginSearch() noexcept;

 private:
  struct Marks;

  void Link(TrackedFile& file, const PathParts& parts, const TextHash& hash);
  void Unlink(TrackedFile& file, const PathParts& parts, const TextHash& hash) noexcept;
  void AddToStem(TrackedFile& file, const PathParts& parts);
  void RemoveFromStem(TrackedFile& file, const PathParts& parts) noexcept;
  StemFiles* FindStemOf(const TrackedFile& file, const PathParts& parts) noexcept;
  std::size_t* FindMark(std::uint64_t hash) noexcept {
    return marks_.Find(hash, [](std::size_t) { return true; });
  }
  void RemoveMark(std::uint64_t hash) noexcept;

  HashTable<TrackedFile*> paths_;                   ///< By the hash of the whole path.
  HashTable<StemFiles> stems_;                      ///< By the hash of folder and stem.
  HashTable<std::size_t> marks_;                    ///< How many files there are of each beginning and end of keys and stems.
  std::array<std::uint32_t, 64> first_units_ = {};  ///< How many keys begin with a unit, by its remainder.
  LengthCounts key_lengths_;
  LengthCounts stem_lengths_;
  LengthCounts extension_lengths_;
  std::uint32_t last_search_ = 0;
};

}  // namespace zt

#endif  // ZT_ENGINE_FILES_FILE_TABLE_H
