// The score of a process after one event line of its own.

#ifndef ZT_ENGINE_LINE_SCORING_H
#define ZT_ENGINE_LINE_SCORING_H

#include <cstdint>
#include <string_view>

#include "engine/context.h"

namespace zt {

/// `score`, or one more (wrapping) when the line loads a module of the watch table and `score` is not 0. `target` is the line's
/// Target.
std::int32_t ScoreLine(const _ZtEngineCore& engine, std::uint32_t behavior, std::u16string_view target, std::int32_t score);

}  // namespace zt

#endif  // ZT_ENGINE_LINE_SCORING_H
