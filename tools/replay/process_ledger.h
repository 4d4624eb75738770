// What the summary tells of processes: their scores over the whole capture, when they reached the alarm, what is left to
// restore.

#ifndef ZT_TOOLS_REPLAY_PROCESS_LEDGER_H
#define ZT_TOOLS_REPLAY_PROCESS_LEDGER_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "engine/inspection.h"
#include "tools/replay/call_recorder.h"

namespace replay {

/// Finds the process under a key; see zt::FindProcess.
using ProcessLookUp = std::function<bool(const ZtProcKey&, zt::ProcessView&)>;

/// Whether the engine counts a process of this score as suspicious. It compares without a sign, so a wrapped score counts.
constexpr bool IsSuspiciousScore(std::int32_t score) { return static_cast<std::uint32_t>(score) > 1; }

/// When a process first reached the alarm.
struct AlarmPoint {
  std::uint64_t number = 0;       ///< Of the call, as in results.
  std::int64_t time = 0;          ///< Event time, 100 ns ticks.
  std::size_t damaged_files = 0;  ///< Distinct files charged to the process until then, this event's included.
};

/// What the engine says of a process when it is asked for the last time.
struct FinalAnswer {
  std::size_t files_to_restore = 0;
  std::size_t overwritten_files = 0;  ///< Those of them that were overwritten in place: their restore flag is set.
  std::size_t quarantine_paths = 0;
  std::vector<std::wstring> restore_paths;  ///< The files to restore, where they are asked for.
};

/// One process that was charged for a file or that the engine held for suspicious, or an ancestor of one that reached the
/// alarm.
struct ProcessRecord {
  ZtProcKey key;
  ZtProcKey parent;  ///< {0, 0}: none known.
  std::wstring image;
  std::wstring parent_image;  ///< Empty when the parent is not known.
  std::int32_t score = 1;     ///< After the last event.
  std::int32_t highest_score = 1;
  std::optional<std::uint64_t> wrapped;  ///< The first call after which its score was not the product, which has over 31 bits.
  std::uint64_t library_loads = 0;       ///< Loads of watched libraries, each of which gave its score a point.
  bool suspicious = false;               ///< Its score was once 2 or more, as the engine compares it.
  std::set<std::wstring> damaged_files;  ///< Distinct files charged to it. Not kept up to date once it has reached the alarm.
  std::optional<AlarmPoint> alarm;
  bool above_alarm = false;  ///< A descendant of it reached the alarm.
  bool in_cycle = false;     ///< Known to be its own ancestor.
  std::optional<FinalAnswer> final_answer;
  std::optional<std::map<std::uint64_t, std::wstring>> family;  ///< Suspicious members of its family: id to image.

  /// Whether it is the deepest that reached the alarm: no descendant of it did. Every ancestor is charged with what a process
  /// does, so one with an alarmed descendant need not have done anything.
  [[nodiscard]] bool IsCulprit() const { return alarm && !above_alarm; }
};

/// The records of all such processes, in the order in which they first came up.
class ProcessLedger {
 public:
  explicit ProcessLedger(std::int32_t alarm) : alarm_(alarm) {}

  /// Takes in what the call `number` did at event time `time`. `look_up` is asked for processes that come up for the first
  /// time.
  void Apply(const CallReports& reports, std::uint64_t number, std::int64_t time, const ProcessLookUp& look_up);

  /// The record of the process under `key`, or null. Valid as long as the ledger.
  ProcessRecord* Find(const ZtProcKey& key);

  /// Makes a later process under the same key one of its own: a creation with the same id and time replaces the process.
  void Forget(const ZtProcKey& key) { current_.erase(key); }

  [[nodiscard]] std::deque<ProcessRecord>& records() { return records_; }
  [[nodiscard]] const std::deque<ProcessRecord>& records() const { return records_; }

 private:
  ProcessRecord& Enter(const ZtProcKey& key, const ProcessLookUp& look_up);
  ProcessRecord& FindOrEnter(const ZtProcKey& key, const ProcessLookUp& look_up);
  static void TakeIn(ProcessRecord& record, const ScoreChange& change, std::uint64_t number);
  /// True when the record reaches the alarm now.
  bool Settle(ProcessRecord& record, std::uint64_t number, std::int64_t time) const;
  void MarkAncestors(ProcessRecord& alarmed, const ProcessLookUp& look_up);

  std::int32_t alarm_;
  std::deque<ProcessRecord> records_;
  std::map<ZtProcKey, ProcessRecord*> current_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_PROCESS_LEDGER_H
