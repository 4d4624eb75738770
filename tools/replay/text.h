// Text from the engine's UTF-16 units and from records, as the tool writes it: UTF-8, always valid.

#ifndef ZT_TOOLS_REPLAY_TEXT_H
#define ZT_TOOLS_REPLAY_TEXT_H

#include <string>
#include <string_view>

#include "zteng/zteng.h"

namespace replay {

/// UTF-16 code units, one in each element, as UTF-8. A surrogate without its partner becomes U+FFFD.
std::string Utf8(std::wstring_view units);

/// The same for what people read on a terminal or line by line: a control character becomes U+FFFD too, so that a path from a
/// capture can neither steer the terminal nor look like two lines.
std::string PlainUtf8(std::wstring_view units);

/// `text` as a JSON string with its quotes. Bytes that are no UTF-8 become U+FFFD.
std::string JsonString(std::string_view text);
std::string JsonString(std::wstring_view units);

/// A record's Target: up to its first zero unit, or all of it.
std::wstring TargetOf(const LOG_ITEM& record);

/// A record's Path: up to its first zero byte, or all of it. The bytes are the host's and need not be UTF-8.
std::string PathOf(const LOG_ITEM& record);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_TEXT_H
