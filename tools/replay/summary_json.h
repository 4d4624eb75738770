// What a replay found, as one JSON object; docs/ztreplay.md lists its keys.

#ifndef ZT_TOOLS_REPLAY_SUMMARY_JSON_H
#define ZT_TOOLS_REPLAY_SUMMARY_JSON_H

#include <string>

#include "tools/replay/summary.h"

namespace replay {

/// The object in one line, with a line end: the same for every replay of the same calls, so the time that it took is left out.
/// Scripts rely on the keys: add to them, never rename them.
std::string SummaryJson(const Summary& summary);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_SUMMARY_JSON_H
