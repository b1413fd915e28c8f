#include "platform/registry_fixture.hpp"

#include "platform/host/registry_store.hpp"

namespace vexa::test {

using platform::RegistryRoot;

void SetRegistryValue(const std::u16string& subkey, const std::u16string& name,
                      const std::vector<std::uint8_t>& data) {
  platform::host::SetRegistryValue(RegistryRoot::kCurrentUser, subkey, name, data);
}

void DeleteRegistryKey(const std::u16string& subkey) {
  platform::host::DeleteRegistryKey(RegistryRoot::kCurrentUser, subkey);
}

}  // namespace vexa::test
