// The names of the behaviour codes, as event scripts write them.

#ifndef ZT_TOOLS_REPLAY_INPUT_BEHAVIOR_NAMES_H
#define ZT_TOOLS_REPLAY_INPUT_BEHAVIOR_NAMES_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "zteng/zteng.h"

namespace replay {

/// A behaviour code that has a name.
struct NamedBehavior {
  std::string_view name;
  std::uint32_t code;
};

inline constexpr std::array kNamedBehaviors = {
    NamedBehavior{"BehaviorCreate", BehaviorCreate},
    NamedBehavior{"BehaviorCreateNew", BehaviorCreateNew},
    NamedBehavior{"BehaviorRead", BehaviorRead},
    NamedBehavior{"BehaviorWrite", BehaviorWrite},
    NamedBehavior{"BehaviorDelete", BehaviorDelete},
    NamedBehavior{"BehaviorRename", BehaviorRename},
    NamedBehavior{"BehaviorSizeChange", BehaviorSizeChange},
    NamedBehavior{"BehaviorSectionSync", BehaviorSectionSync},
    NamedBehavior{"BehaviorDeleteAlt", BehaviorDeleteAlt},
    NamedBehavior{"BehaviorModuleLoad", BehaviorModuleLoad},
    NamedBehavior{"BehaviorProcessExit", BehaviorProcessExit},
    NamedBehavior{"BehaviorProcessCreate", BehaviorProcessCreate},
};

/// The name of `behavior`, or nothing for a code that has none.
constexpr std::string_view BehaviorName(std::uint32_t behavior) {
  const auto* const found = std::find_if(kNamedBehaviors.begin(), kNamedBehaviors.end(),
                                         [&](const NamedBehavior& known) { return known.code == behavior; });
  return found == kNamedBehaviors.end() ? std::string_view() : found->name;
}

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_BEHAVIOR_NAMES_H
