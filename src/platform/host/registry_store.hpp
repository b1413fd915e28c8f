/// \file
/// The in-process stand-in for the registry, from the side that fills it. Empty when the process
/// starts, gone when it ends. Every function may be called from any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/registry.hpp"

namespace vexa::platform::host {

/// Stores a value, creating the key and the keys above it. Names compare without regard to the
/// case of the letters A to Z.
void SetRegistryValue(RegistryRoot root, const std::u16string& subkey, const std::u16string& name,
                      std::span<const std::uint8_t> data);

/// The same for a four-byte number.
void SetRegistryDword(RegistryRoot root, const std::u16string& subkey, const std::u16string& name,
                      std::uint32_t value);

/// Deletes a value; does nothing when there is none.
void DeleteRegistryValue(RegistryRoot root, const std::u16string& subkey,
                         const std::u16string& name);

/// Deletes a key with all keys below it; does nothing when there is none. Keys that are open
/// answer 1018 (ERROR_KEY_DELETED) from then on.
void DeleteRegistryKey(RegistryRoot root, const std::u16string& subkey);

}  // namespace vexa::platform::host
