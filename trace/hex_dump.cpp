#include "trace/hex_dump.h"

#include "trace/bounded_text.h"
#include "trace/number_text.h"

namespace zt {
namespace {

void AppendOffset(BoundedText& out, std::uint64_t offset) {
  for (int shift = 28; shift >= 0; shift -= 4) {
    out.Append(kUpperHexDigits[(offset >> shift) & 0xF]);
  }
}

void AppendHex(BoundedText& out, unsigned char byte) {
  out.Append(kUpperHexDigits[byte >> 4]);
  out.Append(kUpperHexDigits[byte & 0xF]);
  out.Append(' ');
}

constexpr char Printable(unsigned char byte) { return byte >= 0x20 && byte <= 0x7E ? static_cast<char>(byte) : '.'; }

}  // namespace

HexRow::HexRow(std::uint64_t offset, std::span<const unsigned char> bytes) {
  BoundedText out(text_.data(), text_.size());
  AppendOffset(out, offset);
  out.Append("  ");
  for (const unsigned char byte : bytes) {
    AppendHex(out, byte);
  }
  out.Fill(3 * (kHexRowBytes - bytes.size()), ' ');
  out.Append("  ");
  for (const unsigned char byte : bytes) {
    out.Append(Printable(byte));
  }
  out.Append("\r\n");
  size_ = out.size();
}

}  // namespace zt
