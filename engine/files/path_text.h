// A path as records keep it.

#ifndef ZT_ENGINE_FILES_PATH_TEXT_H
#define ZT_ENGINE_FILES_PATH_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "engine/files/text_hash.h"

namespace zt {

/// A path in lower case, and which of its letters were upper-case where it was seen: a key and a name to show in one. Kept once
/// however many records and lists of an engine share it.
///
/// Threads: the count of those who share a text is guarded by the engine's lock.
class PathText {
 public:
  PathText() = default;
  /// `path` in its own letter case, and the same in lower case. Throws std::bad_alloc.
  PathText(std::u16string_view lower, std::u16string_view path);
  PathText(const PathText& other) noexcept : text_(other.text_) { Share(); }
  PathText(PathText&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
  PathText& operator=(PathText other) noexcept {
    std::swap(text_, other.text_);
    return *this;
  }
  ~PathText() { Release(); }

  [[nodiscard]] bool empty() const noexcept { return text_ == nullptr || text_->length == 0; }
  /// The path in lower case. Valid as long as a copy of this text lives.
  [[nodiscard]] std::u16string_view Lower() const noexcept {
    return text_ == nullptr ? std::u16string_view() : std::u16string_view(text_->units(), text_->length);
  }
  /// The path in its own letter case.
  [[nodiscard]] std::wstring Wide() const;
  /// A hash of the path in its own letter case.
  [[nodiscard]] std::uint64_t Hash(const TextHash& hash) const noexcept;

  /// Whether both are one text in the same letter case.
  friend bool operator==(const PathText& a, const PathText& b) noexcept;

 private:
  /// Followed by the units and, where there are upper-case letters, a bit for each unit.
  struct Text {
    std::uint32_t sharers;
    std::uint32_t length;
    bool has_upper;

    [[nodiscard]] char16_t* units() { return reinterpret_cast<char16_t*>(this + 1); }
    [[nodiscard]] unsigned char* upper_bits() { return reinterpret_cast<unsigned char*>(units() + length); }
    [[nodiscard]] bool IsUpper(std::size_t unit) { return has_upper && (upper_bits()[unit / 8] >> unit % 8 & 1) != 0; }
  };

  void Share() noexcept {
    if (text_ != nullptr) {
      ++text_->sharers;
    }
  }
  void Release() noexcept {
    if (text_ != nullptr && --text_->sharers == 0) {
      ::operator delete(text_);
    }
  }

  Text* text_ = nullptr;  ///< Null for an empty path.
};

}  // namespace zt

#endif  // ZT_ENGINE_FILES_PATH_TEXT_H
