/// \file
/// The system's power-management library, loaded at run time because its functions differ between
/// versions of the system: PowrProf.dll on Windows; elsewhere a store of power schemes in memory
/// with the same functions.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/status.hpp"

namespace vexa::platform {

/// A Windows GUID, in its layout.
struct Guid {
  std::uint32_t data1;
  std::uint16_t data2;
  std::uint16_t data3;
  std::uint8_t data4[8];

  friend bool operator==(const Guid&, const Guid&) = default;
};

/// The version that GetVersionExA tells. For programs that do not declare more it ends at 6.2.
struct OsVersion {
  std::uint32_t platform_id = 0;  // 2: Windows NT and all its successors
  std::uint32_t major = 0;
  std::uint32_t minor = 0;
};
OsVersion ReadOsVersion();

/// The loaded library; destroying it releases it.
class PowerLibrary {
 public:
  using Function = void (*)();

  virtual ~PowerLibrary() = default;

  /// An entry point, of the type that powrprof.h gives the name; null when the library lacks it,
  /// *status is then the reason.
  virtual Function Find(const char* name, Status* status) const = 0;
  /// Frees a scheme identifier that PowerGetActiveScheme has given.
  virtual void FreeScheme(Guid* scheme) const = 0;
};

/// Loads the library; null when that fails, *status is then the reason.
std::unique_ptr<PowerLibrary> OpenPowerLibrary(Status* status);

}  // namespace vexa::platform
