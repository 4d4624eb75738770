// Explanations: one JSON line for each penalty, see docs/ztreplay.md.

#ifndef ZT_TOOLS_REPLAY_EXPLAIN_WRITER_H
#define ZT_TOOLS_REPLAY_EXPLAIN_WRITER_H

#include <cstdint>

#include "tools/replay/call_recorder.h"
#include "tools/replay/process_ledger.h"
#include "tools/replay/results_writer.h"

namespace replay {

/// Writes why scores rose.
class ExplainWriter {
 public:
  explicit ExplainWriter(ByteSink sink) : sink_(std::move(sink)) {}

  /// Writes a line when `reports`, which must have steps, hold a penalty. `look_up` is asked for the images.
  void Write(const CallReports& reports, std::uint64_t number, std::int64_t time, const ProcessLookUp& look_up);

 private:
  ByteSink sink_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_EXPLAIN_WRITER_H
