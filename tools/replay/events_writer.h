// The calls fed, as an event script that replays to the same results.

#ifndef ZT_TOOLS_REPLAY_EVENTS_WRITER_H
#define ZT_TOOLS_REPLAY_EVENTS_WRITER_H

#include <cstdint>
#include <string>

#include "tools/replay/input/call.h"
#include "tools/replay/results_writer.h"

namespace replay {

/// Writes each call on the line of its number, with blank lines where the capture has other lines, so that the script's results
/// carry the same numbers. A call that has no number, being the tool's own, takes a line of its own, and later ones move down.
///
/// Three things of a binary record do not survive: what the engine does not read (the reserved fields, the last byte of a Path
/// that fills its field), bytes of Path that are no UTF-8, and surrogates without a partner in Target, which become U+FFFD, as
/// they do in results.
class EventsWriter {
 public:
  explicit EventsWriter(ByteSink sink) : sink_(std::move(sink)) {}

  /// Writes a call of the capture. REQUIRES: numbers rise from call to call, or stay for calls that one row gave.
  void Write(const Call& call);
  /// Writes a call that the tool made itself.
  void WriteOwn(const Call& call);

 private:
  ByteSink sink_;
  std::uint64_t lines_ = 0;  ///< Written so far.
  std::uint64_t own_ = 0;    ///< Of these, the tool's own calls.
};

/// `call` as a line of an event script, without its line end. Members that have their default are left out.
std::string ScriptLine(const Call& call);

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_EVENTS_WRITER_H
