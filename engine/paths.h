// Pure functions on wide paths. Views in, views out: nothing is copied but by ToLower.

#ifndef ZT_ENGINE_PATHS_H
#define ZT_ENGINE_PATHS_H

#include <cstddef>
#include <string>
#include <string_view>

namespace zt {

/// Up to, not including, the last "\"; the whole path when it has none.
std::wstring_view Folder(std::wstring_view path);
/// After the last "\"; the whole path when it has none.
std::wstring_view Name(std::wstring_view path);
/// A name up to, not including, its last "."; the whole name when it has none.
std::wstring_view Stem(std::wstring_view name);
/// A name after its last "."; the whole name when it has none.
std::wstring_view LastExtension(std::wstring_view name);
/// A name after its first "."; the whole name when it has none.
std::wstring_view AfterFirstDot(std::wstring_view name);
/// From the last "." that no space or "\" follows, with the dot; empty when there is none. Reads up to the first zero unit.
std::wstring_view DottedExtension(std::wstring_view name);
/// After the last "\", "/" or ":" that something other than a "\" or "/" follows; the whole path when there is none. Reads up
/// to the first zero unit.
std::wstring_view FileNamePart(std::wstring_view path);
/// Up to the first zero unit.
std::wstring_view UpToZero(std::wstring_view text);
/// The number of units that both texts begin with.
std::size_t CommonPrefix(std::wstring_view a, std::wstring_view b);
/// Each of A to Z by itself, and nothing else: the keys of records must not change with the locale that the host sets.
std::wstring ToLower(std::wstring_view text);

}  // namespace zt

#endif  // ZT_ENGINE_PATHS_H
