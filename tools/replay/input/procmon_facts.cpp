#include "tools/replay/input/procmon_facts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "tools/replay/input/file_names.h"
#include "tools/replay/input/procmon_detail.h"
#include "tools/replay/input/row_error.h"

namespace replay {
namespace {

bool OpensFolder(std::string_view detail) { return HasItem(OptionsOf(detail), "Directory"); }

// Attributes are letters ("RHSD"), of which D is the folder's.
bool HasFolderAttribute(std::string_view detail) {
  for (const std::string_view key : {"FileAttributes", "Attributes"}) {
    const std::string_view letters = DetailValue(detail, key, kQueryKeys).value_or("");
    if (letters != "n/a" && letters.find('D') != std::string_view::npos) {
      return true;
    }
  }
  return DetailValue(detail, "Directory", kQueryKeys) == "True";
}

}  // namespace

bool IsFileName(std::string_view path) { return IsOnDrive(path) || IsOnShare(path); }

std::optional<std::uint64_t> WholeNumber(std::string_view text) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return number;
}

std::string_view OptionsOf(std::string_view detail) { return DetailValue(detail, "Options", kCreateFileKeys).value_or(""); }

bool ShowsFolder(std::string_view operation, std::string_view detail) {
  if (operation == "CreateFile" || operation == "IRP_MJ_CREATE") {
    return OpensFolder(detail);
  }
  if (operation == "NotifyChangeDirectory") {
    return true;
  }
  return operation.starts_with("Query") && HasFolderAttribute(detail);
}

SeenProcess ProcessOf(const ProcmonRow& row) {
  const std::optional<std::uint64_t> pid = WholeNumber(row[Column::kPid]);
  if (!pid) {
    throw RowError("the PID " + Quoted(row[Column::kPid]) + " is no number");
  }
  return {*pid, WholeNumber(row[Column::kParentPid]).value_or(0), row[Column::kImagePath], row[Column::kProcessName]};
}

const char* ReasonFor(std::string_view operation) {
  static constexpr std::array<std::pair<std::string_view, const char*>, 10> kFamilies = {{
      {"Reg", "registry access"},
      {"TCP ", "network traffic"},
      {"UDP ", "network traffic"},
      {"Thread Create", "thread event"},
      {"Thread Exit", "thread event"},
      {"IRP_", "other row of the advanced output"},
      {"FASTIO_", "other row of the advanced output"},
      {"Process Profiling", "profiling"},
      {"Thread Profiling", "profiling"},
      {"System Statistics", "profiling"},
  }};
  const auto* const family = std::find_if(kFamilies.begin(), kFamilies.end(),
                                          [operation](const auto& known) { return operation.starts_with(known.first); });
  return family == kFamilies.end() ? "query or other operation without an event" : family->second;
}

}  // namespace replay
