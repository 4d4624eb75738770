#include "tools/replay/restore_list.h"

#include <set>
#include <string_view>

#include "tools/replay/text.h"

namespace replay {

void WriteRestoreList(const ProcessLedger& ledger, const ByteSink& sink, bool for_terminal) {
  std::set<std::wstring_view> paths;
  for (const ProcessRecord& process : ledger.records()) {
    if (process.alarm && process.final_answer) {
      paths.insert(process.final_answer->restore_paths.begin(), process.final_answer->restore_paths.end());
    }
  }
  for (const std::wstring_view path : paths) {
    sink((for_terminal ? ShownText(path) : PlainUtf8(path)) + "\n");
  }
}

}  // namespace replay
