#include "engine/text.h"

#include <cstddef>
#include <cstdint>

namespace zt {

// Eight units at a time up to the first eight that differ.
bool LessUnits(std::u16string_view a, std::u16string_view b) {
  constexpr std::size_t kStep = 8;
  std::size_t same = 0;
  while (same + kStep <= a.size() && same + kStep <= b.size() &&
         std::memcmp(a.data() + same, b.data() + same, kStep * sizeof(char16_t)) == 0) {
    same += kStep;
  }
  return a.substr(same) < b.substr(same);
}

}  // namespace zt
