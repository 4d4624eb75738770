#include "zteng/zt_path_hash.h"

#include <array>
#include <random>

#include "engine/sip_hash.h"

namespace {

std::array<std::uint64_t, 2> MakeKey() noexcept {
  std::array<std::uint64_t, 2> key = {};
  try {
    std::random_device random;
    for (std::uint64_t& half : key) {
      half = static_cast<std::uint64_t>(random()) << 32 | random();
    }
  } catch (...) {
    // Without a source of random numbers, where the system has put this process's memory has to do.
    key[0] ^= reinterpret_cast<std::uintptr_t>(&key);
  }
  return key;
}

}  // namespace

std::uint32_t ZtPathTag(std::wstring_view path) noexcept {
  static const std::array<std::uint64_t, 2> kKey = MakeKey();
  return static_cast<std::uint32_t>(zt::SipHash(path, kKey) >> 32) | 1;
}
