// Whether a file name is another one, transformed.

#ifndef ZT_ENGINE_NAME_MATCH_H
#define ZT_ENGINE_NAME_MATCH_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/files/path_name.h"
#include "engine/files/text_hash.h"
#include "engine/paths.h"

namespace zt {

/// A file name that may be a transformed copy, and the parts of it that every comparison uses. Views a path.
class TargetName {
 public:
  explicit TargetName(std::u16string_view path) : TargetName(Name(path), Stem(Name(path))) {}
  /// The same, of which Find takes no longer for a long part than for a short one. Borrows `path`.
  explicit TargetName(PathName& path) : TargetName(path.name(), path.stem()) {
    hash_ = &path.hash();
    beginnings_ = path.Beginnings() + path.parts().name_begin;
  }

  /// Where `part` occurs first in the name, or npos.
  [[nodiscard]] std::size_t Find(std::u16string_view part) const;

  std::u16string_view name;
  std::u16string_view stem;
  std::u16string_view dotted;
  std::u16string_view after_first_dot;

 private:
  TargetName(std::u16string_view path_name, std::u16string_view path_stem)
      : name(path_name), stem(path_stem), dotted(DottedExtension(name)), after_first_dot(AfterFirstDot(name)) {}

  const TextHash* hash_ = nullptr;             ///< Null where the hashes of the name are not known.
  const std::uint64_t* beginnings_ = nullptr;  ///< From the name on.
};

/// Whether the target's name comes from the name of an item of the same folder by the difference in `name_diff`. A difference
/// that is another one is learned: it replaces `name_diff`. An item whose stem does not occur in the target's name changes
/// nothing.
///
/// @param position  where the item's name occurs first in the target's, or npos
bool MatchName(std::u16string& name_diff, const TargetName& target, std::u16string_view item_name, std::size_t position);

}  // namespace zt

#endif  // ZT_ENGINE_NAME_MATCH_H
