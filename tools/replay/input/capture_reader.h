// The one interface behind which every capture format is read.

#ifndef ZT_TOOLS_REPLAY_INPUT_CAPTURE_READER_H
#define ZT_TOOLS_REPLAY_INPUT_CAPTURE_READER_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "tools/replay/input/byte_source.h"
#include "tools/replay/input/call.h"

namespace replay {

/// What a reader has met so far.
struct ReadCounts {
  std::uint64_t rows = 0;                        ///< Rows, lines with text or records read.
  std::map<std::string, std::uint64_t> skipped;  ///< Rows that are no input, by reason in plain words.
  std::uint64_t targets_cut = 0;                 ///< Targets that were longer than a record holds and were cut to 524 units.
};

/// Reads one capture as a stream of calls. One row may give no call, one, or several (a process that ran already is entered
/// first). Memory does not grow with the capture's length beyond what the mapping needs (open handles, known processes).
class CaptureReader {
 public:
  CaptureReader() = default;
  CaptureReader(const CaptureReader&) = delete;
  CaptureReader& operator=(const CaptureReader&) = delete;
  virtual ~CaptureReader() = default;

  /// Fills `call` with the next call and returns true, or returns false at the end of the capture. Throws InputError; nothing
  /// may be read after that.
  virtual bool Next(Call& call) = 0;

  [[nodiscard]] virtual const ReadCounts& counts() const = 0;
};

enum class CaptureFormat { kJsonl, kRecords, kProcmon, kSandbox };

/// The format that the first bytes of `source` (peeked, not consumed) show. Throws InputError naming the file when they show
/// none of the known ones.
CaptureFormat DetectFormat(ByteSource& source);

/// A reader of `format` over `source`, which it owns from now on.
std::unique_ptr<CaptureReader> MakeReader(CaptureFormat format, std::unique_ptr<ByteSource> source);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_INPUT_CAPTURE_READER_H
