// CSV files that Process Monitor saved.

#ifndef ZT_TOOLS_REPLAY_INPUT_PROCMON_READER_H
#define ZT_TOOLS_REPLAY_INPUT_PROCMON_READER_H

#include <memory>

#include "tools/replay/input/capture_reader.h"
#include "tools/replay/input/look_ahead.h"
#include "tools/replay/input/procmon_mapping.h"
#include "tools/replay/input/procmon_rows.h"

namespace replay {

class ProcmonReader : public CaptureReader {
 public:
  explicit ProcmonReader(std::unique_ptr<ByteSource> source);

  bool Next(Call& call) override;
  [[nodiscard]] const ReadCounts& counts() const override { return mapping_.events().counts(); }

 private:
  ProcmonRows rows_;
  ProcmonMapping mapping_;
  LookAhead<ProcmonRow> ahead_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_PROCMON_READER_H
