#include <new>

#include "engine/file_tree.h"
#include "engine/length_counts.h"
#include "engine/paths.h"
#include "platform/prefetch.h"
#include "zteng/zt_items.h"
#include "zteng/zt_path_hash.h"

namespace {

std::size_t StemEnd(std::wstring_view path) {
  const std::wstring_view name = zt::Name(path);
  return path.size() - name.size() + zt::Stem(name).size();
}

}  // namespace

struct ZtFileIndex::Tables {
  /// Throws std::bad_alloc; the tables can only be destroyed then.
  void Add(Map::iterator entry) {
    hash.Insert(entry->first, &*entry);
    tree.Insert(entry);
    path_lengths.Add(entry->first.size());
    stem_ends.Add(StemEnd(entry->first));
  }

  ZtPathHash<Entry*> hash;
  zt::FileTree tree;
  zt::LengthCounts path_lengths;
  zt::LengthCounts stem_ends;
};

bool ZtFileIndex::Prepare(Map& files) noexcept {
  if (tables_ && tables_->tree.size() != files.size()) {
    tables_.reset();
  }
  if (files.size() < min_size_ / 2) {
    min_size_ = kMinSize;
  }
  if (!tables_ && files.size() >= min_size_) {
    Build(files);
  }
  return tables_ != nullptr;
}

void ZtFileIndex::Build(Map& files) noexcept {
  try {
    auto tables = std::make_shared<Tables>();
    for (auto entry = files.begin(); entry != files.end(); ++entry) {
      tables->Add(entry);
    }
    tables_ = std::move(tables);
    min_size_ = kMinSize;
  } catch (const std::bad_alloc&) {
    GiveUp(files);
  }
}

// Trying again at once would go over all files for every event.
void ZtFileIndex::GiveUp(const Map& files) noexcept {
  tables_.reset();
  min_size_ = files.size() + files.size() / 8 + 1;
}

ZtFileIndex::Entry* ZtFileIndex::Find(Map& files, const std::wstring& path) noexcept {
  if (Prepare(files)) {
    Entry* const* const found = tables_->hash.Find(path, [&path](const Entry* entry) {
      zt::Prefetch(entry, sizeof(Entry));  // Who finds a file reads its record next.
      return entry->first == path;
    });
    return found == nullptr ? nullptr : *found;
  }
  const auto found = files.find(path);
  return found == files.end() ? nullptr : &*found;
}

std::pair<ZtFileIndex::Entry*, bool> ZtFileIndex::FindOrAdd(Map& files, const std::wstring& path) {
  const bool is_prepared = Prepare(files);
  const auto next = is_prepared ? LowerBound(files, path) : files.lower_bound(path);
  if (next != files.end() && next->first == path) {
    return {&*next, false};
  }
  const auto entry = files.try_emplace(next, path);
  if (is_prepared) {
    Add(files, entry);
  }
  return {&*entry, true};
}

void ZtFileIndex::Add(Map& files, Map::iterator entry) noexcept {
  try {
    tables_->Add(entry);
  } catch (const std::bad_alloc&) {
    GiveUp(files);
  }
}

ZtFileIndex::Map::iterator ZtFileIndex::Erase(Map& files, Map::iterator entry) noexcept {
  if (tables_ && tables_->tree.Erase(entry->first)) {
    tables_->hash.Erase(entry->first, [&entry](const Entry* other) { return other == &*entry; });
    tables_->path_lengths.Remove(entry->first.size());
    tables_->stem_ends.Remove(StemEnd(entry->first));
    if (tables_->tree.IsSparse()) {
      tables_.reset();
    }
  }
  return files.erase(entry);
}

ZtFileIndex::Map::iterator ZtFileIndex::LowerBound(Map& files, const std::wstring& path) const noexcept {
  return tables_->tree.LowerBound(files, path);
}

std::size_t ZtFileIndex::NextPathLength(std::size_t length) const noexcept { return tables_->path_lengths.Next(length); }

std::size_t ZtFileIndex::NextStemEnd(std::size_t length) const noexcept { return tables_->stem_ends.Next(length); }
