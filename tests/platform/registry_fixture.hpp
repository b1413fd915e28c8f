/// \file
/// Fills the registry, or what stands in for it, from outside the library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vexa::test {

/// Stores a value under HKEY_CURRENT_USER, creating the key.
void SetRegistryValue(const std::u16string& subkey, const std::u16string& name,
                      const std::vector<std::uint8_t>& data);

/// Deletes a key that has no keys below it.
void DeleteRegistryKey(const std::u16string& subkey);

}  // namespace vexa::test
