// Whether a file name is another one, transformed.

#ifndef ZT_ENGINE_NAME_MATCH_H
#define ZT_ENGINE_NAME_MATCH_H

#include <string>
#include <string_view>

#include "engine/paths.h"

namespace zt {

/// A file name that may be a transformed copy, and the parts of it that every comparison uses. Views a path.
struct TargetName {
  explicit TargetName(std::wstring_view path)
      : name(Name(path)), stem(Stem(name)), dotted(DottedExtension(name)), after_first_dot(AfterFirstDot(name)) {}

  std::wstring_view name;
  std::wstring_view stem;
  std::wstring_view dotted;
  std::wstring_view after_first_dot;
};

/// Whether the target's name comes from the name of an item of the same folder by the difference in `name_diff`. A difference
/// that is another one is learned: it replaces `name_diff`. An item whose stem does not stand in the target's name changes
/// nothing.
bool MatchName(std::wstring& name_diff, const TargetName& target, std::wstring_view item_name);

}  // namespace zt

#endif  // ZT_ENGINE_NAME_MATCH_H
