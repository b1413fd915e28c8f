/// \file
/// What the library asks about the system and about itself.
#pragma once

#include <cstdint>

namespace vexa::platform {

/// Major version of the operating system, on the Windows scale (5: XP, 6: Vista and later, 10).
/// Systems that are not Windows answer 10.
std::uint32_t OsMajorVersion();

/// The four words of the fixed file information.
struct ModuleVersion {
  std::uint32_t file_high = 0;
  std::uint32_t file_low = 0;
  std::uint32_t product_high = 0;
  std::uint32_t product_low = 0;
};

/// Reads the version resource of the library's own module; all zero when a step fails.
ModuleVersion ReadModuleVersion();

/// Remembers the module handle that the entry point received (Windows; elsewhere it is not used).
void RecordModule(void* module);

}  // namespace vexa::platform
