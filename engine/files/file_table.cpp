#include "engine/files/file_table.h"

#include <array>
#include <memory>

namespace zt {

/// What a file is counted under in `marks_`.
struct FileTable::Marks {
  Marks(const TrackedFile& file, const PathParts& parts, const TextHash& hash) {
    const std::u16string_view key = file.key.Lower();
    const std::uint64_t before_end = hash(kBeforeEnd);
    if (parts.stem_length() >= kStemMark) {
      hashes[count++] = parts.stem_start;
      hashes[count++] = hash.Append(before_end, key.substr(parts.stem_end - kStemMark, kStemMark));
    }
    if (key.size() >= kKeyMark) {
      hashes[count++] = hash(key.substr(0, kKeyMark));
      hashes[count++] = hash.Append(before_end, key.substr(key.size() - kKeyMark));
    }
  }

  std::array<std::uint64_t, 4> hashes = {};
  std::size_t count = 0;
};

const FileTable::Outline FileTable::kNoFiles;

FileTable& FileTable::operator=(FileTable&& other) noexcept {
  FileTable taken(std::move(other));
  std::swap(paths_, taken.paths_);
  std::swap(stems_, taken.stems_);
  std::swap(marks_, taken.marks_);
  std::swap(outline_, taken.outline_);
  std::swap(last_search_, taken.last_search_);
  return *this;
}

FileTable::~FileTable() {
  stems_.ForEach([](StemFiles files) { delete files.group(); });
  ForEach([](TrackedFile& file) { delete &file; });
}

std::pair<TrackedFile*, bool> FileTable::FindOrAdd(PathName& path) {
  if (TrackedFile* const found = Find(path); found != nullptr) {
    return {found, false};
  }
  auto file = std::make_unique<TrackedFile>(path.Text(), path.parts().stem_end);
  paths_.Insert(path.parts().whole, file.get());
  try {
    Link(*file, path.parts(), path.hash());
  } catch (...) {
    paths_.Erase(path.parts().whole, [&](const TrackedFile* other) { return other == file.get(); });
    throw;
  }
  return {file.release(), true};
}

void FileTable::Erase(TrackedFile& file, const TextHash& hash) noexcept {
  const PathParts parts(file.key.Lower(), hash);
  Unlink(file, parts, hash);
  paths_.Erase(parts.whole, [&](const TrackedFile* other) { return other == &file; });
  delete &file;
}

std::uint32_t FileTable::BeginSearch() noexcept {
  if (++last_search_ == 0) {  // After 2^32 searches the numbers begin again.
    ForEach([](TrackedFile& file) { file.last_search = 0; });
    stems_.ForEach([](StemFiles files) {
      if (StemGroup* const group = files.group(); group != nullptr) {
        group->last_search = 0;
      }
    });
    last_search_ = 1;
  }
  return last_search_;
}

// Throws std::bad_alloc with nothing changed.
void FileTable::Link(TrackedFile& file, const PathParts& parts, const TextHash& hash) {
  if (outline_ == nullptr) {
    outline_ = std::make_unique<Outline>();
  }
  outline_->key_lengths.Reserve(file.key.Lower().size());
  outline_->stem_lengths.Reserve(parts.stem_length());
  outline_->extension_lengths.Reserve(file.key.Lower().size() - parts.stem_end);
  const Marks marks(file, parts, hash);
  std::size_t added = 0;
  try {
    for (; added < marks.count; ++added) {
      if (std::size_t* const count = FindMark(marks.hashes[added]); count != nullptr) {
        ++*count;
      } else {
        marks_.Insert(marks.hashes[added], 1);
      }
    }
    AddToStem(file, parts);
  } catch (...) {
    while (added > 0) {
      RemoveMark(marks.hashes[--added]);
    }
    throw;
  }
  const std::u16string_view key = file.key.Lower();
  if (!key.empty()) {
    outline_->key_starts.set(key.front() % 64);
  }
  if (key.size() >= 2) {
    outline_->key_ends.set(PlaceOf(&key[key.size() - 2]));
  }
  if (parts.stem_length() >= 2) {
    outline_->stem_starts.set(PlaceOf(&key[parts.name_begin]));
    outline_->stem_ends.set(PlaceOf(&key[parts.stem_end - 2]));
  }
  outline_->key_lengths.Add(file.key.Lower().size());
  outline_->stem_lengths.Add(parts.stem_length());
  outline_->extension_lengths.Add(file.key.Lower().size() - parts.stem_end);
}

void FileTable::Unlink(TrackedFile& file, const PathParts& parts, const TextHash& hash) noexcept {
  const Marks marks(file, parts, hash);
  for (std::size_t mark = 0; mark < marks.count; ++mark) {
    RemoveMark(marks.hashes[mark]);
  }
  RemoveFromStem(file, parts);
  outline_->key_lengths.Remove(file.key.Lower().size());
  outline_->stem_lengths.Remove(parts.stem_length());
  outline_->extension_lengths.Remove(file.key.Lower().size() - parts.stem_end);
}

void FileTable::RemoveMark(std::uint64_t hash) noexcept {
  if (--*FindMark(hash) == 0) {
    marks_.Erase(hash, [](std::size_t) { return true; });
  }
}

StemFiles* FileTable::FindStemOf(const TrackedFile& file, const PathParts& parts) noexcept {
  return stems_.Find(parts.stem,
                     [&file](StemFiles files) { return SameUnits(files.file()->FolderAndStem(), file.FolderAndStem()); });
}

// Throws std::bad_alloc with nothing changed.
void FileTable::AddToStem(TrackedFile& file, const PathParts& parts) {
  StemFiles* const found = FindStemOf(file, parts);
  if (found == nullptr) {
    stems_.Insert(parts.stem, StemFiles(&file));
    return;
  }
  if (StemGroup* const group = found->group(); group != nullptr) {
    group->files.insert(&file);
    return;
  }
  auto group = std::make_unique<StemGroup>();
  group->files.insert({found->file(), &file});
  *found = StemFiles(group.release());
}

void FileTable::RemoveFromStem(TrackedFile& file, const PathParts& parts) noexcept {
  StemFiles* const found = FindStemOf(file, parts);
  StemGroup* const group = found->group();
  if (group == nullptr) {
    stems_.Erase(parts.stem, [&file](StemFiles files) { return files.file() == &file; });
    return;
  }
  group->files.erase(&file);
  if (group->files.size() == 1) {
    *found = StemFiles(*group->files.begin());
    delete group;
  }
}

}  // namespace zt
