#include "trace/log_folder.h"

#include <algorithm>

#include "trace/trace_state.h"

namespace zt {
namespace {

constexpr std::string_view kApplicationData = "%appdata%";

char LowerAscii(char character) { return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character; }

bool EqualsWithoutCase(std::string_view left, std::string_view right) {
  return std::ranges::equal(left, right, {}, &LowerAscii, &LowerAscii);
}

// Appends "part" and a separator for each part.
template <typename... Parts>
void AppendFolders(PathText& path, Parts... parts) {
  const std::string_view separator(&kPathSeparator, 1);
  static_cast<void>((... && path.Append(std::string_view(parts), separator)));
}

PathText BesideProgram() {
  char path[kMaxPathSize];
  const std::size_t length = SharedTraceState().environment->executable_path(path, sizeof path);
  PathText folder(Split({path, length}).folder);
  if (!folder.empty()) {
    AppendFolders(folder, "logs", "trace");
  }
  return folder;
}

PathText InApplicationData() {
  char path[kMaxPathSize];
  PathText folder(std::string_view(path, ExpandEnvironment(kApplicationData.data(), path, sizeof path)));
  if (!folder.empty()) {
    AppendFolders(folder, "", "Orvanta", "logs", "trace");
  }
  return folder;
}

}  // namespace

PathText ConfiguredLogFolder() { return BesideProgram(); }

PathText ResolveLogFolder(std::string_view configured) {
  if (EqualsWithoutCase(configured, kApplicationData)) {
    return InApplicationData();
  }
  return configured.empty() ? BesideProgram() : PathText(configured);
}

}  // namespace zt
