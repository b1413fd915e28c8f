#include "platform/registry.hpp"

#include <array>

#include "platform/bytes.hpp"
#include "platform/windows/windows_api.hpp"

namespace vexa::platform {

static_assert(kRegistryRead == KEY_READ);

struct CwRegKey::Key {
  HKEY handle = nullptr;
};

CwRegKey::CwRegKey(RegistryRoot root, const std::u16string& subkey, std::uint32_t access,
                   bool create) {
  auto key = std::make_unique<Key>();
  const HKEY parent = root == RegistryRoot::kCurrentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
  const std::wstring name = ToWideChars(subkey);
  const LONG result =
      create ? ::RegCreateKeyExW(parent, name.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, access,
                                 nullptr, &key->handle, nullptr)
             : ::RegOpenKeyExW(parent, name.c_str(), 0, access, &key->handle);
  if (result == ERROR_SUCCESS) {
    key_ = std::move(key);
  }
}

CwRegKey::~CwRegKey() { Close(); }

bool CwRegKey::is_open() const { return key_ != nullptr; }

std::uint32_t CwRegKey::Close() {
  if (key_ == nullptr) {
    return ERROR_INVALID_PARAMETER;
  }
  const LONG result = ::RegCloseKey(key_->handle);
  key_.reset();
  return static_cast<std::uint32_t>(result);
}

std::uint32_t CwRegKey::QueryDword(const std::u16string& name, std::uint32_t* value) const {
  if (key_ == nullptr) {
    return ERROR_INVALID_PARAMETER;
  }
  std::array<std::uint8_t, 4> buffer{};
  StoreLe32(buffer, 0, *value);
  DWORD size = buffer.size();
  const LONG result = ::RegQueryValueExW(key_->handle, ToWideChars(name).c_str(), nullptr, nullptr,
                                         buffer.data(), &size);
  if (result == ERROR_SUCCESS) {
    *value = LoadLe32(buffer, 0);
  }
  return static_cast<std::uint32_t>(result);
}

}  // namespace vexa::platform
