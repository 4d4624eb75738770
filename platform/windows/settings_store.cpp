#include "platform/settings_store.h"

#include <windows.h>

namespace zt {
namespace {

std::optional<std::uint32_t> ReadNumber(HKEY key, const char* name) {
  DWORD type = 0;
  DWORD value = 0;
  DWORD size = sizeof value;
  const LSTATUS status = RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(&value), &size);
  if (status != ERROR_SUCCESS || type != REG_DWORD || size != sizeof value) {
    return std::nullopt;
  }
  return value;
}

}  // namespace

void ReadNumberSettings(const char* key, std::span<NumberSetting> settings) {
  for (NumberSetting& setting : settings) {
    setting.value.reset();
  }
  HKEY opened = nullptr;
  if (RegOpenKeyA(HKEY_LOCAL_MACHINE, key, &opened) != ERROR_SUCCESS) {
    return;
  }
  for (NumberSetting& setting : settings) {
    setting.value = ReadNumber(opened, setting.name);
  }
  RegCloseKey(opened);
}

}  // namespace zt
