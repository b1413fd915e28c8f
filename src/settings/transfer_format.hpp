/// \file
/// The layout of the frames that the camera sends.
#pragma once

#include <atomic>
#include <cstdint>

#include "device/control_channel.hpp"
#include "device/identity.hpp"
#include "platform/status.hpp"

namespace vexa::settings {

/// The transfer format (one bit per layout), with a copy that may be read from any thread.
class TransferFormat {
 public:
  TransferFormat(device::ControlChannel& channel, const device::CameraIdentity& identity)
      : channel_(channel), identity_(identity) {}

  /// Reads the code from the camera; on failure the copy stays.
  Status Refresh();
  /// Sets those bits of the code that the camera supports; kInvalidParameter when none is left.
  Status Set(std::uint32_t code);
  std::uint32_t code() const { return code_; }

 private:
  device::ControlChannel& channel_;
  const device::CameraIdentity& identity_;
  std::atomic<std::uint32_t> code_ = 1;
};

}  // namespace vexa::settings
