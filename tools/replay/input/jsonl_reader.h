// Event scripts: one JSON object a line, each a call of the engine.

#ifndef ZT_TOOLS_REPLAY_INPUT_JSONL_READER_H
#define ZT_TOOLS_REPLAY_INPUT_JSONL_READER_H

#include <memory>

#include "tools/replay/input/capture_reader.h"
#include "tools/replay/input/json_line.h"
#include "tools/replay/input/line_reader.h"

namespace replay {

class JsonlReader : public CaptureReader {
 public:
  explicit JsonlReader(std::unique_ptr<ByteSource> source) : lines_(std::move(source)) {}

  bool Next(Call& call) override;
  [[nodiscard]] const ReadCounts& counts() const override { return counts_; }

 private:
  LineReader lines_;
  JsonLine json_;
  ReadCounts counts_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_JSONL_READER_H
