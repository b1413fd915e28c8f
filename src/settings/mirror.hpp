/// \file
/// Mirroring in the camera.
#pragma once

#include <atomic>
#include <cstdint>

#include "device/identity.hpp"
#include "device/registers.hpp"
#include "platform/status.hpp"

namespace vexa::settings {

/// The mirror mode: 0x10 horizontal, 0x20 vertical, with a copy that may be read from any thread.
class Mirror {
 public:
  Mirror(device::Registers& registers, const device::CameraIdentity& identity)
      : registers_(registers), identity_(identity) {}

  /// Reads the mode from the camera into the copy.
  Status Refresh();
  /// The copy follows whether or not the camera takes the mode, so that the colour array is that of
  /// the mode last asked for. Bits that the model lacks: kInvalidParameter, nothing changes.
  Status Set(std::uint8_t mode);
  /// Reads the mode from the camera; 0 on failure and on models without mirroring.
  Status Get(std::uint8_t* mode);
  /// Colour array of the frames as mirrored now.
  std::uint16_t ColorArray() const;

 private:
  device::Registers& registers_;
  const device::CameraIdentity& identity_;
  std::atomic<std::uint8_t> cached_ = 0;
};

}  // namespace vexa::settings
