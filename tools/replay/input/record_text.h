// The two texts of a record: the target and the path of the acting side.

#ifndef ZT_TOOLS_REPLAY_INPUT_RECORD_TEXT_H
#define ZT_TOOLS_REPLAY_INPUT_RECORD_TEXT_H

#include <string_view>

#include "zteng/zteng.h"

namespace replay {

/// Stores UTF-8 text as the target, in UTF-16 code units. Text of more than 524 units is cut there, as a host's is, and the
/// function returns true; exactly 524 units have no terminator. Bytes that are no UTF-8 become U+FFFD.
/// REQUIRES: the record is zero so far.
[[nodiscard]] bool SetTarget(LOG_ITEM& record, std::string_view utf8);

/// Stores the first 35 bytes of the text as the path.
void SetPathHead(LOG_ITEM& record, std::string_view text);

/// Stores the last 35 bytes of the text as the path, fewer where that would split a UTF-8 sequence: of a long image path the
/// end tells more.
void SetPathTail(LOG_ITEM& record, std::string_view text);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_RECORD_TEXT_H
