/// \file
/// The camera's control pipe: vendor requests, one at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "platform/driver.hpp"
#include "platform/mutex.hpp"
#include "platform/status.hpp"

namespace vexa::device {

/// bRequest codes of the camera.
enum class Request : std::uint8_t {
  kCameraInformation = 0x11,
  kScanSettings = 0x12,
  kTransferFormat = 0x13,
  kClearBuffer = 0x20,
  kGainExposure = 0x21,
  kClock = 0x22,
  kWhiteBalanceDefaults = 0x23,
  kSoftTrigger = 0x30,
  kRegister = 0x80,
  kCameraSetting = 0x81,
  kLowRam = 0xA0,
  kHighRam = 0xF0,
  kOldUserArea = 0xF9,
  kUserArea = 0xFA,
};

/// bmRequestType of vendor requests to the device (USB 2.0 chapter 9.3); bit 7 is the direction.
inline constexpr std::uint8_t kHostToDevice = 0x40;
inline constexpr std::uint8_t kDeviceToHost = 0xC0;

/// The five fields of a setup packet (USB 2.0 chapter 9.3).
struct SetupPacket {
  std::uint8_t request_type = 0;
  std::uint8_t request = 0;
  std::uint16_t value = 0;
  std::uint16_t index = 0;
  std::uint16_t length = 0;
};

/// Owner of the open device and the only sender of its control requests. Requests from any number
/// of threads are carried out one after the other.
class ControlChannel {
 public:
  void Attach(std::unique_ptr<platform::Device> device);
  /// Closes the device.
  void Detach();
  /// The open device; only while one is attached.
  platform::Device& device() const { return *device_; }

  /// Sends one request. The data stage of a host-to-device request is the first `length` bytes of
  /// `data`; that of a device-to-host request is copied there, at most `length` bytes.
  /// `*bytes_returned` is the driver's count. kNotEnoughMemory when the request's buffers cannot be
  /// allocated.
  Status Send(const SetupPacket& setup, std::uint8_t* data, std::uint32_t* bytes_returned);

  /// Requests with value and index 0 whose data stage is all of `data`.
  Status Write(Request request, std::span<const std::uint8_t> data);
  Status Read(Request request, std::span<std::uint8_t> data);

  /// Discards the frames in the camera's memory.
  Status ClearBuffer() { return Write(Request::kClearBuffer, {}); }

 private:
  Status Exchange(std::span<const std::uint8_t> record, std::span<std::uint8_t> reply,
                  std::uint32_t* bytes_returned, platform::Completion& completion);

  std::unique_ptr<platform::Device> device_;
  platform::Mutex request_mutex_;  // innermost of all locks
};

}  // namespace vexa::device
