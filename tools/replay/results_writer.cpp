#include "tools/replay/results_writer.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/replay/handles.h"
#include "tools/replay/text.h"

namespace replay {
namespace {

/// `items` as `text` writes each, with commas between.
template <typename Items, typename Text>
std::string Joined(const Items& items, Text text) {
  std::string joined;
  for (const auto& item : items) {
    if (!joined.empty()) {
      joined += ',';
    }
    joined += text(item);
  }
  return joined;
}

std::vector<std::uint64_t> Sorted(const std::vector<void*>& handles) {
  std::vector<std::uint64_t> pids;
  std::transform(handles.begin(), handles.end(), std::back_inserter(pids), PidFromHandle);
  std::sort(pids.begin(), pids.end());
  return pids;
}

std::string FileObject(const std::pair<const std::wstring, ZT_FILE_ITEM_PUBLIC>& entry) {
  const auto& [key, file] = entry;
  return fmt::format(R"({}:{{"engine_id":{},"path":{},"restore":{},"context":{}}})", JsonString(key), file.EngineId,
                     JsonString(file.Path), file.Restore != 0, file.Context);
}

}  // namespace

void ResultsWriter::InsertLog(std::uint64_t line, ZtLong result) {
  sink_(fmt::format("{{\"line\":{},\"call\":\"ZtInsertLog\",\"result\":{}}}\n", line, result));
}

void ResultsWriter::SingleLineScore(std::uint64_t line, ZtLong score) {
  sink_(fmt::format("{{\"line\":{},\"call\":\"ZtCalculateSingleLineScore\",\"score\":{}}}\n", line, score));
}

void ResultsWriter::UpdateScore(std::uint64_t line) {
  sink_(fmt::format("{{\"line\":{},\"call\":\"ZtUpdateScore\"}}\n", line));
}

void ResultsWriter::ResetScore(std::uint64_t line) { sink_(fmt::format("{{\"line\":{},\"call\":\"ZtResetScore\"}}\n", line)); }

void ResultsWriter::ProcTree(std::uint64_t line, const std::vector<void*>& pids, const std::map<void*, std::wstring>& procs) {
  const std::string images = Joined(procs, [](const auto& process) {
    return fmt::format(R"("{}":{})", PidFromHandle(process.first), JsonString(process.second));
  });
  sink_(fmt::format("{{\"line\":{},\"call\":\"ZtGetProcTree\",\"pids\":[{}],\"procs\":{{{}}}}}\n", line,
                    fmt::join(Sorted(pids), ","), images));
}

void ResultsWriter::FinalState(std::uint64_t line, unsigned result, const std::map<std::wstring, ZT_FILE_ITEM_PUBLIC>& files,
                               const std::vector<std::wstring>& paths) {
  sink_(fmt::format("{{\"line\":{},\"call\":\"ZtGetFinalStateFileByPid\",\"result\":{},\"files\":{{{}}},\"paths\":[{}]}}\n",
                    line, result, Joined(files, FileObject),
                    Joined(paths, [](const std::wstring& path) { return JsonString(path); })));
}

}  // namespace replay
