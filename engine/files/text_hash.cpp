#include "engine/files/text_hash.h"

#include <random>

namespace zt {
namespace {

std::uint64_t RandomSeed() {
  try {
    std::random_device random;
    return static_cast<std::uint64_t>(random()) << 32 | random();
  } catch (...) {
    // Without a source of random numbers, the place where the system put this library has to do.
    static const char kPlace = 0;
    return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&kPlace));
  }
}

/// Spreads a seed over all bits (the finisher of SplitMix64).
std::uint64_t Mix(std::uint64_t seed) {
  seed += 0x9E3779B97F4A7C15;
  seed = (seed ^ (seed >> 30)) * 0xBF58476D1CE4E5B9;
  seed = (seed ^ (seed >> 27)) * 0x94D049BB133111EB;
  return seed ^ (seed >> 31);
}

}  // namespace

// A base of fewer than 2^32 would let short texts keep small hashes.
TextHash::TextHash(std::uint64_t seed) : powers_{} {
  constexpr std::uint64_t kSmallestBase = std::uint64_t{1} << 32;
  powers_[0] = 1;
  powers_[1] = kSmallestBase + Mix(seed) % (kPrime - kSmallestBase);
  for (std::size_t power = 2; power < powers_.size(); ++power) {
    powers_[power] = Product(powers_[power - 1], powers_[1]);
  }
}

const TextHash& TextHash::OfProcess() {
  static const TextHash kHash(RandomSeed());
  return kHash;
}

// The products do not wait for each other, and their sum is reduced once: it has at most 123 bits.
std::uint64_t TextHash::Append(std::uint64_t hash, std::u16string_view text) const {
  WideSum sum(0);
  sum.AddProduct(hash, powers_[text.size()]);
  const std::uint64_t* power = powers_.data() + text.size();
  for (const char16_t unit : text) {
    sum.AddProduct(std::uint64_t{unit} + 1, *power--);
  }
  return Reduce(sum);
}

// Every fourth hash does not wait for the three before it.
void TextHash::HashBeginnings(std::u16string_view text, std::span<std::uint64_t> hashes) const {
  std::uint64_t hash = 0;
  hashes[0] = hash;
  std::size_t at = 0;
  for (; at + 4 <= text.size(); at += 4) {
    const std::uint64_t fourth = Append(hash, text.substr(at, 4));
    hashes[at + 1] = AppendUnit(hash, text[at]);
    hashes[at + 2] = AppendUnit(hashes[at + 1], text[at + 1]);
    hashes[at + 3] = AppendUnit(hashes[at + 2], text[at + 2]);
    hashes[at + 4] = fourth;
    hash = fourth;
  }
  for (; at < text.size(); ++at) {
    hashes[at + 1] = AppendUnit(hashes[at], text[at]);
  }
}

}  // namespace zt
