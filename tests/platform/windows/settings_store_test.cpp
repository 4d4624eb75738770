#include "platform/settings_store.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <array>

namespace zt::testing {
namespace {

constexpr const char kKey[] = "SOFTWARE\\jqmlog\\zteng-test";

class RegistryTest : public ::testing::Test {
 protected:
  RegistryTest() { EXPECT_EQ(RegCreateKeyA(HKEY_LOCAL_MACHINE, kKey, &key_), ERROR_SUCCESS); }
  ~RegistryTest() override {
    RegCloseKey(key_);
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, kKey);
  }

  void Set(const char* name, DWORD type, const void* data, DWORD size) const {
    EXPECT_EQ(RegSetValueExA(key_, name, 0, type, static_cast<const BYTE*>(data), size), ERROR_SUCCESS);
  }
  void SetNumber(const char* name, DWORD number) const { Set(name, REG_DWORD, &number, sizeof number); }
  void Read() { ReadNumberSettings(kKey, settings_); }
  [[nodiscard]] std::optional<std::uint32_t> Flag() const { return settings_[0].value; }
  [[nodiscard]] std::optional<std::uint32_t> Size() const { return settings_[1].value; }

  HKEY key_ = nullptr;
  std::array<NumberSetting, 2> settings_ = {{{"flag", 7}, {"size", 8}}};
};

TEST_F(RegistryTest, NumbersAreRead) {
  SetNumber("flag", 0x10000107);
  SetNumber("size", 3);
  Read();
  EXPECT_EQ(Flag(), 0x10000107u);
  EXPECT_EQ(Size(), 3u);
}

TEST_F(RegistryTest, MissingValueIsNone) {
  SetNumber("size", 3);
  Read();
  EXPECT_EQ(Flag(), std::nullopt);
  EXPECT_EQ(Size(), 3u);
}

TEST_F(RegistryTest, ValueOfAnotherTypeOrSizeIsNone) {
  const DWORD number = 5;
  Set("flag", REG_BINARY, &number, sizeof number);
  Set("size", REG_DWORD, &number, 2);
  Read();
  EXPECT_EQ(Flag(), std::nullopt);
  EXPECT_EQ(Size(), std::nullopt);
  Set("flag", REG_SZ, "12", 3);
  Read();
  EXPECT_EQ(Flag(), std::nullopt);
}

TEST_F(RegistryTest, MissingKeyHasNoValues) {
  ReadNumberSettings("SOFTWARE\\jqmlog\\zteng-test-that-is-not-there", settings_);
  EXPECT_EQ(Flag(), std::nullopt);
  EXPECT_EQ(Size(), std::nullopt);
}

}  // namespace
}  // namespace zt::testing
