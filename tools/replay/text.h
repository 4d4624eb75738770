// Text from the engine's UTF-16 units and from records, as the tool writes it: UTF-8, always valid.

#ifndef ZT_TOOLS_REPLAY_TEXT_H
#define ZT_TOOLS_REPLAY_TEXT_H

#include <string>
#include <string_view>

#include "zteng/zteng.h"

namespace replay {

/// UTF-16 code units, one in each element, as UTF-8. A surrogate without its partner becomes U+FFFD.
std::string Utf8(std::wstring_view units);

/// The same with U+FFFD for control characters too, so that a path is always one line.
std::string PlainUtf8(std::wstring_view units);

/// `text` as people may see it on a terminal: U+FFFD stands for each character that would steer the terminal, end the line,
/// turn the direction of the text or not be seen at all, and for bytes that are no UTF-8. Whatever text of a capture or of the
/// command line reaches standard output or standard error comes through here, unless it is JSON.
std::string ShownText(std::string_view text);
std::string ShownText(std::wstring_view units);

/// The same for JSON: such characters are written as escapes, so that nothing is lost. `json` is JSON in UTF-8 without line
/// ends. All JSON that the tool writes comes through here.
std::string ShownJson(std::string json);

/// `text` as a JSON string with its quotes, as ShownJson has it. Bytes that are no UTF-8 become U+FFFD.
std::string JsonString(std::string_view text);
std::string JsonString(std::wstring_view units);

/// A record's Target: up to its first zero unit, or all of it.
std::wstring TargetOf(const LOG_ITEM& record);

/// A record's Path: up to its first zero byte, or all of it. The bytes are the host's and need not be UTF-8.
std::string PathOf(const LOG_ITEM& record);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_TEXT_H
