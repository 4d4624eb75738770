#include "tests/dll/trace_settings.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace zt::testing {
namespace {

constexpr const char kKey[] = "SOFTWARE\\jqmlog\\zteng";

void Set(HKEY key, const char* name, DWORD value) {
  EXPECT_EQ(RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value), ERROR_SUCCESS);
}

}  // namespace

TraceSettings::TraceSettings(std::uint32_t flag, std::uint32_t size) { Change(flag, size); }

// One value after the other: no test changes both at once.
void TraceSettings::Change(std::uint32_t flag, std::uint32_t size) const {
  HKEY key = nullptr;
  EXPECT_EQ(RegCreateKeyA(HKEY_LOCAL_MACHINE, kKey, &key), ERROR_SUCCESS);
  Set(key, "flag", flag);
  Set(key, "size", size);
  RegCloseKey(key);
}

std::string TraceSettings::File() const { return {}; }

TraceSettings::~TraceSettings() { RegDeleteKeyA(HKEY_LOCAL_MACHINE, kKey); }

}  // namespace zt::testing
