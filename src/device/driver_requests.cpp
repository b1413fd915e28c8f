#include "device/driver_requests.hpp"

#include <algorithm>
#include <array>
#include <new>

#include "platform/bytes.hpp"

namespace vexa::device {
namespace {

using platform::ControlCode;

Status Request(platform::Device& device, ControlCode code, std::span<std::uint8_t> output = {},
               std::uint32_t* bytes_returned = nullptr) {
  try {
    platform::Completion completion;
    std::uint32_t returned = 0;
    const Status status = device.Control(code, {}, output, &returned, completion);
    if (bytes_returned != nullptr) {
      *bytes_returned = returned;
    }
    return status;
  } catch (const std::bad_alloc&) {
    return error::kNotEnoughMemory;  // no event for the request
  }
}

// Layout of the descriptors, USB 2.0 chapter 9.6: a configuration descriptor of 9 bytes, an
// interface descriptor of 9 bytes, endpoint descriptors of 7 bytes each.
constexpr std::size_t kConfigurationSize = 9;
constexpr std::size_t kNumEndpointsOffset = kConfigurationSize + 4;
constexpr std::size_t kFirstEndpointOffset = kConfigurationSize + 9;
constexpr std::size_t kEndpointSize = 7;
constexpr std::size_t kAddressOffset = 2;
constexpr std::size_t kAttributesOffset = 3;
constexpr std::size_t kMaxPacketSizeOffset = 4;
constexpr std::size_t kDescriptorBufferSize = 53;  // both descriptors and five endpoints

UsbSpeed SpeedOfEndpoints(std::span<const std::uint8_t> descriptor, std::size_t received) {
  std::size_t offset = kFirstEndpointOffset;
  for (int i = 0; i < descriptor[kNumEndpointsOffset] && offset + kEndpointSize <= received;
       ++i, offset += kEndpointSize) {
    const bool device_to_host = (descriptor[offset + kAddressOffset] & 0x80) != 0;
    const bool bulk = (descriptor[offset + kAttributesOffset] & 0x03) == 2;
    if (device_to_host && bulk) {
      const std::uint16_t packet = LoadLe16(descriptor, offset + kMaxPacketSizeOffset);
      return packet <= 64 ? UsbSpeed::kFull : packet <= 512 ? UsbSpeed::kHigh : UsbSpeed::kSuper;
    }
  }
  return UsbSpeed::kFull;
}

}  // namespace

bool DriverVersion::SupportsStreamControl() const {
  return words[0] >= 2 && !(words[0] == 3 && words[1] <= 1);
}

bool DriverVersion::SupportsRecovery() const {
  return words[0] > 0x00030000 || (words[0] == 0x00030000 && words[1] >= 5);
}

Status GetDriverVersion(platform::Device& device, DriverVersion* version) {
  std::array<std::uint8_t, 16> reply{};
  const Status status = Request(device, ControlCode::kDriverVersion, reply);
  if (status.ok()) {
    for (std::size_t i = 0; i < 4; ++i) {
      version->words[i] = LoadLe32(reply, 4 * i);
    }
  }
  return status;
}

bool StreamControlSupported(platform::Device& device) {
  DriverVersion version;
  return GetDriverVersion(device, &version).ok() && version.SupportsStreamControl();
}

Status ResetStream(platform::Device& device) {
  return StreamControlSupported(device) ? Request(device, ControlCode::kResetStream) : Status();
}

Status StopStream(platform::Device& device) {
  return StreamControlSupported(device) ? Request(device, ControlCode::kStopStream) : Status();
}

Status RecoverCamera(platform::Device& device, bool second_stage) {
  return Request(device,
                 second_stage ? ControlCode::kRecoverSecondStage : ControlCode::kRecoverFirstStage);
}

bool IsOnlyHandle(platform::Device& device) {
  std::array<std::uint8_t, 4> reply{};
  std::uint32_t returned = 0;
  const Status status = device.ControlSynchronous(ControlCode::kOpenCount, {}, reply, &returned);
  return status.ok() && LoadLe32(reply, 0) == 1;
}

Status GetConfigurationDescriptor(platform::Device& device, std::span<std::uint8_t> buffer,
                                  std::uint32_t* bytes_returned) {
  *bytes_returned = 0;
  return Request(device, ControlCode::kConfigurationDescriptor, buffer, bytes_returned);
}

Status GetUsbSpeed(platform::Device& device, UsbSpeed* speed) {
  *speed = UsbSpeed::kFull;
  std::array<std::uint8_t, kDescriptorBufferSize> descriptor{};
  std::uint32_t received = 0;
  const Status status = GetConfigurationDescriptor(device, descriptor, &received);
  if (status.ok()) {
    *speed = received <= kConfigurationSize
                 ? UsbSpeed::kHigh
                 : SpeedOfEndpoints(descriptor, std::min<std::size_t>(received, descriptor.size()));
  }
  return status;
}

}  // namespace vexa::device
