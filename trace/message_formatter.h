// The trace library's own printf: small, without locale, the same on every system.
//
// Literal text is copied. A conversion is "%", an optional pad flag ("0" or a space), an optional decimal width, an optional
// "l" or "ll", and one of
//
//   d i    signed 32-bit number, 64-bit with "ll" ("l" alone stays 32-bit on every system); right-aligned in the width with
//          spaces, with "0" filled with zeros after the sign
//   u      unsigned 32-bit number, 64-bit with "ll"; aligned as d
//   x X    unsigned as u, in hex with lower- or upper-case digits, always after "0x". The width counts the "0x"; zeros stand
//          between it and the digits, spaces before it
//   p      pointer: "0x" and 16 upper-case hex digits; no width
//   c      character, after width - 1 spaces
//   s      zero-terminated narrow string, right-aligned in the width with spaces; null prints nothing
//   S ws   zero-terminated wide string, as UTF-8; no width; null prints nothing
//   %      a percent sign
//
// Any other character in the place of the conversion prints nothing and takes no argument; the text after it is literal again.

#ifndef ZT_TRACE_MESSAGE_FORMATTER_H
#define ZT_TRACE_MESSAGE_FORMATTER_H

#include <cstdarg>
#include <cstddef>

namespace zt {

/// Bytes that a formatted message takes at most, its terminating NUL included.
inline constexpr std::size_t kMessageCapacity = 16384;

/// Formats `arguments` into `destination`, which has room for kMessageCapacity bytes. Text beyond that is dropped, be it in the
/// middle of a character; the result always ends in NUL. The second parameter is there for callers that hand on the size of
/// their buffer; it is ignored. A null format is an empty one.
///
/// Returns the number of characters written, without the NUL. `arguments` is left as it was. Uses no heap, never fails.
std::size_t TraceFormatMessage(char* destination, std::size_t ignored, const char* format, std::va_list arguments);

}  // namespace zt

#endif  // ZT_TRACE_MESSAGE_FORMATTER_H
