#include "tools/replay/input/utf8_source.h"

#include <utf8cpp/utf8.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <utility>

#include "tools/replay/input/call.h"
#include "tools/replay/input/peekable_source.h"

namespace replay {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

char16_t UnitAt(std::string_view bytes, std::size_t at, TextEncoding encoding) {
  const auto first = static_cast<unsigned char>(bytes[at]);
  const auto second = static_cast<unsigned char>(bytes[at + 1]);
  const bool little = encoding == TextEncoding::kUtf16LittleEndian;
  return static_cast<char16_t>(little ? first | second << 8 : first << 8 | second);
}

bool IsLead(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsTrail(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

class Utf16Source : public PeekableSource {
 public:
  Utf16Source(std::unique_ptr<ByteSource> utf16, TextEncoding encoding) : utf16_(std::move(utf16)), encoding_(encoding) {}

  [[nodiscard]] const std::string& name() const override { return utf16_->name(); }
  [[nodiscard]] std::uint64_t consumed() const override { return utf16_->consumed(); }
  [[nodiscard]] std::uint64_t total() const override { return utf16_->total(); }

 protected:
  std::size_t ReadMore(char* buffer, std::size_t size) override {
    while (taken_ == utf8_.size() && Convert()) {
    }
    const std::size_t count = std::min(size, utf8_.size() - taken_);
    std::memcpy(buffer, utf8_.data() + taken_, count);
    taken_ += count;
    return count;
  }

 private:
  // False at the end.
  bool Convert() {
    std::array<char, std::size_t{16} * 1024> block;
    const std::size_t count = utf16_->Read(block.data(), block.size());
    if (count == 0 && !pending_.empty()) {
      throw InputError(name(), "the UTF-16 text ends amid a character");
    }
    pending_.append(block.data(), count);
    utf8_.clear();
    taken_ = 0;
    pending_.erase(0, AppendUtf16AsUtf8(pending_, encoding_, utf8_));
    return count > 0;
  }

  std::unique_ptr<ByteSource> utf16_;
  TextEncoding encoding_;
  std::string pending_;  // At most three bytes between two conversions.
  std::string utf8_;
  std::size_t taken_ = 0;
};

}  // namespace

TextForm TextFormOf(std::string_view first_bytes) {
  using namespace std::string_view_literals;
  if (first_bytes.starts_with("\xEF\xBB\xBF")) {
    return {TextEncoding::kUtf8, 3};
  }
  if (first_bytes.starts_with("\xFF\xFE")) {
    return {TextEncoding::kUtf16LittleEndian, 2};
  }
  if (first_bytes.starts_with("\xFE\xFF")) {
    return {TextEncoding::kUtf16BigEndian, 2};
  }
  if (first_bytes.size() >= 2 && first_bytes[0] != '\0' && first_bytes[1] == '\0') {
    return {TextEncoding::kUtf16LittleEndian, 0};
  }
  if (first_bytes.size() >= 2 && first_bytes[0] == '\0' && first_bytes[1] != '\0') {
    return {TextEncoding::kUtf16BigEndian, 0};
  }
  return {};
}

std::size_t AppendUtf16AsUtf8(std::string_view bytes, TextEncoding encoding, std::string& utf8) {
  std::size_t at = 0;
  while (at + 1 < bytes.size()) {
    const char16_t unit = UnitAt(bytes, at, encoding);
    char32_t character = unit;
    std::size_t size = 2;
    if (IsLead(unit)) {
      if (at + 3 >= bytes.size()) {
        break;
      }
      const char16_t next = UnitAt(bytes, at + 2, encoding);
      character = IsTrail(next) ? 0x10000U + ((unit - 0xD800U) << 10) + (next - 0xDC00U) : kReplacement;
      if (IsTrail(next)) {
        size = 4;
      }
    } else if (IsTrail(unit)) {
      character = kReplacement;
    }
    utf8::append(character, std::back_inserter(utf8));
    at += size;
  }
  return at;
}

std::unique_ptr<ByteSource> OpenAsUtf8(std::unique_ptr<ByteSource> source) {
  const TextForm form = TextFormOf(source->Peek(4));
  std::array<char, 4> mark;
  static_cast<void>(source->Read(mark.data(), form.mark_size));
  if (form.encoding == TextEncoding::kUtf8) {
    return source;
  }
  return std::make_unique<Utf16Source>(std::move(source), form.encoding);
}

}  // namespace replay
