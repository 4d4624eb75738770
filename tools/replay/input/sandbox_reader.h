// Call logs of a sandbox: one JSON object a line, each an API call.

#ifndef ZT_TOOLS_REPLAY_INPUT_SANDBOX_READER_H
#define ZT_TOOLS_REPLAY_INPUT_SANDBOX_READER_H

#include <memory>

#include "tools/replay/input/capture_reader.h"
#include "tools/replay/input/line_reader.h"
#include "tools/replay/input/look_ahead.h"
#include "tools/replay/input/sandbox_mapping.h"

namespace replay {

class SandboxReader : public CaptureReader {
 public:
  explicit SandboxReader(std::unique_ptr<ByteSource> source);

  bool Next(Call& call) override;
  [[nodiscard]] const ReadCounts& counts() const override { return mapping_.events().counts(); }

 private:
  bool ReadCall(SandboxCall& call);
  void Learn(const SandboxCall& call);

  LineReader lines_;
  SandboxMapping mapping_;
  LookAhead<SandboxCall> ahead_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_SANDBOX_READER_H
