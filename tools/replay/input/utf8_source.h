// Text captures as UTF-8, whatever Unicode form they were saved in.

#ifndef ZT_TOOLS_REPLAY_INPUT_UTF8_SOURCE_H
#define ZT_TOOLS_REPLAY_INPUT_UTF8_SOURCE_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "tools/replay/input/byte_source.h"

namespace replay {

enum class TextEncoding { kUtf8, kUtf16LittleEndian, kUtf16BigEndian };

/// How a text is encoded, and how many bytes of byte order mark precede it.
struct TextForm {
  TextEncoding encoding = TextEncoding::kUtf8;
  std::size_t mark_size = 0;
};

/// Tells the form by a byte order mark, or, without one, by a zero byte beside the first character, which is ASCII in every
/// capture. Anything else counts as UTF-8.
TextForm TextFormOf(std::string_view first_bytes);

/// Appends UTF-16 text to `utf8`, lone surrogates as U+FFFD. Returns how many bytes of `bytes` are used up: a half unit and a
/// lead surrogate whose trail has not come yet are left.
std::size_t AppendUtf16AsUtf8(std::string_view bytes, TextEncoding encoding, std::string& utf8);

/// The text of `source` as UTF-8 without a byte order mark. UTF-16 that ends amid a character throws InputError from Read.
/// UTF-8 is handed on unchecked.
std::unique_ptr<ByteSource> OpenAsUtf8(std::unique_ptr<ByteSource> source);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_UTF8_SOURCE_H
