#include "engine/sip_hash.h"

#include <bit>
#include <cstddef>

namespace zt {
namespace {

/// The state of the hash, which takes words of eight bytes.
class State {
 public:
  explicit State(const std::array<std::uint64_t, 2>& key)
      : v0_(0x736f6d6570736575 ^ key[0]),
        v1_(0x646f72616e646f6d ^ key[1]),
        v2_(0x6c7967656e657261 ^ key[0]),
        v3_(0x7465646279746573 ^ key[1]) {}

  void Take(std::uint64_t word) {
    v3_ ^= word;
    Round();
    v0_ ^= word;
  }

  std::uint64_t Finish() {
    v2_ ^= 0xFF;
    Round();
    Round();
    Round();
    return v0_ ^ v1_ ^ v2_ ^ v3_;
  }

 private:
  void Round() {
    v0_ += v1_;
    v2_ += v3_;
    v1_ = std::rotl(v1_, 13) ^ v0_;
    v3_ = std::rotl(v3_, 16) ^ v2_;
    v0_ = std::rotl(v0_, 32);
    v2_ += v1_;
    v0_ += v3_;
    v1_ = std::rotl(v1_, 17) ^ v2_;
    v3_ = std::rotl(v3_, 21) ^ v0_;
    v2_ = std::rotl(v2_, 32);
  }

  std::uint64_t v0_;
  std::uint64_t v1_;
  std::uint64_t v2_;
  std::uint64_t v3_;
};

std::uint64_t Unit(wchar_t unit) { return static_cast<std::uint16_t>(unit); }

}  // namespace

std::uint64_t SipHash(std::wstring_view text, const std::array<std::uint64_t, 2>& key) noexcept {
  State state(key);
  const std::uint64_t bytes = text.size() * 2;
  for (; text.size() >= 4; text.remove_prefix(4)) {
    state.Take(Unit(text[0]) | Unit(text[1]) << 16 | Unit(text[2]) << 32 | Unit(text[3]) << 48);
  }
  std::uint64_t last = bytes << 56;
  for (std::size_t unit = 0; unit < text.size(); ++unit) {
    last |= Unit(text[unit]) << (16 * unit);
  }
  state.Take(last);
  return state.Finish();
}

}  // namespace zt
