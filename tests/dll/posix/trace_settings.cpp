#include "tests/dll/trace_settings.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace zt::testing {

TraceSettings::TraceSettings(std::uint32_t flag, std::uint32_t size) {
  Change(flag, size);
  setenv("JQMLOG_SETTINGS", File().c_str(), 1);  // NOLINT(concurrency-mt-unsafe): tests have one thread.
}

void TraceSettings::Change(std::uint32_t flag, std::uint32_t size) const {
  std::filesystem::rename(folder_.Write("new", "flag = " + std::to_string(flag) + "\nsize = " + std::to_string(size) + "\n"),
                          File());
}

std::string TraceSettings::File() const { return folder_.Path("settings"); }

TraceSettings::~TraceSettings() {
  unsetenv("JQMLOG_SETTINGS");  // NOLINT(concurrency-mt-unsafe)
}

}  // namespace zt::testing
