// Pure functions on paths. Views in, views out: nothing is copied.

#ifndef ZT_ENGINE_PATHS_H
#define ZT_ENGINE_PATHS_H

#include <string_view>

namespace zt {

/// Up to, not including, the last "\"; the whole path when it has none.
std::u16string_view Folder(std::u16string_view path);
/// After the last "\"; the whole path when it has none.
std::u16string_view Name(std::u16string_view path);
/// A name up to, not including, its last "."; the whole name when it has none.
std::u16string_view Stem(std::u16string_view name);
/// A name after its last "."; the whole name when it has none.
std::u16string_view LastExtension(std::u16string_view name);
/// A name after its first "."; the whole name when it has none.
std::u16string_view AfterFirstDot(std::u16string_view name);
/// From the last "." that no space or "\" follows, with the dot; empty when there is none. Reads up to the first zero unit.
std::u16string_view DottedExtension(std::u16string_view name);
/// After the last "\", "/" or ":" that something other than a "\" or "/" follows; the whole path when there is none. Reads up
/// to the first zero unit.
std::u16string_view FileNamePart(std::u16string_view path);
/// Up to the first zero unit.
std::u16string_view UpToZero(std::u16string_view text);

// The case of letters: of A to Z and nothing else, as the keys of records must not change with the locale that a host sets.

constexpr bool IsUpper(char16_t unit) { return unit >= u'A' && unit <= u'Z'; }
constexpr char16_t ToLower(char16_t unit) { return IsUpper(unit) ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit; }
/// REQUIRES: `unit` is one of a to z.
constexpr char16_t ToUpper(char16_t unit) { return static_cast<char16_t>(unit - (u'a' - u'A')); }

}  // namespace zt

#endif  // ZT_ENGINE_PATHS_H
