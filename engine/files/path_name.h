// A path that an event names, made ready for look-ups once for the whole event.

#ifndef ZT_ENGINE_FILES_PATH_NAME_H
#define ZT_ENGINE_FILES_PATH_NAME_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "engine/files/path_text.h"
#include "engine/files/text_hash.h"

namespace zt {

/// Where the parts of a path lie, and the hashes that tables know it by.
struct PathParts {
  /// How many units of a stem its start has.
  static constexpr std::size_t kStemStart = 3;

  explicit PathParts(std::u16string_view path, const TextHash& hash);

  std::size_t name_begin;    ///< After the last "\"; 0 where there is none.
  std::size_t stem_end;      ///< The last "." of the name, or the path's end.
  std::uint64_t stem_start;  ///< The hash of the folder and the stem's start; of the whole stem where it is shorter.
  std::uint64_t stem;        ///< The hash of the folder and the stem.
  std::uint64_t whole;       ///< The hash of the whole path.

  [[nodiscard]] std::size_t stem_length() const { return stem_end - name_begin; }
};

/// A path in lower case with its parts and, once something keeps it, its text.
///
/// Borrows the units, at most TextHash::kMaxLength. Threads: used under the engine's lock, by one event.
class PathName {
 public:
  /// `lower` and `path` are one path, in lower case and in the letter case to keep.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the hashes of all beginnings are rarely wanted.
  PathName(std::u16string_view lower, std::u16string_view path, const TextHash& hash = TextHash::OfProcess())
      : lower_(lower), path_(path), hash_(hash), parts_(lower, hash) {}
  /// The path of a kept text.
  explicit PathName(const PathText& text, const TextHash& hash = TextHash::OfProcess())
      : lower_(text.Lower()), path_(text.Lower()), hash_(hash), parts_(lower_, hash), text_(text) {}

  [[nodiscard]] std::u16string_view lower() const { return lower_; }
  /// Up to, not including, the last "\"; the whole path where it has none.
  [[nodiscard]] std::u16string_view folder() const {
    return parts_.name_begin == 0 ? lower_ : lower_.substr(0, parts_.name_begin - 1);
  }
  /// After the folder.
  [[nodiscard]] std::u16string_view name() const { return lower_.substr(parts_.name_begin); }
  /// The name up to, not including, its last ".".
  [[nodiscard]] std::u16string_view stem() const { return lower_.substr(parts_.name_begin, parts_.stem_length()); }
  [[nodiscard]] const TextHash& hash() const { return hash_; }
  [[nodiscard]] const PathParts& parts() const { return parts_; }
  /// The hashes of all beginnings of the path, the empty one and the whole path included; made by the first call.
  const std::uint64_t* Beginnings() {
    if (!has_beginnings_) {
      hash_.HashBeginnings(lower_, beginnings_);
      has_beginnings_ = true;
    }
    return beginnings_.data();
  }
  /// The text, made by the first call and shared by all that keep it. Throws std::bad_alloc.
  const PathText& Text() {
    if (!text_) {
      text_.emplace(lower_, path_);
    }
    return *text_;
  }

 private:
  std::u16string_view lower_;
  std::u16string_view path_;
  const TextHash& hash_;
  PathParts parts_;
  std::optional<PathText> text_;
  bool has_beginnings_ = false;
  std::array<std::uint64_t, TextHash::kMaxLength + 1> beginnings_;  ///< Set where has_beginnings_ is.
};

}  // namespace zt

#endif  // ZT_ENGINE_FILES_PATH_NAME_H
