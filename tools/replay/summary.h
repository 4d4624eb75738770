// What a replay found, for people.

#ifndef ZT_TOOLS_REPLAY_SUMMARY_H
#define ZT_TOOLS_REPLAY_SUMMARY_H

#include <cstdint>
#include <string>
#include <vector>

#include "tools/replay/input/capture_reader.h"
#include "tools/replay/process_ledger.h"
#include "tools/replay/session.h"

namespace replay {

/// What a summary tells of.
struct Summary {
  std::string capture;  ///< Its name as messages have it.
  std::int32_t alarm = 0;
  ReadCounts read;
  FeedCounts fed;
  double seconds = 0;                            ///< Wall time of the replay.
  std::vector<const ProcessRecord*> culprits;    ///< The deepest that reached the alarm, in the order in which they did.
  std::vector<const ProcessRecord*> charged;     ///< Others that reached it, all ancestors of culprits, in that order too.
  std::vector<const ProcessRecord*> suspicious;  ///< Others that were suspicious, in the order in which they first came up.

  /// Events and other calls of the capture in a second of wall time; 0 where no time passed.
  [[nodiscard]] double EventsPerSecond() const;
};

/// Sorts the records of `ledger`, which the result refers to, into the lists of `summary`.
void AddProcesses(Summary& summary, const ProcessLedger& ledger);

/// The text: what was found first, what was read last. Color sequences only where `colors` asks for them; else nothing that
/// could steer a terminal.
std::string SummaryText(const Summary& summary, bool colors);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_SUMMARY_H
