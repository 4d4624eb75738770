// The restore list: what processes that reached the alarm leave to be restored.

#ifndef ZT_TOOLS_REPLAY_RESTORE_LIST_H
#define ZT_TOOLS_REPLAY_RESTORE_LIST_H

#include "tools/replay/process_ledger.h"
#include "tools/replay/results_writer.h"

namespace replay {

/// Writes the files to restore of all processes in `ledger` that reached the alarm: each path once, in the order of code units,
/// one a line. A line end within a path, which no file system of a monitored host allows, becomes U+FFFD.
void WriteRestoreList(const ProcessLedger& ledger, const ByteSink& sink);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_RESTORE_LIST_H
