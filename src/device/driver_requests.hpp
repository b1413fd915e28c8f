/// \file
/// What the library asks of the driver itself, beside control requests to the camera.
#pragma once

#include <cstdint>
#include <span>

#include "platform/driver.hpp"
#include "platform/status.hpp"

namespace vexa::device {

/// The four words of the driver-version reply; rules look at the first two.
struct DriverVersion {
  std::uint32_t words[4] = {};

  /// Whether the driver knows the stop-stream and reset-stream requests.
  bool SupportsStreamControl() const;
  /// Whether the driver can wake a camera that does not answer when it is opened.
  bool SupportsRecovery() const;
};

Status GetDriverVersion(platform::Device& device, DriverVersion* version);

/// False also when the driver does not tell its version.
bool StreamControlSupported(platform::Device& device);

/// Prepares the image stream before reads are queued; kGeneralFailure while it cannot be reset yet.
/// Sends nothing and succeeds without stream control.
Status ResetStream(platform::Device& device);

/// Ends the image stream. Sends nothing and succeeds without stream control.
Status StopStream(platform::Device& device);

/// First- or second-stage recovery of a camera that does not answer.
Status RecoverCamera(platform::Device& device, bool second_stage);

/// Whether this process's new handle is the only one on the camera.
bool IsOnlyHandle(platform::Device& device);

Status GetConfigurationDescriptor(platform::Device& device, std::span<std::uint8_t> buffer,
                                  std::uint32_t* bytes_returned);

/// Speed class of the link.
enum class UsbSpeed : std::uint8_t { kFull = 0, kHigh = 1, kSuper = 2 };

/// Reads the configuration descriptor and derives the speed from the first bulk-in endpoint;
/// *speed is kFull on failure.
Status GetUsbSpeed(platform::Device& device, UsbSpeed* speed);

}  // namespace vexa::device
