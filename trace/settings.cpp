#include "trace/settings.h"

#include <array>

#include "trace/trace_state.h"

namespace zt {

bool TraceReadSettings(std::uint32_t* flag, std::uint32_t* size) {
  std::array<NumberSetting, 2> settings;
  auto& [stored_flag, stored_size] = settings;
  stored_flag.name = "flag";
  stored_size.name = "size";
  SharedTraceState().environment->read_settings(kTraceSettingsKey, settings);
  *flag = stored_flag.value.value_or(*flag);
  *size = stored_size.value.value_or(*size);
  return stored_flag.value.has_value() || stored_size.value.has_value();
}

}  // namespace zt
