// Rows of a hex dump.

#ifndef ZT_TRACE_HEX_DUMP_H
#define ZT_TRACE_HEX_DUMP_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace zt {

inline constexpr std::size_t kHexRowBytes = 16;

/// One row: offset, the bytes in hex, the bytes as characters ("." where not printable ASCII), "\r\n".
class HexRow {
 public:
  /// @param offset  where the row begins in the data; its low 32 bits are shown
  /// @param bytes   1 to 16 of them
  HexRow(std::uint64_t offset, std::span<const unsigned char> bytes);

  [[nodiscard]] std::string_view view() const { return {text_.data(), size_}; }

 private:
  std::array<char, 8 + 2 + 3 * kHexRowBytes + 2 + kHexRowBytes + 2> text_;
  std::size_t size_;
};

}  // namespace zt

#endif  // ZT_TRACE_HEX_DUMP_H
