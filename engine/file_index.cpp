#include <bit>
#include <new>
#include <random>

#include "zteng/zt_items.h"

namespace {

constexpr std::size_t kMinSlots = 128;

std::uint64_t MakeSecret() noexcept {
  std::uint64_t secret = 0x9E3779B97F4A7C15;
  try {
    std::random_device random;
    secret ^= static_cast<std::uint64_t>(random()) << 32 | random();
  } catch (...) {
    // Without a source of random numbers, where the system has put this process's memory has to do.
    secret ^= reinterpret_cast<std::uintptr_t>(&secret);
  }
  return secret;
}

std::uint64_t Mix(std::uint64_t hash, std::uint64_t word) noexcept {
  hash = std::rotl(hash ^ word, 29) * 0xBF58476D1CE4E5B9;
  return hash ^ (hash >> 32);
}

std::uint64_t Unit(wchar_t unit) noexcept { return static_cast<std::uint16_t>(unit); }

// At most three quarters of the slots are in use.
bool IsFull(std::size_t count, std::size_t slots) noexcept { return count >= slots - slots / 4; }

}  // namespace

ZtFileIndex::Entry* ZtFileIndex::Find(Map& files, const std::wstring& path) noexcept {
  if (files.size() >= kMinSize && count_ != files.size()) {
    Build(files);
  }
  if (files.size() < kMinSize || count_ != files.size()) {
    const auto found = files.find(path);
    return found == files.end() ? nullptr : &*found;
  }
  const std::uint32_t tag = TagOf(path);
  for (std::size_t slot = HomeOf(tag); tags_[slot] != 0; slot = Next(slot)) {
    if (tags_[slot] == tag && entries_[slot]->first == path) {
      return entries_[slot];
    }
  }
  return nullptr;
}

void ZtFileIndex::OnAdded(Entry& entry) noexcept {
  if (tags_.empty()) {
    return;
  }
  try {
    if (IsFull(count_ + 1, tags_.size())) {
      Resize(tags_.size() * 2);
    }
    Put(TagOf(entry.first), &entry);
  } catch (const std::bad_alloc&) {
    Drop();
  }
}

void ZtFileIndex::OnErased(const Entry& entry) noexcept {
  if (tags_.empty()) {
    return;
  }
  const std::uint32_t tag = TagOf(entry.first);
  std::size_t slot = HomeOf(tag);
  while (tags_[slot] != 0 && entries_[slot] != &entry) {
    slot = Next(slot);
  }
  if (tags_[slot] == 0) {
    return;  // The map was changed without a word; the next search makes the table anew.
  }
  // What follows moves up, so that no search stops at the gap: whatever does not stand between its home and the gap.
  for (std::size_t next = Next(slot); tags_[next] != 0; next = Next(next)) {
    const std::size_t mask = tags_.size() - 1;
    if (((next - HomeOf(tags_[next])) & mask) >= ((next - slot) & mask)) {
      tags_[slot] = tags_[next];
      entries_[slot] = entries_[next];
      slot = next;
    }
  }
  tags_[slot] = 0;
  --count_;
}

std::uint32_t ZtFileIndex::TagOf(std::wstring_view path) noexcept {
  static const std::uint64_t kSecret = MakeSecret();
  std::uint64_t hash = kSecret ^ path.size();
  for (; path.size() >= 4; path.remove_prefix(4)) {
    hash = Mix(hash, Unit(path[0]) | Unit(path[1]) << 16 | Unit(path[2]) << 32 | Unit(path[3]) << 48);
  }
  for (const wchar_t unit : path) {
    hash = Mix(hash, Unit(unit));
  }
  hash = Mix(hash, kSecret);
  return static_cast<std::uint32_t>(hash >> 32) | 1;
}

void ZtFileIndex::Build(Map& files) noexcept {
  Drop();
  try {
    std::size_t slots = kMinSlots;
    while (IsFull(files.size() + 1, slots)) {
      slots *= 2;
    }
    Resize(slots);
  } catch (const std::bad_alloc&) {
    Drop();
    return;
  }
  for (Entry& entry : files) {
    Put(TagOf(entry.first), &entry);
  }
}

// The tags tell where entries go, so no key is read.
void ZtFileIndex::Resize(std::size_t slots) {
  std::vector<std::uint32_t> tags(slots);
  std::vector<Entry*> entries(slots);
  tags.swap(tags_);
  entries.swap(entries_);
  count_ = 0;
  for (std::size_t slot = 0; slot < tags.size(); ++slot) {
    if (tags[slot] != 0) {
      Put(tags[slot], entries[slot]);
    }
  }
}

void ZtFileIndex::Put(std::uint32_t tag, Entry* entry) noexcept {
  std::size_t slot = HomeOf(tag);
  while (tags_[slot] != 0) {
    slot = Next(slot);
  }
  tags_[slot] = tag;
  entries_[slot] = entry;
  ++count_;
}

void ZtFileIndex::Drop() noexcept {
  tags_ = {};
  entries_ = {};
  count_ = 0;
}
