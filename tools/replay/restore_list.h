// The restore list: what processes that reached the alarm leave to be restored.

#ifndef ZT_TOOLS_REPLAY_RESTORE_LIST_H
#define ZT_TOOLS_REPLAY_RESTORE_LIST_H

#include "tools/replay/process_ledger.h"
#include "tools/replay/results_writer.h"

namespace replay {

/// Writes the files to restore of all processes in `ledger` that reached the alarm: each path once, in the order of code units,
/// one a line. A control character within a path, which no file system of a monitored host allows, becomes U+FFFD; with
/// `for_terminal` so does whatever else a terminal does not show.
void WriteRestoreList(const ProcessLedger& ledger, const ByteSink& sink, bool for_terminal);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_RESTORE_LIST_H
