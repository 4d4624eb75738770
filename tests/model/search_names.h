// Random file names for searches.

#ifndef ZT_TESTS_MODEL_SEARCH_NAMES_H
#define ZT_TESTS_MODEL_SEARCH_NAMES_H

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zt::model {

enum class Shape : std::uint8_t {
  kRandom,   ///< Over a small alphabet.
  kHostile,  ///< As somebody would choose them who wants searches to be slow.
};

/// Random keys and targets of one shape.
class Names {
 public:
  Names(std::uint32_t seed, Shape shape);

  std::size_t Below(std::size_t bound) { return random_() % bound; }

  std::wstring Key();
  /// A new path, or a known one with something put into it.
  std::wstring Target(const std::vector<std::wstring>& known);

 private:
  std::wstring Text(std::size_t longest);
  std::wstring Path(const std::wstring& name);
  std::wstring RandomPath(std::size_t longest_name) { return Path(Text(longest_name)); }
  std::wstring HostileName();
  std::wstring Part();
  std::wstring Letters(wchar_t letter) { return std::wstring(Below(longest_), letter); }

  std::mt19937 random_;
  Shape shape_;
  std::wstring_view alphabet_;
  std::size_t longest_;  ///< Of a part of a hostile name.
  std::wstring whole_;   ///< What hostile names are parts of.
};

}  // namespace zt::model

#endif  // ZT_TESTS_MODEL_SEARCH_NAMES_H
