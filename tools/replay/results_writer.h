// Results: one JSON line for each call, see docs/ztreplay.md.

#ifndef ZT_TOOLS_REPLAY_RESULTS_WRITER_H
#define ZT_TOOLS_REPLAY_RESULTS_WRITER_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "zteng/zteng.h"

namespace replay {

/// Where a writer puts its lines.
using ByteSink = std::function<void(std::string_view)>;

/// Writes results. `line` is the call's number in the capture. Throws what the sink throws.
class ResultsWriter {
 public:
  explicit ResultsWriter(ByteSink sink) : sink_(std::move(sink)) {}

  void InsertLog(std::uint64_t line, ZtLong result);
  void SingleLineScore(std::uint64_t line, ZtLong score);
  void UpdateScore(std::uint64_t line);
  void ResetScore(std::uint64_t line);
  /// The answers of both forms of the query.
  void ProcTree(std::uint64_t line, const std::vector<void*>& pids, const std::map<void*, std::wstring>& procs);
  void FinalState(std::uint64_t line, unsigned result, const std::map<std::wstring, ZT_FILE_ITEM_PUBLIC>& files,
                  const std::vector<std::wstring>& paths);

 private:
  ByteSink sink_;
};

}  // namespace replay

#endif  // ZT_TOOLS_REPLAY_RESULTS_WRITER_H
