// The Detail column of Process Monitor: "Key: value, Key: value". Values hold ", " themselves ("ShareMode: Read, Write"), and
// some are free text, so a value ends only before a key that its operation is known to have. Pure functions.

#ifndef ZT_TOOLS_REPLAY_INPUT_PROCMON_DETAIL_H
#define ZT_TOOLS_REPLAY_INPUT_PROCMON_DETAIL_H

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace replay {

/// The keys that an operation's Detail may have.
struct DetailKeys {
  std::span<const std::string_view> keys;
  std::string_view free_text = {};  ///< A further key whose value goes to the end of the text; empty: there is none.
};

extern const DetailKeys kCreateFileKeys;
extern const DetailKeys kTransferKeys;  ///< ReadFile, WriteFile.
extern const DetailKeys kRenameKeys;
extern const DetailKeys kDispositionKeys;
extern const DetailKeys kSizeKeys;  ///< Setting a size.
extern const DetailKeys kSectionKeys;
extern const DetailKeys kQueryKeys;  ///< Querying what is known of a file.
extern const DetailKeys kProcessCreateKeys;
extern const DetailKeys kProcessStartKeys;

/// The value of `key` in `detail`, or nothing. REQUIRES: `key` is one of `keys`.
std::optional<std::string_view> DetailValue(std::string_view detail, std::string_view key, const DetailKeys& keys);

/// Whether `item` is one of the items of a list "a, b, c" as a whole.
bool HasItem(std::string_view list, std::string_view item);

/// An integer with the thousands separators of any locale: "1,234,567". Between groups of two or three digits, the last of
/// three, stands one comma, full stop, apostrophe, space or character beyond ASCII, everywhere the same. A minus sign in front
/// (writes to the end of a file have the offset -1) gives the two's complement. Nothing where the text is something else, such
/// as a date, or more than 64 bits hold.
std::optional<std::uint64_t> GroupedNumber(std::string_view text);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_PROCMON_DETAIL_H
