#include "tests/dll/trace_settings.h"

#include <cstdlib>
#include <string>

namespace zt::testing {

TraceSettings::TraceSettings(std::uint32_t flag, std::uint32_t size) {
  const std::string file =
      folder_.Write("settings", "flag = " + std::to_string(flag) + "\nsize = " + std::to_string(size) + "\n");
  setenv("JQMLOG_SETTINGS", file.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): tests have one thread.
}

TraceSettings::~TraceSettings() {
  unsetenv("JQMLOG_SETTINGS");  // NOLINT(concurrency-mt-unsafe)
}

}  // namespace zt::testing
