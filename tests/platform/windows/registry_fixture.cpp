#include "platform/registry_fixture.hpp"

#include <gtest/gtest.h>

#include "platform/windows/windows_api.hpp"

namespace vexa::test {

void SetRegistryValue(const std::u16string& subkey, const std::u16string& name,
                      const std::vector<std::uint8_t>& data) {
  HKEY key = nullptr;
  ASSERT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, platform::ToWideChars(subkey).c_str(), 0, nullptr,
                              0, KEY_SET_VALUE, nullptr, &key, nullptr),
            ERROR_SUCCESS);
  EXPECT_EQ(::RegSetValueExW(key, platform::ToWideChars(name).c_str(), 0, REG_BINARY, data.data(),
                             static_cast<DWORD>(data.size())),
            ERROR_SUCCESS);
  ::RegCloseKey(key);
}

void DeleteRegistryKey(const std::u16string& subkey) {
  ::RegDeleteKeyW(HKEY_CURRENT_USER, platform::ToWideChars(subkey).c_str());
}

}  // namespace vexa::test
