/// \file
/// The name under which the camera driver registers its device interfaces.
#pragma once

#include <windows.h>

namespace vexa::platform {

/// Device-interface class of the camera driver: {2F95CB8C-37EB-4B7F-B677-69640166A04C}.
inline constexpr GUID kCameraInterfaceClass = {
    0x2F95CB8C, 0x37EB, 0x4B7F, {0xB6, 0x77, 0x69, 0x64, 0x01, 0x66, 0xA0, 0x4C}};

}  // namespace vexa::platform
