// Whether a file name is another one, transformed.

#ifndef ZT_ENGINE_NAME_MATCH_H
#define ZT_ENGINE_NAME_MATCH_H

#include <string>
#include <string_view>

#include "engine/paths.h"

namespace zt {

/// A file name that may be a transformed copy, and the parts of it that every comparison uses. Views a path.
struct TargetName {
  explicit TargetName(std::u16string_view path)
      : name(Name(path)), stem(Stem(name)), dotted(DottedExtension(name)), after_first_dot(AfterFirstDot(name)) {}

  std::u16string_view name;
  std::u16string_view stem;
  std::u16string_view dotted;
  std::u16string_view after_first_dot;
};

/// Whether the target's name comes from the name of an item of the same folder by the difference in `name_diff`. A difference
/// that is another one is learned: it replaces `name_diff`. An item whose stem does not stand in the target's name changes
/// nothing.
bool MatchName(std::u16string& name_diff, const TargetName& target, std::u16string_view item_name);

}  // namespace zt

#endif  // ZT_ENGINE_NAME_MATCH_H
