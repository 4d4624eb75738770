// A keyed hash of text.

#ifndef ZT_ENGINE_SIP_HASH_H
#define ZT_ENGINE_SIP_HASH_H

#include <array>
#include <cstdint>
#include <string_view>

namespace zt {

/// SipHash-1-3 of the text's units, each taken as two bytes with the low one first. Who does not know the key cannot find texts
/// whose hashes meet.
std::uint64_t SipHash(std::wstring_view text, const std::array<std::uint64_t, 2>& key) noexcept;

}  // namespace zt

#endif  // ZT_ENGINE_SIP_HASH_H
