// File extensions in common use.

#ifndef ZT_ENGINE_SUSPICIOUS_EXTENSIONS_H
#define ZT_ENGINE_SUSPICIOUS_EXTENSIONS_H

#include <array>
#include <string_view>

namespace zt {

/// Lower-case, without a leading dot, in the order in which they are compared.
extern const std::array<std::u16string_view, 342> SuspiciousExtensions;

}  // namespace zt

#endif  // ZT_ENGINE_SUSPICIOUS_EXTENSIONS_H
